#include <GenTL/GenTL.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

extern "C" size_t TalvirGenTLSizeSeenFromC(int which);

namespace {

using namespace GenTL;

TEST(GenTLDeclarations, StructuresArePackedToTheirWireSizes) {
  EXPECT_EQ(sizeof(SINGLE_CHUNK_DATA), 24u);
  EXPECT_EQ(sizeof(EVENT_NEW_BUFFER_DATA), 16u);
  EXPECT_EQ(sizeof(PORT_REGISTER_STACK_ENTRY), 24u);
  EXPECT_EQ(sizeof(DS_BUFFER_INFO_STACKED), 28u);
  EXPECT_EQ(offsetof(DS_BUFFER_INFO_STACKED, iResult), 24u);
  EXPECT_EQ(offsetof(SINGLE_CHUNK_DATA, ChunkLength), 16u);
  EXPECT_EQ(sizeof(bool8_t), 1u);
}

TEST(GenTLDeclarations, CAndCppAgreeOnLayouts) {
  EXPECT_EQ(TalvirGenTLSizeSeenFromC(0), sizeof(SINGLE_CHUNK_DATA));
  EXPECT_EQ(TalvirGenTLSizeSeenFromC(1), sizeof(EVENT_NEW_BUFFER_DATA));
  EXPECT_EQ(TalvirGenTLSizeSeenFromC(2), sizeof(PORT_REGISTER_STACK_ENTRY));
  EXPECT_EQ(TalvirGenTLSizeSeenFromC(3), sizeof(DS_BUFFER_INFO_STACKED));
}

TEST(GenTLDeclarations, EnumerationValuesMatchTheStandard) {
  EXPECT_EQ(GC_ERR_SUCCESS, 0);
  EXPECT_EQ(GC_ERR_ERROR, -1001);
  EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, -1003);
  EXPECT_EQ(GC_ERR_INVALID_HANDLE, -1006);
  EXPECT_EQ(GC_ERR_TIMEOUT, -1011);
  EXPECT_EQ(GC_ERR_ABORT, -1012);
  EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL, -1016);
  EXPECT_EQ(GC_ERR_BUSY, -1022);
  EXPECT_EQ(GC_ERR_AMBIGUOUS, -1023);
  EXPECT_EQ(GC_ERR_CUSTOM_ID, -10000);
  EXPECT_EQ(INFO_DATATYPE_SIZET, 12);
  EXPECT_EQ(INFO_DATATYPE_PTRDIFF, 14);
  EXPECT_EQ(TL_INFO_GENTL_VER_MINOR, 10);
  EXPECT_EQ(DEVICE_INFO_TIMESTAMP_FREQUENCY, 9);
  EXPECT_EQ(DEVICE_ACCESS_STATUS_OPEN_READONLY, 6);
  EXPECT_EQ(STREAM_INFO_BUF_ANNOUNCE_MIN, 12);
  EXPECT_EQ(BUFFER_INFO_FRAMEID, 16);
  EXPECT_EQ(BUFFER_INFO_PIXELFORMAT, 20);
  EXPECT_EQ(BUFFER_INFO_CONTAINS_CHUNKDATA, 30);
  EXPECT_EQ(BUFFER_INFO_IS_COMPOSITE, 31);
  EXPECT_EQ(ACQ_QUEUE_ALL_DISCARD, 4);
  EXPECT_EQ(ACQ_STOP_FLAGS_KILL, 1);
  EXPECT_EQ(EVENT_REMOTE_DEVICE, 4);
  EXPECT_EQ(EVENT_MODULE, 5);
  EXPECT_EQ(PORT_INFO_PORTNAME, 12);
  EXPECT_EQ(URL_INFO_FILENAME, 10);
  EXPECT_EQ(PAYLOAD_TYPE_GENDC, 11);
  EXPECT_EQ(PIXELFORMAT_NAMESPACE_PFNC_32BIT, 4);
  EXPECT_EQ(GENTL_INFINITE, 0xFFFFFFFFFFFFFFFFull);
}

TEST(GenTLDeclarations, EnumerationTypesAreSignedThirtyTwoBitIntegers) {
  // Producers pass these through C interfaces as plain int32 values; a change of width breaks the binary interface.
  EXPECT_TRUE((std::is_same_v<GC_ERROR, int32_t>));
  EXPECT_TRUE((std::is_same_v<BUFFER_INFO_CMD, int32_t>));
  EXPECT_TRUE((std::is_same_v<EVENT_TYPE, int32_t>));
  EXPECT_TRUE((std::is_same_v<INFO_DATATYPE, int32_t>));
  EXPECT_TRUE((std::is_same_v<DEVICE_ACCESS_FLAGS, int32_t>));
}

TEST(GenTLDeclarations, FunctionListsHoldEveryFunctionOnce) {
  std::vector<std::string> names;
#define TALVIR_COLLECT_NAME(name) names.push_back(#name);
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_COLLECT_NAME)
  const size_t count15 = names.size();
  GENTL_FOR_EACH_FUNCTION_1_6(TALVIR_COLLECT_NAME)
#undef TALVIR_COLLECT_NAME
  EXPECT_EQ(count15, 57u);
  EXPECT_EQ(names.front(), "GCGetInfo");
  EXPECT_EQ(names[2], "GCInitLib");
  EXPECT_EQ(names[45], "DSQueueBuffer");
  EXPECT_EQ(names[56], "DSGetBufferPartInfo");
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST(GenTLDeclarations, PointerTypesMatchTheDeclarations) {
  // A consumer casts each looked-up symbol to its pointer type: the type must be exactly the declared function's.
  std::vector<std::string> mismatched;
#define TALVIR_CHECK_POINTER_TYPE(name) \
  if (!std::is_same_v<PFN_##name, decltype(&name)>) { \
    mismatched.push_back(#name); \
  }
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_CHECK_POINTER_TYPE)
  GENTL_FOR_EACH_FUNCTION_1_6(TALVIR_CHECK_POINTER_TYPE)
#undef TALVIR_CHECK_POINTER_TYPE
  EXPECT_TRUE(mismatched.empty()) << mismatched.front();
}

}  // namespace

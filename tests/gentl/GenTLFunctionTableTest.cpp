#include "gentl/GenTLFunctionTable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace TALVIR {
namespace {

TEST(GenTLFunctionTable, HoldsTheFiftySevenFunctionsInBindingOrder) {
  EXPECT_EQ(kGenTLFunctionCount, 57u);
  EXPECT_EQ(sizeof(CGenTLFunctionTable), kGenTLFunctionCount * sizeof(decltype(CGenTLFunctionTable::GCGetInfo)))
      << "one entry per function and nothing else";
  EXPECT_STREQ(GenTLFunctionName(0), "GCGetInfo");
  EXPECT_STREQ(GenTLFunctionName(2), "GCInitLib");
  EXPECT_STREQ(GenTLFunctionName(15), "TLOpen");
  EXPECT_STREQ(GenTLFunctionName(45), "DSQueueBuffer");
  EXPECT_STREQ(GenTLFunctionName(47), "GCGetNumPortURLs");
  EXPECT_STREQ(GenTLFunctionName(56), "DSGetBufferPartInfo");
  EXPECT_EQ(GenTLFunctionName(57), nullptr);
}

TEST(GenTLFunctionTable, OnlyInformationQueriesAndLaterAdditionsAreOptional) {
  const std::set<std::string> optional = {
      "GCGetInfo",        "GCGetLastError",   "GCGetPortInfo",     "EventGetDataInfo",    "EventGetInfo",
      "GCGetNumPortURLs", "GCGetPortURLInfo", "GCReadPortStacked", "GCWritePortStacked",  "DSGetBufferChunkData",
      "IFGetParentTL",    "DevGetParentIF",   "DSGetParentDev",    "DSGetNumBufferParts", "DSGetBufferPartInfo"};
  size_t optionalCount = 0;
  for (size_t index = 0; index < kGenTLFunctionCount; ++index) {
    const std::string name = GenTLFunctionName(index);
    const bool isOptional = optional.count(name) != 0;
    EXPECT_EQ(IsRequiredGenTLFunction(index), !isOptional) << name;
    optionalCount += isOptional ? 1 : 0;
  }
  EXPECT_EQ(optionalCount, optional.size());
  EXPECT_FALSE(IsRequiredGenTLFunction(kGenTLFunctionCount));
}

TEST(GenTLFunctionTable, BindingANullModuleFailsAtTheFirstRequiredFunction) {
  CGenTLFunctionTable table;
  EXPECT_FALSE(BindGenTLFunctions(nullptr, table));
  EXPECT_EQ(table.GCGetInfo, nullptr);
  EXPECT_EQ(table.GCInitLib, nullptr);
}

}  // namespace
}  // namespace TALVIR

#include "image/ImvexConverter.h"
#include "image/ImgTool.h"
#include "image/PixelFormats.h"
#include "platform/DynamicModule.h"

#include "ImvexDoubleApi.h"
#include "TestImages.h"

#include <thread>

namespace TALVIR {
namespace {

// The test double is built into a folder of its own and loaded here by full path.
class ImvexConverterTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(m_double.IsLoaded()) << Platform::LastModuleError();
    m_lastCall = m_double.Symbol<ImvexDoubleLastCallFunction>("ImvexDouble_LastCall");
    m_reset = m_double.Symbol<ImvexDoubleResetFunction>("ImvexDouble_Reset");
    ASSERT_NE(m_lastCall, nullptr);
    ASSERT_NE(m_reset, nullptr);
    m_reset(1);
  }

  SImvexDoubleCall LastCall() const {
    SImvexDoubleCall call{};
    m_lastCall(&call);
    return call;
  }

  Platform::CDynamicModule m_double{TALVIR_IMVEX_DOUBLE_PATH};
  ImvexDoubleLastCallFunction m_lastCall = nullptr;
  ImvexDoubleResetFunction m_reset = nullptr;
};

TEST_F(ImvexConverterTest, LoadsByPathAndFindsTheExport) {
  const CImvexConverter converter(TALVIR_IMVEX_DOUBLE_PATH);
  EXPECT_TRUE(converter.IsAvailable());
}

TEST_F(ImvexConverterTest, MissingLibraryIsReportedAndConvertsNothing) {
  const CImvexConverter converter("/nonexistent/libImvexImgConvert.so");
  EXPECT_FALSE(converter.IsAvailable());
  std::vector<uint8_t> in(6);
  std::vector<uint8_t> out(3);
  EXPECT_FALSE(converter.ConvertToBgr8(PixelFormat::RGB10, in.data(), 1, 1, out.data()));
  EXPECT_EQ(LastCall().calls, 0u);
}

TEST_F(ImvexConverterTest, ToolPassesTheArgumentsAndReturnsTheLibrarysOutput) {
  const CImvexConverter converter(TALVIR_IMVEX_DOUBLE_PATH);
  CImgTool tool(false, &converter);
  const uint32_t formats[] = {PixelFormat::RGB10, PixelFormat::RGB12, PixelFormat::RGB10p};
  uint32_t calls = 0;
  for (uint32_t format : formats) {
    const auto in = Testing::RandomBytes(6 * 3 * 2, format);
    const uint8_t* out = tool.Convert(in.data(), 3, 2, format);
    ASSERT_NE(out, nullptr);
    const SImvexDoubleCall call = LastCall();
    EXPECT_EQ(call.calls, ++calls);
    EXPECT_EQ(call.sourceFormat, format);
    EXPECT_EQ(call.source, in.data());
    EXPECT_EQ(call.width, 3u);
    EXPECT_EQ(call.height, 2u);
    EXPECT_EQ(call.destinationFormat, 35127317u);  // BGR8
    EXPECT_EQ(call.destination, out);
    EXPECT_EQ(call.flag, 1);
    for (uint64_t i = 0; i < 18; ++i) {
      ASSERT_EQ(out[i], ImvexDoubleByte(i)) << i;
    }
  }
}

TEST_F(ImvexConverterTest, LibraryFailureFollowsTheBufferRule) {
  m_reset(0);
  const CImvexConverter converter(TALVIR_IMVEX_DOUBLE_PATH);
  const auto in = Testing::RandomBytes(6 * 4, 3);
  CImgTool cached(false, &converter);
  EXPECT_NE(cached.Convert(in.data(), 2, 2, PixelFormat::RGB12), nullptr);
  CImgTool fresh(true, &converter);
  EXPECT_EQ(fresh.Convert(in.data(), 2, 2, PixelFormat::RGB12), nullptr);
  EXPECT_EQ(LastCall().calls, 2u);
}

TEST_F(ImvexConverterTest, OtherFormatsNeverCallTheLibrary) {
  const CImvexConverter converter(TALVIR_IMVEX_DOUBLE_PATH);
  CImgTool tool(false, &converter);
  const auto in = Testing::RandomBytes(6 * 16, 4);
  ASSERT_NE(tool.Convert(in.data(), 4, 4, PixelFormat::RGB8), nullptr);
  ASSERT_NE(tool.Convert(in.data(), 4, 4, PixelFormat::BayerRG12), nullptr);
  ASSERT_NE(tool.Convert(in.data(), 4, 4, PixelFormat::YUV422_8), nullptr);
  EXPECT_EQ(LastCall().calls, 0u);
}

TEST(ImvexConverterProcess, IsOneInstanceLoadedOnceEvenFromManyThreads) {
  const CImvexConverter* seen[4] = {};
  std::vector<std::thread> threads;
  for (auto& slot : seen) {
    threads.emplace_back([&slot] { slot = &CImvexConverter::ForProcess(); });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  for (const auto* converter : seen) {
    EXPECT_EQ(converter, &CImvexConverter::ForProcess());
  }
}

}  // namespace
}  // namespace TALVIR

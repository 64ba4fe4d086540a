#include "image/ImgTool.h"
#include "image/Demosaic.h"
#include "image/HighBitRgb.h"
#include "image/ImvexConverter.h"
#include "image/PixelFormats.h"
#include "image/PixelLayout.h"
#include "image/Rgb565.h"
#include "image/RgbSwap.h"
#include "image/Shift.h"
#include "image/Unpack.h"
#include "image/YCbCr.h"

#include "image/CpuFeatures.h"

#include "TestImages.h"

#include <cstring>
#include <functional>
#include <new>

namespace TALVIR {
namespace {

using namespace PixelFormat;
using Pixel::EBayer;

// A converter that never finds the maker's library, so that tests do not depend on what is installed.
const CImvexConverter& AbsentConverter() {
  static const CImvexConverter absent("/nonexistent/folder/libImvexImgConvert.so");
  return absent;
}

std::vector<uint8_t> ToVector(const uint8_t* data, uint64_t size) { return std::vector<uint8_t>(data, data + size); }

TEST(ImgTool, NoWorkFormatsReturnTheSourceItself) {
  std::vector<uint8_t> image(4 * 3 * 3, 9);
  for (bool fresh : {false, true}) {
    CImgTool tool(fresh, &AbsentConverter());
    EXPECT_EQ(tool.Convert(image.data(), 4, 3, Mono8), image.data());
    EXPECT_EQ(tool.Convert(image.data(), 4, 3, Mono8s), image.data());
    EXPECT_EQ(tool.Convert(image.data(), 4, 3, BGR8), image.data());
  }
}

TEST(ImgTool, NullSourceZeroSizeAndUnknownFormatGiveNull) {
  std::vector<uint8_t> image(64, 1);
  CImgTool tool(false, &AbsentConverter());
  EXPECT_EQ(tool.Convert(nullptr, 4, 4, Mono12), nullptr);
  EXPECT_EQ(tool.Convert(image.data(), 0, 4, Mono12), nullptr);
  EXPECT_EQ(tool.Convert(image.data(), 4, 0, RGB8), nullptr);
  EXPECT_EQ(tool.Convert(image.data(), 0, 4, Mono8), nullptr);
  EXPECT_EQ(tool.Convert(image.data(), 4, 4, 0x12345678), nullptr);
  EXPECT_EQ(tool.Convert(image.data(), 4, 4, 0x01100006), nullptr);  // no such code in the table
}

TEST(ImgTool, ASizeNoBufferCanHoldThrowsOutOfMemory) {
  const std::vector<uint8_t> image(16, 0);
  CImgTool tool(false, &AbsentConverter());
  // 0xFFFFFFFF x 0xFFFFFFFF pixels of three bytes is more than 64 bits can count.
  EXPECT_THROW(tool.Convert(image.data(), 0xFFFFFFFFu, 0xFFFFFFFFu, RGB8), std::bad_alloc);
  CImgTool fresh(true, &AbsentConverter());
  EXPECT_THROW(fresh.Convert(image.data(), 0xFFFFFFFFu, 0xFFFFFFFFu, YUV422_8), std::bad_alloc);
  // The tool is still usable afterwards.
  const std::vector<uint8_t> rgb = {1, 2, 3};
  const uint8_t* out = tool.Convert(rgb.data(), 1, 1, RGB8);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(ToVector(out, 3), (std::vector<uint8_t>{3, 2, 1}));
}

TEST(ImgTool, OutputFormatOfEveryKind) {
  EXPECT_EQ(CImgTool::OutputFormatOf(Mono8), Mono8);
  EXPECT_EQ(CImgTool::OutputFormatOf(Mono8s), Mono8);
  EXPECT_EQ(CImgTool::OutputFormatOf(BGR8), BGR8);
  EXPECT_EQ(CImgTool::OutputFormatOf(Mono12p), Mono8);
  EXPECT_EQ(CImgTool::OutputFormatOf(Mono10Packed), Mono8);
  EXPECT_EQ(CImgTool::OutputFormatOf(BayerRG8), BGR8);
  EXPECT_EQ(CImgTool::OutputFormatOf(BayerBG14p), BGR8);
  EXPECT_EQ(CImgTool::OutputFormatOf(RGB10p), BGR8);
  EXPECT_EQ(CImgTool::OutputFormatOf(YUV422_8), BGR8);
  EXPECT_EQ(CImgTool::OutputFormatOf(BGR565p), BGR8);
  EXPECT_EQ(CImgTool::OutputFormatOf(0), 0u);
  EXPECT_EQ(CImgTool::OutputFormatOf(0x02180016), 0u);
}

TEST(ImgTool, EdgeCasesOfTheMonoFormats) {
  CImgTool tool(false, &AbsentConverter());
  const std::vector<uint8_t> mono12 = {0xFF, 0x0F, 0x00, 0x00, 0x10, 0x00};  // 4095, 0, 16
  const uint8_t* out = tool.Convert(mono12.data(), 3, 1, Mono12);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(ToVector(out, 3), (std::vector<uint8_t>{255, 0, 1}));
  const std::vector<uint8_t> mono10 = {0xFF, 0x03, 0x00, 0x02, 0x01, 0x00};  // 1023, 512, 1
  out = tool.Convert(mono10.data(), 3, 1, Mono10);
  EXPECT_EQ(ToVector(out, 3), (std::vector<uint8_t>{255, 128, 0}));
  // Mono12Packed AB CD EF -> AB EF.
  const std::vector<uint8_t> packed = {0xAB, 0xCD, 0xEF};
  out = tool.Convert(packed.data(), 2, 1, Mono12Packed);
  EXPECT_EQ(ToVector(out, 2), (std::vector<uint8_t>{0xAB, 0xEF}));
}

TEST(ImgTool, OddPixelCountOfMono10PackedLeavesTheLastCachedByte) {
  CImgTool tool(false, &AbsentConverter());
  const std::vector<uint8_t> mono16 = {0x00, 0x77, 0x00, 0x77, 0x00, 0x77};
  const uint8_t* first = tool.Convert(mono16.data(), 3, 1, Mono16);
  ASSERT_NE(first, nullptr);
  const std::vector<uint8_t> packed = {0x11, 0x22, 0x33, 0x44, 0x55};
  const uint8_t* second = tool.Convert(packed.data(), 3, 1, Mono10Packed);
  EXPECT_EQ(second, first);  // same size: the cached mono buffer is reused
  EXPECT_EQ(ToVector(second, 3), (std::vector<uint8_t>{0x11, 0x33, 0x77}));
}

TEST(ImgTool, ColourEdgeCases) {
  CImgTool tool(false, &AbsentConverter());
  const std::vector<uint8_t> rgb = {10, 20, 30};
  const uint8_t* out = tool.Convert(rgb.data(), 1, 1, RGB8);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(ToVector(out, 3), (std::vector<uint8_t>{30, 20, 10}));
  const std::vector<uint8_t> yuv = {100, 128, 200, 128};
  out = tool.Convert(yuv.data(), 2, 1, YUV422_8);
  EXPECT_EQ(ToVector(out, 6), (std::vector<uint8_t>{100, 100, 100, 200, 200, 200}));
}

TEST(ImgTool, FailedRoutineReturnsTheCachedBufferButNullWhenFresh) {
  const std::vector<uint8_t> column(8, 50);  // 1 x 8 Bayer: too narrow to demosaic
  CImgTool cached(false, &AbsentConverter());
  const uint8_t* out = cached.Convert(column.data(), 1, 8, BayerRG8);
  EXPECT_NE(out, nullptr);
  const std::vector<uint8_t> column12(16, 0);
  EXPECT_EQ(cached.Convert(column12.data(), 1, 8, BayerRG12), out);  // same colour buffer, same size
  CImgTool fresh(true, &AbsentConverter());
  EXPECT_EQ(fresh.Convert(column.data(), 1, 8, BayerRG8), nullptr);
  EXPECT_EQ(fresh.Convert(column12.data(), 1, 8, BayerGB12p), nullptr);
  EXPECT_EQ(fresh.Convert(column.data(), 8, 1, BayerBG8), nullptr);
}

TEST(ImgTool, MonoAndColourBuffersAreSeparateAndReused) {
  CImgTool tool(false, &AbsentConverter());
  const auto mono12 = Testing::RandomBytes(2 * 16 * 4, 1);
  const uint8_t* mono = tool.Convert(mono12.data(), 16, 4, Mono12);
  const auto monoCopy = ToVector(mono, 64);
  const auto rgb = Testing::RandomBytes(3 * 16 * 4, 2);
  const uint8_t* colour = tool.Convert(rgb.data(), 16, 4, RGB8);
  EXPECT_NE(colour, mono);
  EXPECT_EQ(ToVector(mono, 64), monoCopy);  // the colour conversion did not touch the mono buffer
  const auto yuv = Testing::RandomBytes(2 * 16 * 4, 3);
  EXPECT_EQ(tool.Convert(yuv.data(), 16, 4, YUV422_8_UYVY), colour);
  // A size change reallocates; the result is still right.
  const auto larger = Testing::RandomBytes(3 * 40 * 5, 4);
  const uint8_t* resized = tool.Convert(larger.data(), 40, 5, RGB8);
  std::vector<uint8_t> expected(3 * 40 * 5);
  ASSERT_TRUE(Pixel::Reference::SwapRedBlue(larger.data(), expected.data(), 40, 5));
  EXPECT_EQ(ToVector(resized, expected.size()), expected);
}

TEST(ImgTool, FreshModeGivesEachCallItsOwnBuffer) {
  CImgTool tool(true, &AbsentConverter());
  EXPECT_TRUE(tool.FreshBuffers());
  const auto rgb = Testing::RandomBytes(3 * 8 * 2, 5);
  const uint8_t* first = tool.Convert(rgb.data(), 8, 2, RGB8);
  const uint8_t* second = tool.Convert(rgb.data(), 8, 2, RGB8);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(ToVector(first, 48), ToVector(second, 48));
  // Two-stage conversion in fresh mode frees its intermediate (the leak checker would say otherwise).
  const auto bayer12 = Testing::RandomBytes(2 * 8 * 4, 6);
  const uint8_t* colour = tool.Convert(bayer12.data(), 8, 4, BayerGR12);
  ASSERT_NE(colour, nullptr);
  CImgTool::FreeFreshBuffer(first);
  CImgTool::FreeFreshBuffer(second);
  CImgTool::FreeFreshBuffer(colour);
  tool.SetFreshBuffers(false);
  EXPECT_FALSE(tool.FreshBuffers());
  const uint8_t* cached = tool.Convert(rgb.data(), 8, 2, RGB8);
  EXPECT_EQ(tool.Convert(rgb.data(), 8, 2, RGB8), cached);
}

// What each input format must turn into, computed from the reference routines directly.
struct SExpectation {
  uint32_t format;
  bool colour;
  std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> make;
};

std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> ShiftThen(uint32_t bits, EBayer pattern) {
  return [bits, pattern](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
    std::vector<uint8_t> bayer(uint64_t{w} * h);
    Pixel::Reference::ShiftTo8(s, bayer.data(), w, h, bits);
    Pixel::Reference::Demosaic(bayer.data(), d, w, h, pattern);
  };
}
std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> HighBytesThen(EBayer pattern) {
  return [pattern](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
    std::vector<uint8_t> bayer(uint64_t{w} * h);
    Pixel::Reference::KeepHighBytes(s, bayer.data(), w, h);
    Pixel::Reference::Demosaic(bayer.data(), d, w, h, pattern);
  };
}
std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> UnpackThen(uint32_t bits, EBayer pattern) {
  return [bits, pattern](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
    std::vector<uint8_t> bayer(uint64_t{w} * h);
    Pixel::Reference::UnpackLsbFirst(s, bayer.data(), w, h, bits);
    Pixel::Reference::Demosaic(bayer.data(), d, w, h, pattern);
  };
}
std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> DemosaicOnly(EBayer pattern) {
  return [pattern](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
    Pixel::Reference::Demosaic(s, d, w, h, pattern);
  };
}
std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> Shift(uint32_t bits) {
  return [bits](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Pixel::Reference::ShiftTo8(s, d, w, h, bits); };
}
std::function<void(const uint8_t*, uint8_t*, uint32_t, uint32_t)> Unpack(uint32_t bits) {
  return [bits](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
    Pixel::Reference::UnpackLsbFirst(s, d, w, h, bits);
  };
}

std::vector<SExpectation> DispatchTable() {
  using namespace Pixel;
  const auto highBytes = [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
    Reference::KeepHighBytes(s, d, w, h);
  };
  std::vector<SExpectation> table = {
      {Mono10, false, Shift(10)},
      {Mono12, false, Shift(12)},
      {Mono14, false, Shift(14)},
      {Mono16, false, Shift(16)},
      {Mono10Packed, false, highBytes},
      {Mono12Packed, false, highBytes},
      {Mono10p, false, Unpack(10)},
      {Mono12p, false, Unpack(12)},
      {Mono14p, false, Unpack(14)},
      {0x01080008, true, DemosaicOnly(EBayer::GR)},
      {0x01080009, true, DemosaicOnly(EBayer::RG)},
      {0x0108000A, true, DemosaicOnly(EBayer::GB)},
      {0x0108000B, true, DemosaicOnly(EBayer::BG)},
      {0x0110000C, true, ShiftThen(10, EBayer::GR)},
      {0x0110000D, true, ShiftThen(10, EBayer::RG)},
      {0x0110000E, true, ShiftThen(10, EBayer::GB)},
      {0x0110000F, true, ShiftThen(10, EBayer::BG)},
      {0x01100010, true, ShiftThen(12, EBayer::GR)},
      {0x01100011, true, ShiftThen(12, EBayer::RG)},
      {0x01100012, true, ShiftThen(12, EBayer::GB)},
      {0x01100013, true, ShiftThen(12, EBayer::BG)},
      {0x0110002E, true, ShiftThen(16, EBayer::GR)},
      {0x0110002F, true, ShiftThen(16, EBayer::RG)},
      {0x01100030, true, ShiftThen(16, EBayer::GB)},
      {0x01100031, true, ShiftThen(16, EBayer::BG)},
      {0x01100109, true, ShiftThen(14, EBayer::GR)},
      {0x0110010A, true, ShiftThen(14, EBayer::RG)},
      {0x0110010B, true, ShiftThen(14, EBayer::GB)},
      {0x0110010C, true, ShiftThen(14, EBayer::BG)},
      {0x010C0026, true, HighBytesThen(EBayer::GR)},
      {0x010C002A, true, HighBytesThen(EBayer::GR)},
      {0x010C0027, true, HighBytesThen(EBayer::RG)},
      {0x010C002B, true, HighBytesThen(EBayer::RG)},
      {0x010C0028, true, HighBytesThen(EBayer::GB)},
      {0x010C002C, true, HighBytesThen(EBayer::GB)},
      {0x010C0029, true, HighBytesThen(EBayer::BG)},
      {0x010C002D, true, HighBytesThen(EBayer::BG)},
      {0x010A0052, true, UnpackThen(10, EBayer::BG)},
      {0x010A0054, true, UnpackThen(10, EBayer::GB)},
      {0x010A0056, true, UnpackThen(10, EBayer::GR)},
      {0x010A0058, true, UnpackThen(10, EBayer::RG)},
      {0x010C0053, true, UnpackThen(12, EBayer::BG)},
      {0x010C0055, true, UnpackThen(12, EBayer::GB)},
      {0x010C0057, true, UnpackThen(12, EBayer::GR)},
      {0x010C0059, true, UnpackThen(12, EBayer::RG)},
      {0x010E0105, true, UnpackThen(14, EBayer::GR)},
      {0x010E0106, true, UnpackThen(14, EBayer::RG)},
      {0x010E0107, true, UnpackThen(14, EBayer::GB)},
      {0x010E0108, true, UnpackThen(14, EBayer::BG)},
      {RGB8, true, [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Reference::SwapRedBlue(s, d, w, h); }},
      {YUV422_8, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
         Reference::Yuv422ToBgr(s, d, w, h, EYuv422Order::YUYV);
       }},
      {YUV422_8_UYVY, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
         Reference::Yuv422ToBgr(s, d, w, h, EYuv422Order::UYVY);
       }},
      {YUV411_8_UYYVYY, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Reference::Yuv411ToBgr(s, d, w, h); }},
      {YUV8_UYV, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Reference::Yuv444ToBgr(s, d, w, h); }},
      {0x0210003B, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Reference::YCbCr422ToBgr709(s, d, w, h); }},
      {0x02100041, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Reference::YCbCr422ToBgr709(s, d, w, h); }},
      {0x02180040, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { Reference::YCbCr444ToBgr709(s, d, w, h); }},
      {0x02100035, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
         Reference::Expand565(s, d, w, h, E565Order::LowFieldFirst);
       }},
      {0x02100036, true,
       [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
         Reference::Expand565(s, d, w, h, E565Order::HighFieldFirst);
       }},
      {RGB10, true, [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { HighBitRgbToBgr(s, d, w, h, RGB10); }},
      {RGB12, true, [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { HighBitRgbToBgr(s, d, w, h, RGB12); }},
      {RGB10p, true, [](const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) { HighBitRgbToBgr(s, d, w, h, RGB10p); }},
  };
  return table;
}

// Runs a test body once with the vector routines and once with the fallback routines.
class ImgToolPaths : public ::testing::TestWithParam<bool> {
protected:
  void SetUp() override { Pixel::SetAvx2AllowedForTesting(GetParam()); }
  void TearDown() override { Pixel::SetAvx2AllowedForTesting(true); }
};

INSTANTIATE_TEST_SUITE_P(VectorAndFallback, ImgToolPaths, ::testing::Values(true, false),
                         [](const ::testing::TestParamInfo<bool>& path) { return path.param ? "Vector" : "Fallback"; });

TEST_P(ImgToolPaths, EveryFormatOfTheDispatchTableConvertsLikeItsRoutine) {
  const Testing::SSize sizes[] = {{64, 4}, {37, 5}, {2, 2}, {100, 3}};
  uint32_t seed = 900;
  for (bool fresh : {false, true}) {
    CImgTool tool(fresh, &AbsentConverter());
    for (const auto& expectation : DispatchTable()) {
      for (const auto& size : sizes) {
        const uint64_t count = uint64_t{size.width} * size.height;
        const uint64_t inputBytes = ImageSizeBytes(expectation.format, size.width, size.height);
        ASSERT_NE(inputBytes, 0u) << std::hex << expectation.format;
        const auto in = Testing::RandomBytes(inputBytes, seed++);
        const uint64_t outputBytes = count * (expectation.colour ? 3 : 1);
        std::vector<uint8_t> expected(outputBytes, 0);
        expectation.make(in.data(), expected.data(), size.width, size.height);
        // Trailing pixels some routines leave alone are compared only when the routine writes all of them.
        const uint8_t* out = tool.Convert(in.data(), size.width, size.height, expectation.format);
        ASSERT_NE(out, nullptr) << std::hex << expectation.format;
        if (size.width * size.height % 4 == 0) {
          EXPECT_EQ(ToVector(out, outputBytes), expected)
              << std::hex << expectation.format << std::dec << " " << Testing::Describe(size);
        }
        EXPECT_EQ(CImgTool::OutputFormatOf(expectation.format), expectation.colour ? BGR8 : Mono8);
        if (fresh) {
          CImgTool::FreeFreshBuffer(out);
        }
      }
    }
  }
}

TEST(ImgTool, WithoutTheMakersLibraryHighBitRgbIsReducedByUs) {
  CImgTool tool(false, &AbsentConverter());
  std::vector<uint8_t> rgb12;
  for (uint16_t v : {4095, 16, 2048}) {
    rgb12.push_back(static_cast<uint8_t>(v & 0xFF));
    rgb12.push_back(static_cast<uint8_t>(v >> 8));
  }
  const uint8_t* out = tool.Convert(rgb12.data(), 1, 1, RGB12);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(ToVector(out, 3), (std::vector<uint8_t>{128, 1, 255}));
}

TEST(ImgTool, DefaultToolUsesTheProcessWideLibraryOrOurFallback) {
  CImgTool tool;
  EXPECT_FALSE(tool.FreshBuffers());
  if (CImvexConverter::ForProcess().IsAvailable()) {
    GTEST_SKIP() << "the maker's conversion library is installed on this machine";
  }
  const std::vector<uint8_t> rgb10 = {0xFF, 0x03, 0x00, 0x02, 0x04, 0x00};
  const uint8_t* out = tool.Convert(rgb10.data(), 1, 1, RGB10);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(ToVector(out, 3), (std::vector<uint8_t>{1, 128, 255}));
}

}  // namespace
}  // namespace TALVIR

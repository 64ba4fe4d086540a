// The documented test pattern, checked byte by byte against values computed by hand from the formula
// (x + 3y + 7f + 11c) & mask and each layout's packing rule.
#include "talvirsim/TestPattern.h"

#include <gtest/gtest.h>

#include <vector>

using namespace TalvirSim;

namespace {

std::vector<uint8_t> Image(const char* name, uint64_t width, uint64_t height, uint64_t frame) {
  const SPixelFormat* format = FindPixelFormat(std::string(name));
  EXPECT_NE(format, nullptr) << name;
  return format ? MakeImage(*format, width, height, frame) : std::vector<uint8_t>{};
}

}  // namespace

TEST(SimPattern, EveryFormatIsFoundByNameAndCode) {
  EXPECT_EQ(AllPixelFormats().size(), 65u);
  for (const SPixelFormat& format : AllPixelFormats()) {
    EXPECT_EQ(FindPixelFormat(format.code), &format) << format.name;
    EXPECT_EQ(FindPixelFormat(std::string(format.name)), &format) << format.name;
    // Bits per pixel in the code (bits 23-16) agree with the size rule.
    const uint32_t bitsPerPixel = (format.code >> 16) & 0xFF;
    EXPECT_EQ(ImageSize(format, 8, 2) * 8, 16u * bitsPerPixel) << format.name;
  }
  EXPECT_EQ(FindPixelFormat(0x12345678u), nullptr);
  EXPECT_EQ(FindPixelFormat(std::string("Mono9")), nullptr);
}

TEST(SimPattern, Mono8FollowsTheFormulaAndWraps) {
  const auto image = Image("Mono8", 300, 3, 1);
  EXPECT_EQ(image[0], 7);  // (0 + 0 + 7)
  EXPECT_EQ(image[5 + 300 * 2], 5 + 6 + 7);
  EXPECT_EQ(image[260], (260 + 7) & 0xFF);  // wraps within a row
}

TEST(SimPattern, SixteenBitContainersAreLittleEndianAndMasked) {
  const auto image = Image("Mono12", 256, 128, 3);
  const size_t at = (100 * 256 + 200) * 2;
  EXPECT_EQ(image[at], 0x09);  // (200 + 300 + 21) & 0xFFF = 521 = 0x209
  EXPECT_EQ(image[at + 1], 0x02);
  const auto mono16 = Image("Mono16", 4, 1, 10000);
  EXPECT_EQ(mono16[0] | mono16[1] << 8, 70000 & 0xFFFF);
}

TEST(SimPattern, GigEPackedFormatsPutTwoPixelsInThreeBytes) {
  const auto mono12 = Image("Mono12Packed", 2, 1, 100);  // p0 = 700 = 0x2BC, p1 = 0x2BD
  ASSERT_EQ(mono12.size(), 3u);
  EXPECT_EQ(mono12[0], 0x2B);
  EXPECT_EQ(mono12[1], 0xDC);
  EXPECT_EQ(mono12[2], 0x2B);
  const auto mono10 = Image("Mono10Packed", 2, 1, 100);
  EXPECT_EQ(mono10[0], 0xAF);
  EXPECT_EQ(mono10[1], 0x10);
  EXPECT_EQ(mono10[2], 0xAF);
  const auto odd = Image("Mono12Packed", 3, 1, 0);  // 0, 1, then a lone 2
  ASSERT_EQ(odd.size(), 5u);
  EXPECT_EQ(odd, (std::vector<uint8_t>{0x00, 0x10, 0x00, 0x00, 0x02}));
}

TEST(SimPattern, BitPackedFormatsAreLsbFirst) {
  EXPECT_EQ(Image("Mono10p", 4, 1, 0), (std::vector<uint8_t>{0x00, 0x04, 0x20, 0xC0, 0x00}));
  EXPECT_EQ(Image("RGB10p", 1, 1, 0), (std::vector<uint8_t>{0x00, 0x2C, 0x60, 0x01}));
  EXPECT_EQ(Image("Mono12p", 2, 1, 0), (std::vector<uint8_t>{0x00, 0x10, 0x00}));
}

TEST(SimPattern, ColourComponentsKeepTheirIndexWhateverTheirOrder) {
  EXPECT_EQ(Image("RGB8", 1, 1, 0), (std::vector<uint8_t>{0, 11, 22}));
  EXPECT_EQ(Image("BGR8", 1, 1, 0), (std::vector<uint8_t>{22, 11, 0}));
  EXPECT_EQ(Image("YUV8_UYV", 1, 1, 0), (std::vector<uint8_t>{11, 0, 22}));
  const auto rgb12 = Image("RGB12", 1, 1, 0);
  EXPECT_EQ(rgb12, (std::vector<uint8_t>{0, 0, 11, 0, 22, 0}));
}

TEST(SimPattern, ChromaIsSharedWithinItsGroup) {
  EXPECT_EQ(Image("YUV422_8", 4, 1, 0), (std::vector<uint8_t>{0, 11, 1, 22, 2, 13, 3, 24}));
  EXPECT_EQ(Image("YUV422_8_UYVY", 2, 1, 0), (std::vector<uint8_t>{11, 0, 22, 1}));
  EXPECT_EQ(Image("YUV411_8_UYYVYY", 4, 1, 0), (std::vector<uint8_t>{11, 0, 1, 22, 2, 3}));
  const SPixelFormat& yuv = *FindPixelFormat(std::string("YUV422_8"));
  EXPECT_EQ(ExpectedComponent(yuv, 3, 0, 0, 1), ExpectedComponent(yuv, 2, 0, 0, 1));
}

TEST(SimPattern, Packed565PutsTheFirstNamedComponentInTheLowBits) {
  // Pixel (1, 0): R = 1, G = 12 (six bits), B = 23.
  const auto rgb = Image("RGB565p", 2, 1, 0);
  EXPECT_EQ(rgb[2], 0x81);
  EXPECT_EQ(rgb[3], 0xB9);
  const auto bgr = Image("BGR565p", 2, 1, 0);
  EXPECT_EQ(bgr[2], 0x97);
  EXPECT_EQ(bgr[3], 0x09);
}

TEST(SimPattern, AShortBufferReceivesTheImagesBeginning) {
  const SPixelFormat& mono10p = *FindPixelFormat(std::string("Mono10p"));
  std::vector<uint8_t> full = MakeImage(mono10p, 16, 4, 9);
  std::vector<uint8_t> part(10, 0xEE);
  EXPECT_EQ(FillImage(mono10p, 16, 4, 9, part.data(), 7), full.size());
  EXPECT_TRUE(std::equal(part.begin(), part.begin() + 7, full.begin()));
  EXPECT_EQ(part[7], 0xEE);
  const SPixelFormat& rgb = *FindPixelFormat(std::string("RGB8"));
  std::vector<uint8_t> rgbPart(5, 0xEE);
  FillImage(rgb, 4, 4, 0, rgbPart.data(), 4);
  EXPECT_EQ(rgbPart[4], 0xEE);
}

TEST(SimPattern, TheFastRowPathsDrawWhatThePixelByPixelPathDraws) {
  for (const SPixelFormat& format : AllPixelFormats()) {
    for (uint64_t frame : {uint64_t{0}, uint64_t{1}, uint64_t{37}, uint64_t{100000}}) {
      const uint64_t width = 36;
      const uint64_t height = 90;  // enough rows for 3y to wrap the 8-bit formats
      std::vector<uint8_t> generic(ImageSize(format, width, height), 0xA5);
      Detail::FillGeneric(format, width, height, frame, generic.data(), generic.size());
      EXPECT_EQ(MakeImage(format, width, height, frame), generic) << format.name << " frame " << frame;
    }
  }
}

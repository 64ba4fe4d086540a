#include "image/PixelLayout.h"
#include "image/PixelFormats.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace TALVIR {
namespace {

using namespace PixelFormat;

void ExpectLayout(uint32_t pfnc, uint32_t bits, uint32_t factor) {
  const SPixelLayout layout = PixelLayoutOf(pfnc);
  EXPECT_EQ(layout.bits, bits) << std::hex << pfnc;
  EXPECT_EQ(layout.factor, factor) << std::hex << pfnc;
}

TEST(PixelLayout, ThreeComponentFormats) {
  ExpectLayout(RGB8, 8, 3);
  ExpectLayout(BGR8, 8, 3);
  ExpectLayout(YUV8_UYV, 8, 3);
  ExpectLayout(YCbCr709_8_CbYCr, 8, 3);
  ExpectLayout(RGB10, 16, 3);
  ExpectLayout(RGB12, 16, 3);
  ExpectLayout(RGB10p, 10, 3);
}

TEST(PixelLayout, FourTwoTwoFormatsAreTwoBytesPerPixel) {
  ExpectLayout(YUV422_8, 8, 2);
  ExpectLayout(YUV422_8_UYVY, 8, 2);
  ExpectLayout(YCbCr422_8, 8, 2);
  ExpectLayout(YCbCr709_422_8, 8, 2);
}

TEST(PixelLayout, SingleUnitFormatsTakeTheirBitsFromTheCode) {
  ExpectLayout(Mono8, 8, 1);
  ExpectLayout(Mono8s, 8, 1);
  ExpectLayout(Mono12, 16, 1);
  ExpectLayout(Mono14, 16, 1);
  ExpectLayout(Mono10Packed, 12, 1);
  ExpectLayout(Mono10p, 10, 1);
  ExpectLayout(Mono12p, 12, 1);
  ExpectLayout(Mono14p, 14, 1);
  ExpectLayout(BayerRG8, 8, 1);
  ExpectLayout(BayerGR14, 16, 1);
  ExpectLayout(BayerBG12Packed, 12, 1);
  ExpectLayout(BayerGB10p, 10, 1);
  ExpectLayout(BayerBG14p, 14, 1);
  ExpectLayout(YUV411_8_UYYVYY, 12, 1);
  ExpectLayout(RGB565p, 16, 1);
  ExpectLayout(BGR565p, 16, 1);
}

TEST(PixelLayout, UnknownCodesAreZero) {
  ExpectLayout(0, 0, 0);
  ExpectLayout(0x01080003, 0, 0);  // plausible layout bits, unknown id
  ExpectLayout(0x81080001, 0, 0);  // custom flag set on Mono8
  ExpectLayout(0xFFFFFFFF, 0, 0);
}

TEST(ImageSizeBytes, MultipliesAndRoundsUpToWholeBytes) {
  EXPECT_EQ(ImageSizeBytes(Mono8, 2448, 2048), 2448u * 2048u);
  EXPECT_EQ(ImageSizeBytes(Mono12, 640, 480), 640u * 480u * 2u);
  EXPECT_EQ(ImageSizeBytes(RGB8, 3, 2), 18u);
  EXPECT_EQ(ImageSizeBytes(RGB10, 3, 2), 36u);
  EXPECT_EQ(ImageSizeBytes(YUV422_8, 5, 1), 10u);
  EXPECT_EQ(ImageSizeBytes(Mono12Packed, 3, 1), 5u);  // 36 bits
  EXPECT_EQ(ImageSizeBytes(Mono10p, 1, 1), 2u);       // 10 bits
  EXPECT_EQ(ImageSizeBytes(Mono10p, 4, 1), 5u);
  EXPECT_EQ(ImageSizeBytes(Mono14p, 3, 1), 6u);  // 42 bits
  EXPECT_EQ(ImageSizeBytes(RGB10p, 1, 1), 4u);   // 30 bits
  EXPECT_EQ(ImageSizeBytes(RGB10p, 4, 1), 15u);
  EXPECT_EQ(ImageSizeBytes(YUV411_8_UYYVYY, 4, 1), 6u);
}

TEST(ImageSizeBytes, ZeroForUnknownFormatsEmptyImagesAndOverflow) {
  EXPECT_EQ(ImageSizeBytes(0x12345678, 640, 480), 0u);
  EXPECT_EQ(ImageSizeBytes(Mono8, 0, 480), 0u);
  EXPECT_EQ(ImageSizeBytes(Mono8, 640, 0), 0u);
  const uint64_t huge = std::numeric_limits<uint64_t>::max() / 2;
  EXPECT_EQ(ImageSizeBytes(Mono8, huge, 3), 0u);
  EXPECT_EQ(ImageSizeBytes(RGB10, uint64_t{1} << 31, uint64_t{1} << 31), 0u);  // 2^62 pixels x 48 bits
}

}  // namespace
}  // namespace TALVIR

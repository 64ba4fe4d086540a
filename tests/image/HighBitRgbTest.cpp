#include "image/HighBitRgb.h"
#include "image/PixelFormats.h"
#include "image/PixelLayout.h"

#include "TestImages.h"

namespace TALVIR::Pixel {
namespace {

void PutSample(std::vector<uint8_t>& bytes, uint16_t value) {
  bytes.push_back(static_cast<uint8_t>(value & 0xFF));
  bytes.push_back(static_cast<uint8_t>(value >> 8));
}

TEST(HighBitRgb, ContainersAreShiftedAndWrittenBlueFirst) {
  std::vector<uint8_t> in;
  for (uint16_t v : {1023, 512, 4}) {  // R G B
    PutSample(in, v);
  }
  std::vector<uint8_t> out(3);
  ASSERT_TRUE(HighBitRgbToBgr(in.data(), out.data(), 1, 1, PixelFormat::RGB10));
  EXPECT_EQ(out, (std::vector<uint8_t>{1, 128, 255}));
  in.clear();
  for (uint16_t v : {4095, 16, 2048}) {
    PutSample(in, v);
  }
  ASSERT_TRUE(HighBitRgbToBgr(in.data(), out.data(), 1, 1, PixelFormat::RGB12));
  EXPECT_EQ(out, (std::vector<uint8_t>{128, 1, 255}));
}

TEST(HighBitRgb, PackedTenBitComponentsFollowEachOther) {
  // Two pixels: (R, G, B) = (0x3FF, 0x004, 0x200), (0x100, 0x0FF, 0x3FC); 60 bits in 8 bytes.
  const uint16_t components[6] = {0x3FF, 0x004, 0x200, 0x100, 0x0FF, 0x3FC};
  uint64_t stream = 0;
  for (int k = 0; k < 6; ++k) {
    stream |= uint64_t{components[k]} << (10 * k);
  }
  std::vector<uint8_t> in(ImageSizeBytes(PixelFormat::RGB10p, 2, 1));
  ASSERT_EQ(in.size(), 8u);
  for (size_t i = 0; i < in.size(); ++i) {
    in[i] = static_cast<uint8_t>(stream >> (8 * i));
  }
  std::vector<uint8_t> out(6);
  ASSERT_TRUE(HighBitRgbToBgr(in.data(), out.data(), 2, 1, PixelFormat::RGB10p));
  EXPECT_EQ(out, (std::vector<uint8_t>{0x80, 0x01, 0xFF, 0xFF, 0x3F, 0x40}));
}

TEST(HighBitRgb, PackedReadsNoFurtherThanTheImage) {
  // Every pixel count from 1 to 9 with a buffer of exactly the image size (the address sanitizer checks reads).
  for (uint32_t count = 1; count < 10; ++count) {
    const auto in = Testing::RandomBytes(ImageSizeBytes(PixelFormat::RGB10p, count, 1), count);
    std::vector<uint8_t> out(3 * count);
    EXPECT_TRUE(HighBitRgbToBgr(in.data(), out.data(), count, 1, PixelFormat::RGB10p));
  }
}

TEST(HighBitRgb, FailsForOtherFormatsAndBadArguments) {
  std::vector<uint8_t> buffer(12);
  EXPECT_FALSE(HighBitRgbToBgr(buffer.data(), buffer.data(), 1, 1, PixelFormat::RGB8));
  EXPECT_FALSE(HighBitRgbToBgr(nullptr, buffer.data(), 1, 1, PixelFormat::RGB10));
  EXPECT_FALSE(HighBitRgbToBgr(buffer.data(), nullptr, 1, 1, PixelFormat::RGB10));
  EXPECT_FALSE(HighBitRgbToBgr(buffer.data(), buffer.data(), 0, 1, PixelFormat::RGB12));
}

}  // namespace
}  // namespace TALVIR::Pixel

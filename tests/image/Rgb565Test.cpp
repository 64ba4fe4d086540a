#include "image/Rgb565.h"

#include "TestImages.h"

#include <cmath>

namespace TALVIR::Pixel {
namespace {

std::vector<uint8_t> Word(uint16_t value) {
  return {static_cast<uint8_t>(value & 0xFF), static_cast<uint8_t>(value >> 8)};
}

TEST(Expand565, FieldsWidenToFullRange) {
  std::vector<uint8_t> out(3);
  const auto white = Word(0xFFFF);
  ASSERT_TRUE(Expand565(white.data(), out.data(), 1, 1, E565Order::LowFieldFirst));
  EXPECT_EQ(out, (std::vector<uint8_t>{255, 255, 255}));
  // bits 0-4 = 1, bits 5-10 = 2, bits 11-15 = 30
  const auto mixed = Word(static_cast<uint16_t>(1 | (2 << 5) | (30 << 11)));
  ASSERT_TRUE(Expand565(mixed.data(), out.data(), 1, 1, E565Order::LowFieldFirst));
  EXPECT_EQ(out, (std::vector<uint8_t>{8, 8, 247}));  // 8.7 -> 8; 8.6 -> 8; 246.8 -> 247
  ASSERT_TRUE(Expand565(mixed.data(), out.data(), 1, 1, E565Order::HighFieldFirst));
  EXPECT_EQ(out, (std::vector<uint8_t>{247, 8, 8}));
}

TEST(Expand565, EveryFieldValueRoundsAsTheFormulaSays) {
  std::vector<uint8_t> in;
  for (uint32_t f = 0; f < 64; ++f) {
    const auto word = Word(static_cast<uint16_t>((f & 31) | (f << 5) | ((31 - (f & 31)) << 11)));
    in.insert(in.end(), word.begin(), word.end());
  }
  std::vector<uint8_t> out(64 * 3);
  ASSERT_TRUE(Reference::Expand565(in.data(), out.data(), 64, 1, E565Order::LowFieldFirst));
  for (uint32_t f = 0; f < 64; ++f) {
    EXPECT_EQ(out[3 * f], static_cast<uint8_t>(std::floor((f & 31) * 255.0 / 31 + 0.5))) << f;
    EXPECT_EQ(out[3 * f + 1], static_cast<uint8_t>(std::floor(f * 255.0 / 63 + 0.5))) << f;
    EXPECT_EQ(out[3 * f + 2], static_cast<uint8_t>(std::floor((31 - (f & 31)) * 255.0 / 31 + 0.5))) << f;
  }
}

TEST(Expand565, FailsForBadArguments) {
  std::vector<uint8_t> buffer(12);
  EXPECT_FALSE(Expand565(nullptr, buffer.data(), 1, 1, E565Order::LowFieldFirst));
  EXPECT_FALSE(Expand565(buffer.data(), nullptr, 1, 1, E565Order::LowFieldFirst));
  EXPECT_FALSE(Expand565(buffer.data(), buffer.data(), 0, 1, E565Order::HighFieldFirst));
  EXPECT_FALSE(Expand565(buffer.data(), buffer.data(), 1, 0, E565Order::HighFieldFirst));
}

}  // namespace
}  // namespace TALVIR::Pixel

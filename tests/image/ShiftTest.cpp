#include "image/Shift.h"

#include "TestImages.h"

#include <algorithm>

namespace TALVIR::Pixel {
namespace {

using Testing::SizesToCheck;

std::vector<uint8_t> Samples(std::initializer_list<uint16_t> values) {
  std::vector<uint8_t> bytes;
  for (uint16_t v : values) {
    bytes.push_back(static_cast<uint8_t>(v & 0xFF));
    bytes.push_back(static_cast<uint8_t>(v >> 8));
  }
  return bytes;
}

TEST(ShiftTo8, KeepsTheTopEightOfTheDeclaredBits) {
  const auto in = Samples({4095, 0, 16, 2048, 1023});
  std::vector<uint8_t> out(5);
  ASSERT_TRUE(Reference::ShiftTo8(in.data(), out.data(), 5, 1, 12));
  EXPECT_EQ(out, (std::vector<uint8_t>{255, 0, 1, 128, 63}));
  ASSERT_TRUE(Reference::ShiftTo8(in.data(), out.data(), 5, 1, 10));
  EXPECT_EQ(out[4], 255);  // Mono10 1023
}

TEST(ShiftTo8, DataWiderThanDeclaredWrapsInsteadOfSaturating) {
  const auto in = Samples({0x1000, 0xFFFF});
  std::vector<uint8_t> out(2);
  ASSERT_TRUE(Reference::ShiftTo8(in.data(), out.data(), 2, 1, 12));
  EXPECT_EQ(out[0], 0x00);  // 4096 >> 4 = 256, low 8 bits 0
  EXPECT_EQ(out[1], 0xFF);
  ASSERT_TRUE(Reference::ShiftTo8(in.data(), out.data(), 2, 1, 10));
  EXPECT_EQ(out[0], 0x00);  // 4096 >> 2 = 1024
  EXPECT_EQ(out[1], 0xFF);
  ASSERT_TRUE(Reference::ShiftTo8(in.data(), out.data(), 2, 1, 16));
  EXPECT_EQ(out[0], 0x10);
}

TEST(ShiftTo8, FailsForBadArguments) {
  std::vector<uint8_t> in(8);
  std::vector<uint8_t> out(4);
  for (auto routine : {&Reference::ShiftTo8, &ShiftTo8}) {
    EXPECT_FALSE(routine(nullptr, out.data(), 2, 2, 12));
    EXPECT_FALSE(routine(in.data(), nullptr, 2, 2, 12));
    EXPECT_FALSE(routine(in.data(), out.data(), 0, 2, 12));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 0, 12));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 2, 8));
  }
}

// Any declared bit count above 8 is accepted: samples narrower than declared simply lose more low bits, and
// once the shift reaches 16 nothing of a 16-bit sample is left.
TEST(ShiftTo8, BitCountsAboveSixteenShiftFurther) {
  const std::vector<uint8_t> in = {0xFF, 0xFF, 0x00, 0x80, 0x34, 0x12, 0x01, 0x00};  // 0xFFFF 0x8000 0x1234 1
  using Routine = bool (*)(const uint8_t*, uint8_t*, uint32_t, uint32_t, uint32_t);
  std::vector<Routine> routines = {&Reference::ShiftTo8, &ShiftTo8};
#if TALVIR_IMAGE_HAS_SSE2
  routines.push_back(&Sse2::ShiftTo8);
#endif
#if TALVIR_IMAGE_HAS_AVX2
  if (Testing::HaveAvx2()) {
    routines.push_back(&Avx2::ShiftTo8);
  }
#endif
  const struct {
    uint32_t bits;
    std::vector<uint8_t> expected;
  } cases[] = {
      {17, {0x7F, 0x40, 0x09, 0x00}}, {20, {0x0F, 0x08, 0x01, 0x00}}, {23, {0x01, 0x01, 0x00, 0x00}},
      {24, {0x00, 0x00, 0x00, 0x00}}, {40, {0x00, 0x00, 0x00, 0x00}}, {0xFFFFFFFFu, {0x00, 0x00, 0x00, 0x00}},
  };
  for (auto routine : routines) {
    for (const auto& c : cases) {
      std::vector<uint8_t> out(4, 0xA5);
      EXPECT_TRUE(routine(in.data(), out.data(), 2, 2, c.bits)) << c.bits;
      EXPECT_EQ(out, c.expected) << c.bits;
    }
  }
}

TEST(ShiftTo8, FastVersionsMatchTheReference) {
  uint32_t seed = 1;
  for (const auto& size : SizesToCheck()) {
    for (uint32_t bits : {10u, 12u, 14u, 16u}) {
      const uint64_t count = uint64_t{size.width} * size.height;
      const auto in = Testing::RandomBytes(2 * count, seed++);
      auto expected = Testing::Prefilled(count);
      ASSERT_TRUE(Reference::ShiftTo8(in.data(), expected.data(), size.width, size.height, bits));
      auto dispatched = Testing::Prefilled(count);
      ASSERT_TRUE(ShiftTo8(in.data(), dispatched.data(), size.width, size.height, bits));
      EXPECT_EQ(dispatched, expected) << Testing::Describe(size) << " bits " << bits;
#if TALVIR_IMAGE_HAS_SSE2
      auto sse2 = Testing::Prefilled(count);
      ASSERT_TRUE(Sse2::ShiftTo8(in.data(), sse2.data(), size.width, size.height, bits));
      EXPECT_EQ(sse2, expected) << Testing::Describe(size) << " bits " << bits;
#endif
#if TALVIR_IMAGE_HAS_AVX2
      if (Testing::HaveAvx2()) {
        auto avx2 = Testing::Prefilled(count);
        ASSERT_TRUE(Avx2::ShiftTo8(in.data(), avx2.data(), size.width, size.height, bits));
        EXPECT_EQ(avx2, expected) << Testing::Describe(size) << " bits " << bits;
      }
#endif
    }
  }
}

TEST(ShiftTo8, FastVersionsMatchAtEveryBufferAlignment) {
  const uint32_t w = 300;
  const uint32_t h = 1;
  const auto in = Testing::RandomBytes(2 * w * h, 79);
  for (uint32_t bits : {10u, 16u}) {
    std::vector<uint8_t> expected(w * h);
    ASSERT_TRUE(Reference::ShiftTo8(in.data(), expected.data(), w, h, bits));
    for (uint32_t offset = 0; offset < 32; ++offset) {
      Testing::COffsetBuffer source(in.size(), offset, 0);
      std::copy(in.begin(), in.end(), source.Data());
      Testing::COffsetBuffer out(w * h, (offset * 3) % 32, 0x5A);
      for (bool vector : {true, false}) {  // the AVX2 routine, then the one used without AVX2
        SetAvx2AllowedForTesting(vector);
        ASSERT_TRUE(ShiftTo8(source.Data(), out.Data(), w, h, bits));
        EXPECT_EQ(out.Contents(), expected) << "offset " << offset << " bits " << bits << " vector " << vector;
      }
      SetAvx2AllowedForTesting(true);
    }
  }
}

}  // namespace
}  // namespace TALVIR::Pixel

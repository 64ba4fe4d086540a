#include "image/Unpack.h"
#include "image/PixelFormats.h"
#include "image/PixelLayout.h"

#include "TestImages.h"

namespace TALVIR::Pixel {
namespace {

using Testing::SizesToCheck;

TEST(KeepHighBytes, KeepsBytesZeroAndTwoOfEachTriple) {
  const std::vector<uint8_t> in = {0xAB, 0xCD, 0xEF, 0x12, 0x34, 0x56};
  std::vector<uint8_t> out(4);
  ASSERT_TRUE(Reference::KeepHighBytes(in.data(), out.data(), 4, 1));
  EXPECT_EQ(out, (std::vector<uint8_t>{0xAB, 0xEF, 0x12, 0x56}));
}

TEST(KeepHighBytes, OddPixelCountLeavesTheLastOutputByteAlone) {
  const std::vector<uint8_t> in = {0xAB, 0xCD, 0xEF, 0x12, 0x34};  // 3 pixels: 5 bytes
  std::vector<uint8_t> out(3, 0x77);
  ASSERT_TRUE(Reference::KeepHighBytes(in.data(), out.data(), 3, 1));
  EXPECT_EQ(out, (std::vector<uint8_t>{0xAB, 0xEF, 0x77}));
  std::vector<uint8_t> single(1, 0x77);
  ASSERT_TRUE(Reference::KeepHighBytes(in.data(), single.data(), 1, 1));  // fewer than two pixels: no write
  EXPECT_EQ(single[0], 0x77);
  ASSERT_TRUE(KeepHighBytes(in.data(), single.data(), 1, 1));
  EXPECT_EQ(single[0], 0x77);
}

TEST(UnpackLsbFirst, TenBitGroupsGiveTheTopEightBitsOfEachPixel) {
  // Pixels 0x3FF, 0x001, 0x2AA, 0x155 packed LSB first: bits 0-9, 10-19, 20-29, 30-39.
  const uint64_t value = 0x3FFull | (0x001ull << 10) | (0x2AAull << 20) | (0x155ull << 30);
  std::vector<uint8_t> in(5);
  for (int i = 0; i < 5; ++i) {
    in[i] = static_cast<uint8_t>(value >> (8 * i));
  }
  std::vector<uint8_t> out(4);
  ASSERT_TRUE(Reference::UnpackLsbFirst(in.data(), out.data(), 4, 1, 10));
  EXPECT_EQ(out, (std::vector<uint8_t>{0xFF, 0x00, 0xAA, 0x55}));
}

TEST(UnpackLsbFirst, TwelveAndFourteenBitGroups) {
  const std::vector<uint8_t> in12 = {0x21, 0x43, 0x65};  // pixels 0x321, 0x654
  std::vector<uint8_t> out(4);
  ASSERT_TRUE(Reference::UnpackLsbFirst(in12.data(), out.data(), 2, 1, 12));
  EXPECT_EQ(out[0], 0x32);
  EXPECT_EQ(out[1], 0x65);
  const uint64_t value = 0x3FFFull | (0x1234ull << 14) | (0x0ABCull << 28) | (0x2001ull << 42);
  std::vector<uint8_t> in14(7);
  for (int i = 0; i < 7; ++i) {
    in14[i] = static_cast<uint8_t>(value >> (8 * i));
  }
  ASSERT_TRUE(Reference::UnpackLsbFirst(in14.data(), out.data(), 4, 1, 14));
  EXPECT_EQ(out, (std::vector<uint8_t>{0xFF, 0x48, 0x2A, 0x80}));
}

TEST(UnpackLsbFirst, OnlyWholeGroupsAreWritten) {
  const std::vector<uint8_t> in(7, 0xFF);  // 5 pixels of 10 bits need 7 bytes
  std::vector<uint8_t> out(5, 0x11);
  ASSERT_TRUE(Reference::UnpackLsbFirst(in.data(), out.data(), 5, 1, 10));
  EXPECT_EQ(out, (std::vector<uint8_t>{0xFF, 0xFF, 0xFF, 0xFF, 0x11}));
}

TEST(Unpack, FailsForBadArguments) {
  std::vector<uint8_t> in(16);
  std::vector<uint8_t> out(8);
  for (auto routine : {&Reference::KeepHighBytes, &KeepHighBytes}) {
    EXPECT_FALSE(routine(nullptr, out.data(), 2, 2));
    EXPECT_FALSE(routine(in.data(), nullptr, 2, 2));
    EXPECT_FALSE(routine(in.data(), out.data(), 0, 2));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 0));
  }
  for (auto routine : {&Reference::UnpackLsbFirst, &UnpackLsbFirst}) {
    EXPECT_FALSE(routine(nullptr, out.data(), 2, 2, 10));
    EXPECT_FALSE(routine(in.data(), nullptr, 2, 2, 10));
    EXPECT_FALSE(routine(in.data(), out.data(), 0, 2, 12));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 0, 14));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 2, 8));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 2, 16));
    EXPECT_FALSE(routine(in.data(), out.data(), 2, 2, 11));
  }
}

TEST(KeepHighBytes, FastVersionsMatchTheReference) {
  uint32_t seed = 100;
  for (const auto& size : SizesToCheck()) {
    const uint64_t count = uint64_t{size.width} * size.height;
    // Exactly the image size, so that any read past the packed data is caught by the address sanitizer.
    const auto in = Testing::RandomBytes(ImageSizeBytes(PixelFormat::Mono12Packed, size.width, size.height), seed++);
    auto expected = Testing::Prefilled(count);
    ASSERT_TRUE(Reference::KeepHighBytes(in.data(), expected.data(), size.width, size.height));
    auto dispatched = Testing::Prefilled(count);
    ASSERT_TRUE(KeepHighBytes(in.data(), dispatched.data(), size.width, size.height));
    EXPECT_EQ(dispatched, expected) << Testing::Describe(size);
#if TALVIR_IMAGE_HAS_AVX2
    if (Testing::HaveAvx2()) {
      auto avx2 = Testing::Prefilled(count);
      ASSERT_TRUE(Avx2::KeepHighBytes(in.data(), avx2.data(), size.width, size.height));
      EXPECT_EQ(avx2, expected) << Testing::Describe(size);
    }
#endif
  }
}

TEST(UnpackLsbFirst, FastVersionsMatchTheReference) {
  uint32_t seed = 200;
  const std::pair<uint32_t, uint32_t> formats[] = {
      {10, PixelFormat::Mono10p}, {12, PixelFormat::Mono12p}, {14, PixelFormat::Mono14p}};
  for (const auto& size : SizesToCheck()) {
    for (const auto& [bits, format] : formats) {
      const uint64_t count = uint64_t{size.width} * size.height;
      const auto in = Testing::RandomBytes(ImageSizeBytes(format, size.width, size.height), seed++);
      auto expected = Testing::Prefilled(count);
      ASSERT_TRUE(Reference::UnpackLsbFirst(in.data(), expected.data(), size.width, size.height, bits));
      auto dispatched = Testing::Prefilled(count);
      ASSERT_TRUE(UnpackLsbFirst(in.data(), dispatched.data(), size.width, size.height, bits));
      EXPECT_EQ(dispatched, expected) << Testing::Describe(size) << " bits " << bits;
#if TALVIR_IMAGE_HAS_AVX2
      if (Testing::HaveAvx2()) {
        auto avx2 = Testing::Prefilled(count);
        ASSERT_TRUE(Avx2::UnpackLsbFirst(in.data(), avx2.data(), size.width, size.height, bits));
        EXPECT_EQ(avx2, expected) << Testing::Describe(size) << " bits " << bits;
      }
#endif
    }
  }
}

}  // namespace
}  // namespace TALVIR::Pixel

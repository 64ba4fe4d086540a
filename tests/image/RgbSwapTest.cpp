#include "image/RgbSwap.h"

#include "TestImages.h"

#include <algorithm>

namespace TALVIR::Pixel {
namespace {

TEST(SwapRedBlue, ExchangesTheFirstAndThirdByte) {
  const std::vector<uint8_t> in = {10, 20, 30, 1, 2, 3};
  std::vector<uint8_t> out(6);
  ASSERT_TRUE(Reference::SwapRedBlue(in.data(), out.data(), 2, 1));
  EXPECT_EQ(out, (std::vector<uint8_t>{30, 20, 10, 3, 2, 1}));
  std::fill(out.begin(), out.end(), 0);
  ASSERT_TRUE(SwapRedBlue(in.data(), out.data(), 1, 2));
  EXPECT_EQ(out, (std::vector<uint8_t>{30, 20, 10, 3, 2, 1}));
}

TEST(SwapRedBlue, FailsForBadArguments) {
  std::vector<uint8_t> buffer(12);
  for (auto routine : {&Reference::SwapRedBlue, &SwapRedBlue}) {
    EXPECT_FALSE(routine(nullptr, buffer.data(), 2, 2));
    EXPECT_FALSE(routine(buffer.data(), nullptr, 2, 2));
    EXPECT_FALSE(routine(buffer.data(), buffer.data(), 0, 2));
    EXPECT_FALSE(routine(buffer.data(), buffer.data(), 2, 0));
  }
}

TEST(SwapRedBlue, FastVersionsMatchTheReference) {
  uint32_t seed = 400;
  for (const auto& size : Testing::SizesToCheck()) {
    const uint64_t bytes = uint64_t{size.width} * size.height * 3;
    const auto in = Testing::RandomBytes(bytes, seed++);
    auto expected = Testing::Prefilled(bytes);
    ASSERT_TRUE(Reference::SwapRedBlue(in.data(), expected.data(), size.width, size.height));
    auto dispatched = Testing::Prefilled(bytes);
    ASSERT_TRUE(SwapRedBlue(in.data(), dispatched.data(), size.width, size.height));
    EXPECT_EQ(dispatched, expected) << Testing::Describe(size);
#if TALVIR_IMAGE_HAS_SSE2
    auto sse2 = Testing::Prefilled(bytes);
    ASSERT_TRUE(Sse2::SwapRedBlue(in.data(), sse2.data(), size.width, size.height));
    EXPECT_EQ(sse2, expected) << Testing::Describe(size);
#endif
#if TALVIR_IMAGE_HAS_AVX2
    if (Testing::HaveAvx2()) {
      auto avx2 = Testing::Prefilled(bytes);
      ASSERT_TRUE(Avx2::SwapRedBlue(in.data(), avx2.data(), size.width, size.height));
      EXPECT_EQ(avx2, expected) << Testing::Describe(size);
    }
#endif
  }
}

TEST(SwapRedBlue, FastVersionsMatchAtEveryBufferAlignment) {
  const uint32_t w = 150;
  const uint32_t h = 3;
  const auto in = Testing::RandomBytes(w * h * 3, 78);
  std::vector<uint8_t> expected(w * h * 3);
  ASSERT_TRUE(Reference::SwapRedBlue(in.data(), expected.data(), w, h));
  for (uint32_t offset = 0; offset < 32; ++offset) {
    Testing::COffsetBuffer source(in.size(), (offset * 5) % 32, 0);
    std::copy(in.begin(), in.end(), source.Data());
    Testing::COffsetBuffer out(in.size(), offset, 0x5A);
    for (bool vector : {true, false}) {  // the AVX2 routine, then the one used without AVX2
      SetAvx2AllowedForTesting(vector);
      ASSERT_TRUE(SwapRedBlue(source.Data(), out.Data(), w, h));
      EXPECT_EQ(out.Contents(), expected) << "offset " << offset << " vector " << vector;
    }
    SetAvx2AllowedForTesting(true);
  }
}

}  // namespace
}  // namespace TALVIR::Pixel

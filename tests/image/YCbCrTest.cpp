#include "image/YCbCr.h"

#include "TestImages.h"

#include <algorithm>
#include <cmath>

namespace TALVIR::Pixel {
namespace {

using Testing::SizesToCheck;

TEST(ChromaTables, EntriesAreRoundedProductsOfTheCentredChroma) {
  const double k601[4] = {1.370705, 0.698001, 0.337633, 1.732446};
  const double k709[4] = {1.53965, 0.18314, 0.45768, 1.81418};
  for (int array = 0; array < 4; ++array) {
    for (int c = 0; c < 256; ++c) {
      EXPECT_EQ(Table601().entry[array][c], std::lround((c - 128) * k601[array])) << array << " " << c;
      EXPECT_EQ(Table709().entry[array][c], std::lround((c - 128) * k709[array])) << array << " " << c;
    }
  }
  EXPECT_EQ(Table601().entry[0][128], 0);
  EXPECT_EQ(Table601().entry[3][255], 220);  // 127 x 1.732446 = 220.02
  EXPECT_EQ(Table601().entry[3][0], -222);   // -128 x 1.732446 = -221.75
  EXPECT_EQ(Table709().entry[0][0], -197);   // -128 x 1.53965 = -197.08
}

TEST(Yuv422, NeutralChromaGivesGrey) {
  const std::vector<uint8_t> yuyv = {100, 128, 200, 128};
  std::vector<uint8_t> out(6);
  ASSERT_TRUE(Reference::Yuv422ToBgr(yuyv.data(), out.data(), 2, 1, EYuv422Order::YUYV));
  EXPECT_EQ(out, (std::vector<uint8_t>{100, 100, 100, 200, 200, 200}));
  const std::vector<uint8_t> uyvy = {128, 100, 128, 200};
  std::fill(out.begin(), out.end(), 0);
  ASSERT_TRUE(Yuv422ToBgr(uyvy.data(), out.data(), 2, 1, EYuv422Order::UYVY));
  EXPECT_EQ(out, (std::vector<uint8_t>{100, 100, 100, 200, 200, 200}));
}

TEST(Yuv422, FormulasAndClamping) {
  const auto& a = Table601().entry;
  const int y0 = 90, u = 30, y1 = 250, v = 220;
  const std::vector<uint8_t> yuyv = {static_cast<uint8_t>(y0), static_cast<uint8_t>(u), static_cast<uint8_t>(y1),
                                     static_cast<uint8_t>(v)};
  std::vector<uint8_t> out(6);
  ASSERT_TRUE(Reference::Yuv422ToBgr(yuyv.data(), out.data(), 2, 1, EYuv422Order::YUYV));
  auto clamp = [](int value) { return static_cast<uint8_t>(std::min(255, std::max(0, value))); };
  EXPECT_EQ(out[0], clamp(y0 + a[3][u]));
  EXPECT_EQ(out[1], clamp(y0 - a[1][v] - a[2][u]));
  EXPECT_EQ(out[2], clamp(y0 + a[0][v]));
  EXPECT_EQ(out[5], 255);  // 250 + 126 clamps
  EXPECT_EQ(out[3], 80);   // 250 - 170 (blue term of U = 30 is -169.8 -> -170)
}

TEST(YCbCr422, ByteOneDrivesRedAndByteThreeDrivesBlue) {
  const std::vector<uint8_t> in = {100, 200, 100, 128};  // c1 high, c3 neutral
  std::vector<uint8_t> out(6);
  ASSERT_TRUE(Reference::YCbCr422ToBgr709(in.data(), out.data(), 2, 1));
  EXPECT_EQ(out[0], 100);                             // blue untouched
  EXPECT_EQ(out[2], 100 + Table709().entry[0][200]);  // red raised: 72 x 1.53965 = 110.9 -> 111
  EXPECT_EQ(out[2], 211);
  EXPECT_EQ(out[1], 100 - Table709().entry[1][200]);  // 72 x 0.18314 = 13.2 -> 13
  EXPECT_EQ(out[1], 87);
}

TEST(YCbCr, FourFourFourAndFourOneOne) {
  const auto& a = Table601().entry;
  const auto& b = Table709().entry;
  const std::vector<uint8_t> uyv = {60, 120, 190};
  std::vector<uint8_t> out(3);
  ASSERT_TRUE(Yuv444ToBgr(uyv.data(), out.data(), 1, 1));
  EXPECT_EQ(
      out, (std::vector<uint8_t>{static_cast<uint8_t>(120 + a[3][60]), static_cast<uint8_t>(120 - a[2][60] - a[1][190]),
                                 static_cast<uint8_t>(120 + a[0][190])}));
  ASSERT_TRUE(YCbCr444ToBgr709(uyv.data(), out.data(), 1, 1));
  EXPECT_EQ(out, (std::vector<uint8_t>{static_cast<uint8_t>(120 + b[3][190]),
                                       static_cast<uint8_t>(120 - b[2][190] - b[1][60]),
                                       static_cast<uint8_t>(120 + b[0][60])}));
  const std::vector<uint8_t> uyyvyy = {128, 10, 20, 128, 30, 40, 0, 0, 0, 0, 0, 0};
  std::vector<uint8_t> out411(15, 0x5A);
  ASSERT_TRUE(Yuv411ToBgr(uyyvyy.data(), out411.data(), 5, 1));  // the fifth pixel has no group: untouched
  EXPECT_EQ(out411, (std::vector<uint8_t>{10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40, 0x5A, 0x5A, 0x5A}));
}

TEST(YCbCr, OddPixelCountLeavesTheLastPixelOfFourTwoTwoAlone) {
  const std::vector<uint8_t> in = {100, 128, 200, 128, 50, 128};
  std::vector<uint8_t> out(9, 0x5A);
  ASSERT_TRUE(Yuv422ToBgr(in.data(), out.data(), 3, 1, EYuv422Order::YUYV));
  EXPECT_EQ(out, (std::vector<uint8_t>{100, 100, 100, 200, 200, 200, 0x5A, 0x5A, 0x5A}));
}

TEST(YCbCr, FailsForBadArguments) {
  std::vector<uint8_t> buffer(64);
  using Routine = bool (*)(const uint8_t*, uint8_t*, uint32_t, uint32_t);
  for (Routine routine : {Routine{&Reference::YCbCr422ToBgr709}, Routine{&YCbCr422ToBgr709}, Routine{&Yuv444ToBgr},
                          Routine{&Yuv411ToBgr}, Routine{&YCbCr444ToBgr709}}) {
    EXPECT_FALSE(routine(nullptr, buffer.data(), 2, 2));
    EXPECT_FALSE(routine(buffer.data(), nullptr, 2, 2));
    EXPECT_FALSE(routine(buffer.data(), buffer.data(), 0, 2));
    EXPECT_FALSE(routine(buffer.data(), buffer.data(), 2, 0));
  }
  EXPECT_FALSE(Yuv422ToBgr(nullptr, buffer.data(), 2, 2, EYuv422Order::UYVY));
  EXPECT_FALSE(Yuv422ToBgr(buffer.data(), buffer.data(), 0, 2, EYuv422Order::YUYV));
}

void CheckFourTwoTwo(const char* name, bool (*reference)(const uint8_t*, uint8_t*, uint32_t, uint32_t),
                     bool (*dispatched)(const uint8_t*, uint8_t*, uint32_t, uint32_t),
                     bool (*avx2)(const uint8_t*, uint8_t*, uint32_t, uint32_t)) {
  uint32_t seed = 500;
  for (const auto& size : SizesToCheck()) {
    const uint64_t count = uint64_t{size.width} * size.height;
    const auto in = Testing::RandomBytes(2 * count, seed++);
    auto expected = Testing::Prefilled(3 * count);
    ASSERT_TRUE(reference(in.data(), expected.data(), size.width, size.height));
    auto actual = Testing::Prefilled(3 * count);
    ASSERT_TRUE(dispatched(in.data(), actual.data(), size.width, size.height));
    EXPECT_EQ(actual, expected) << name << " " << Testing::Describe(size);
    if (avx2 != nullptr && Testing::HaveAvx2()) {
      auto vector = Testing::Prefilled(3 * count);
      ASSERT_TRUE(avx2(in.data(), vector.data(), size.width, size.height));
      EXPECT_EQ(vector, expected) << name << " " << Testing::Describe(size);
    }
  }
}

bool ReferenceYuyv(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Reference::Yuv422ToBgr(s, d, w, h, EYuv422Order::YUYV);
}
bool ReferenceUyvy(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Reference::Yuv422ToBgr(s, d, w, h, EYuv422Order::UYVY);
}
bool DispatchedYuyv(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Yuv422ToBgr(s, d, w, h, EYuv422Order::YUYV);
}
bool DispatchedUyvy(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Yuv422ToBgr(s, d, w, h, EYuv422Order::UYVY);
}
#if TALVIR_IMAGE_HAS_AVX2
bool Avx2Yuyv(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Avx2::Yuv422ToBgr(s, d, w, h, EYuv422Order::YUYV);
}
bool Avx2Uyvy(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Avx2::Yuv422ToBgr(s, d, w, h, EYuv422Order::UYVY);
}
#endif

TEST(YCbCr, FastVersionsMatchTheReference) {
#if TALVIR_IMAGE_HAS_AVX2
  CheckFourTwoTwo("YUYV", ReferenceYuyv, DispatchedYuyv, Avx2Yuyv);
  CheckFourTwoTwo("UYVY", ReferenceUyvy, DispatchedUyvy, Avx2Uyvy);
  CheckFourTwoTwo("709", Reference::YCbCr422ToBgr709, YCbCr422ToBgr709, Avx2::YCbCr422ToBgr709);
#else
  CheckFourTwoTwo("YUYV", ReferenceYuyv, DispatchedYuyv, nullptr);
  CheckFourTwoTwo("UYVY", ReferenceUyvy, DispatchedUyvy, nullptr);
  CheckFourTwoTwo("709", Reference::YCbCr422ToBgr709, YCbCr422ToBgr709, nullptr);
#endif
}

TEST(YCbCr, FastVersionsAreExactForEveryChromaPair) {
  // Every (first chroma, second chroma) pair with luma sweeping the clamping range: 65536 groups.
  std::vector<uint8_t> in(4 * 256 * 256);
  for (uint32_t c1 = 0; c1 < 256; ++c1) {
    for (uint32_t c3 = 0; c3 < 256; ++c3) {
      uint8_t* group = in.data() + 4 * (c1 * 256 + c3);
      group[0] = static_cast<uint8_t>(c1 * 3 + c3);
      group[1] = static_cast<uint8_t>(c1);
      group[2] = static_cast<uint8_t>(255 - c3);
      group[3] = static_cast<uint8_t>(c3);
    }
  }
  std::vector<uint8_t> expected(6 * 256 * 256);
  std::vector<uint8_t> actual(6 * 256 * 256);
  ASSERT_TRUE(Reference::Yuv422ToBgr(in.data(), expected.data(), 512, 256, EYuv422Order::YUYV));
  ASSERT_TRUE(Yuv422ToBgr(in.data(), actual.data(), 512, 256, EYuv422Order::YUYV));
  EXPECT_EQ(actual, expected);
  ASSERT_TRUE(Reference::YCbCr422ToBgr709(in.data(), expected.data(), 512, 256));
  ASSERT_TRUE(YCbCr422ToBgr709(in.data(), actual.data(), 512, 256));
  EXPECT_EQ(actual, expected);
}

}  // namespace
}  // namespace TALVIR::Pixel

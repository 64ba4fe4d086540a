#include "image/Demosaic.h"

#include "TestImages.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace TALVIR::Pixel {
namespace {

using Testing::SizesToCheck;

constexpr EBayer kPatterns[] = {EBayer::GR, EBayer::RG, EBayer::GB, EBayer::BG};

std::array<uint8_t, 3> PixelAt(const std::vector<uint8_t>& bgr, uint32_t width, uint32_t x, uint32_t y) {
  const uint8_t* p = bgr.data() + (uint64_t{y} * width + x) * 3;
  return {p[0], p[1], p[2]};
}

TEST(Demosaic, FailsBelowTwoByTwoAndForNullPointers) {
  std::vector<uint8_t> in(16);
  std::vector<uint8_t> out(48);
  for (auto routine : {&Reference::Demosaic, &Demosaic}) {
    EXPECT_FALSE(routine(in.data(), out.data(), 1, 8, EBayer::RG));
    EXPECT_FALSE(routine(in.data(), out.data(), 8, 1, EBayer::RG));
    EXPECT_FALSE(routine(in.data(), out.data(), 0, 0, EBayer::RG));
    EXPECT_FALSE(routine(nullptr, out.data(), 2, 2, EBayer::RG));
    EXPECT_FALSE(routine(in.data(), nullptr, 2, 2, EBayer::RG));
  }
}

// Row 0: R G R G, row 1: G B G B, row 2: R G R G (pattern RG), values chosen so that sums are not multiples of 4.
TEST(Demosaic, InteriorIsBilinearWithTruncation) {
  const uint32_t w = 4;
  const std::vector<uint8_t> s = {11, 23,  37,  41,  //
                                  53, 67,  71,  83,  //
                                  97, 101, 113, 127};
  std::vector<uint8_t> out(w * 3 * 3);
  ASSERT_TRUE(Reference::Demosaic(s.data(), out.data(), w, 3, EBayer::RG));
  // (1, 1) is blue: green from the four axis neighbours, red from the four diagonals.
  const std::array<uint8_t, 3> blueSite = {67, static_cast<uint8_t>((23 + 101 + 53 + 71) >> 2),
                                           static_cast<uint8_t>((11 + 37 + 97 + 113) >> 2)};
  EXPECT_EQ(PixelAt(out, w, 1, 1), blueSite);
  // (2, 1) is green in a green-blue row: blue from left and right, red from above and below.
  const std::array<uint8_t, 3> greenSite = {static_cast<uint8_t>((67 + 83) >> 1), 71,
                                            static_cast<uint8_t>((37 + 113) >> 1)};
  EXPECT_EQ(PixelAt(out, w, 2, 1), greenSite);
}

TEST(Demosaic, RedAndGreenSitesOfAnotherPattern) {
  // Pattern BG: row 0 B G B G B, row 1 G R G R G.
  const uint32_t w = 5;
  const auto s = Testing::RandomBytes(w * 3, 7);
  std::vector<uint8_t> out(w * 3 * 3);
  ASSERT_TRUE(Reference::Demosaic(s.data(), out.data(), w, 3, EBayer::BG));
  auto at = [&](uint32_t x, uint32_t y) { return unsigned{s[y * w + x]}; };
  // (1, 1) is red: blue from the diagonals.
  const std::array<uint8_t, 3> redSite = {static_cast<uint8_t>((at(0, 0) + at(2, 0) + at(0, 2) + at(2, 2)) >> 2),
                                          static_cast<uint8_t>((at(1, 0) + at(1, 2) + at(0, 1) + at(2, 1)) >> 2),
                                          static_cast<uint8_t>(at(1, 1))};
  EXPECT_EQ(PixelAt(out, w, 1, 1), redSite);
  // (2, 1) is green in a green-red row: red from left and right, blue from above and below.
  const std::array<uint8_t, 3> greenSite = {static_cast<uint8_t>((at(2, 0) + at(2, 2)) >> 1),
                                            static_cast<uint8_t>(at(2, 1)),
                                            static_cast<uint8_t>((at(1, 1) + at(3, 1)) >> 1)};
  EXPECT_EQ(PixelAt(out, w, 2, 1), greenSite);
}

TEST(Demosaic, BordersCopyTheNearestInterpolatedPixel) {
  for (uint32_t w : {6u, 7u}) {
    const uint32_t h = 5;
    const auto s = Testing::RandomBytes(w * h, w);
    std::vector<uint8_t> out(w * h * 3);
    ASSERT_TRUE(Reference::Demosaic(s.data(), out.data(), w, h, EBayer::GB));
    const uint32_t lastColumn = w % 2 == 0 ? w - 2 : w - 3;
    for (uint32_t y = 0; y < h; ++y) {
      const uint32_t fromY = y == 0 ? 1 : (y == h - 1 ? h - 2 : y);
      for (uint32_t x = 0; x < w; ++x) {
        const uint32_t fromX = x == 0 ? 1 : (x > lastColumn ? lastColumn : x);
        EXPECT_EQ(PixelAt(out, w, x, y), PixelAt(out, w, fromX, fromY)) << w << " at " << x << "," << y;
      }
    }
    // And the box itself is interpolated, not copied: the unpaired column of an odd width is the exception.
    EXPECT_EQ(PixelAt(out, w, 1, 1)[1], s[1 * w + 1]);  // (1, 1) is green in pattern GB
  }
}

TEST(Demosaic, ImagesWithoutABoxUseTheirTwoByTwoCell) {
  // 2x2 RG: R=10 G=20 / G=31 B=40.
  const std::vector<uint8_t> s = {10, 20, 31, 40};
  std::vector<uint8_t> out(12);
  ASSERT_TRUE(Reference::Demosaic(s.data(), out.data(), 2, 2, EBayer::RG));
  EXPECT_EQ(PixelAt(out, 2, 0, 0), (std::array<uint8_t, 3>{40, 25, 10}));
  EXPECT_EQ(PixelAt(out, 2, 1, 0), (std::array<uint8_t, 3>{40, 20, 10}));
  EXPECT_EQ(PixelAt(out, 2, 0, 1), (std::array<uint8_t, 3>{40, 31, 10}));
  EXPECT_EQ(PixelAt(out, 2, 1, 1), (std::array<uint8_t, 3>{40, 25, 10}));
  // 3x2 GR: the last column takes the cell starting at column 1 (a B G / G R... window of the mosaic).
  const std::vector<uint8_t> t = {1, 2, 3, 4, 5, 6};  // G R G / B G B
  std::vector<uint8_t> out3(18);
  ASSERT_TRUE(Reference::Demosaic(t.data(), out3.data(), 3, 2, EBayer::GR));
  EXPECT_EQ(PixelAt(out3, 3, 2, 0), (std::array<uint8_t, 3>{6, 3, 2}));  // green: own; red 2; blue 6
  EXPECT_EQ(PixelAt(out3, 3, 2, 1), (std::array<uint8_t, 3>{6, 4, 2}));  // blue: greens 3 and 5 -> 4
}

TEST(Demosaic, UniformImageStaysUniform) {
  for (EBayer pattern : kPatterns) {
    const uint32_t w = 70;
    const uint32_t h = 9;
    const std::vector<uint8_t> s(w * h, 200);
    std::vector<uint8_t> out(w * h * 3, 0);
    ASSERT_TRUE(Demosaic(s.data(), out.data(), w, h, pattern));
    EXPECT_EQ(out, std::vector<uint8_t>(w * h * 3, 200));
  }
}

TEST(Demosaic, FastVersionsMatchTheReference) {
  uint32_t seed = 300;
  for (const auto& size : SizesToCheck()) {
    for (EBayer pattern : kPatterns) {
      const uint64_t count = uint64_t{size.width} * size.height;
      const auto in = Testing::RandomBytes(count, seed++);
      auto expected = Testing::Prefilled(3 * count);
      const bool ok = Reference::Demosaic(in.data(), expected.data(), size.width, size.height, pattern);
      EXPECT_EQ(ok, size.width >= 2 && size.height >= 2);
      auto dispatched = Testing::Prefilled(3 * count);
      EXPECT_EQ(Demosaic(in.data(), dispatched.data(), size.width, size.height, pattern), ok);
      EXPECT_EQ(dispatched, expected) << Testing::Describe(size) << " pattern " << static_cast<int>(pattern);
#if TALVIR_IMAGE_HAS_AVX2
      if (Testing::HaveAvx2()) {
        auto avx2 = Testing::Prefilled(3 * count);
        EXPECT_EQ(Avx2::Demosaic(in.data(), avx2.data(), size.width, size.height, pattern), ok);
        EXPECT_EQ(avx2, expected) << Testing::Describe(size) << " pattern " << static_cast<int>(pattern);
      }
#endif
    }
  }
}

TEST(Demosaic, FastVersionsMatchAtEveryBufferAlignment) {
  const uint32_t w = 101;
  const uint32_t h = 4;
  const auto in = Testing::RandomBytes(w * h, 77);
  for (EBayer pattern : kPatterns) {
    std::vector<uint8_t> expected(w * h * 3);
    ASSERT_TRUE(Reference::Demosaic(in.data(), expected.data(), w, h, pattern));
    for (uint32_t offset = 0; offset < 32; ++offset) {
      Testing::COffsetBuffer source(w * h, offset, 0);
      std::copy(in.begin(), in.end(), source.Data());
      Testing::COffsetBuffer out(w * h * 3, (offset * 7) % 32, 0x5A);
      ASSERT_TRUE(Demosaic(source.Data(), out.Data(), w, h, pattern));
      EXPECT_EQ(out.Contents(), expected) << "offset " << offset;
    }
  }
}

TEST(Demosaic, ExtremeValuesDoNotOverflowTheSums) {
  // Alternating 0 and 255 maximises every sum; compare fast and reference on it.
  const uint32_t w = 67;
  const uint32_t h = 6;
  std::vector<uint8_t> in(w * h);
  for (uint32_t i = 0; i < in.size(); ++i) {
    in[i] = (i * 7 % 3 == 0) ? 255 : ((i % 5 == 0) ? 0 : 254);
  }
  for (EBayer pattern : kPatterns) {
    std::vector<uint8_t> expected(w * h * 3);
    std::vector<uint8_t> actual(w * h * 3);
    ASSERT_TRUE(Reference::Demosaic(in.data(), expected.data(), w, h, pattern));
    ASSERT_TRUE(Demosaic(in.data(), actual.data(), w, h, pattern));
    EXPECT_EQ(actual, expected);
  }
}

}  // namespace
}  // namespace TALVIR::Pixel

// AVX2 bilinear demosaic; compiled with -mavx2, called only when CpuHasAvx2().
//
// 32 pixels of a row are read as 16 little-endian words: the low byte of word j is column x0 + 2j, the high
// byte column x0 + 2j + 1. With x0 odd, all low bytes share one colour and all high bytes the other, so each
// half is computed in 16-bit lanes without unpacking, and the results are merged back by byte position.
#include "image/Demosaic.h"

#include "image/Avx2Bgr.h"

#include <immintrin.h>

namespace TALVIR::Pixel::Avx2 {
namespace {

using Detail::EColour;

struct SRowPlanes {
  __m256i own;    // the non-green colour of this row (red in a red row, blue in a blue row)
  __m256i green;
  __m256i other;  // the colour of the rows above and below
};

__m256i Load(const uint8_t* at) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at)); }

// above, row and below point to column x0 (odd) of three consecutive rows.
template <bool LowIsGreen>
SRowPlanes Interpolate32(const uint8_t* above, const uint8_t* row, const uint8_t* below) {
  const __m256i low = _mm256_set1_epi16(0x00FF);
  const __m256i high = _mm256_set1_epi16(static_cast<int16_t>(0xFF00));
  const __m256i centre = Load(row);
  const __m256i left = Load(row - 1);
  const __m256i right = Load(row + 1);
  const __m256i up = Load(above);
  const __m256i down = Load(below);
  // Sums of the horizontal pair around each low and each high pixel, and of the vertical pair.
  const __m256i horizontalLow = _mm256_add_epi16(_mm256_and_si256(left, low), _mm256_and_si256(right, low));
  const __m256i horizontalHigh = _mm256_add_epi16(_mm256_and_si256(centre, low), _mm256_srli_epi16(right, 8));
  SRowPlanes planes;
  if constexpr (!LowIsGreen) {
    // Low: own colour sample; green from four axis neighbours; other colour from the four diagonals.
    // High: green sample; own colour from left and right; other colour from above and below.
    const __m256i verticalLow = _mm256_add_epi16(_mm256_and_si256(up, low), _mm256_and_si256(down, low));
    const __m256i verticalHigh = _mm256_add_epi16(_mm256_srli_epi16(up, 8), _mm256_srli_epi16(down, 8));
    const __m256i diagonals = _mm256_add_epi16(
        _mm256_add_epi16(_mm256_and_si256(Load(above - 1), low), _mm256_and_si256(Load(above + 1), low)),
        _mm256_add_epi16(_mm256_and_si256(Load(below - 1), low), _mm256_and_si256(Load(below + 1), low)));
    const __m256i greenLow = _mm256_srli_epi16(_mm256_add_epi16(horizontalLow, verticalLow), 2);
    planes.own = _mm256_or_si256(_mm256_and_si256(centre, low), _mm256_slli_epi16(_mm256_srli_epi16(horizontalHigh, 1), 8));
    planes.green = _mm256_or_si256(greenLow, _mm256_and_si256(centre, high));
    planes.other = _mm256_or_si256(_mm256_srli_epi16(diagonals, 2), _mm256_slli_epi16(_mm256_srli_epi16(verticalHigh, 1), 8));
  } else {
    // Low: green sample; own colour from left and right; other colour from above and below.
    // High: own colour sample; green from four axis neighbours; other colour from the four diagonals.
    const __m256i verticalLow = _mm256_add_epi16(_mm256_and_si256(up, low), _mm256_and_si256(down, low));
    const __m256i verticalHigh = _mm256_add_epi16(_mm256_srli_epi16(up, 8), _mm256_srli_epi16(down, 8));
    const __m256i upRight = Load(above + 1);
    const __m256i downRight = Load(below + 1);
    const __m256i diagonals = _mm256_add_epi16(
        _mm256_add_epi16(_mm256_and_si256(up, low), _mm256_srli_epi16(upRight, 8)),
        _mm256_add_epi16(_mm256_and_si256(down, low), _mm256_srli_epi16(downRight, 8)));
    const __m256i greenHigh = _mm256_srli_epi16(_mm256_add_epi16(horizontalHigh, verticalHigh), 2);
    planes.own = _mm256_or_si256(_mm256_srli_epi16(horizontalLow, 1), _mm256_and_si256(centre, high));
    planes.green = _mm256_or_si256(_mm256_and_si256(centre, low), _mm256_slli_epi16(greenHigh, 8));
    planes.other = _mm256_or_si256(_mm256_srli_epi16(verticalLow, 1), _mm256_slli_epi16(_mm256_srli_epi16(diagonals, 2), 8));
  }
  return planes;
}

template <bool LowIsGreen, bool OwnIsRed>
uint32_t InterpolateRow(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t y, uint32_t lastColumn,
                        const CBgrInterleaver& interleaver) {
  const uint64_t stride = width;
  const uint8_t* row = source + y * stride;
  uint8_t* out = destination + y * stride * 3;
  uint32_t x = 1;
  for (; x + 32 <= lastColumn + 1; x += 32) {
    const SRowPlanes planes = Interpolate32<LowIsGreen>(row - stride + x, row + x, row + stride + x);
    if constexpr (OwnIsRed) {
      interleaver.Store(out + 3 * x, planes.other, planes.green, planes.own);
    } else {
      interleaver.Store(out + 3 * x, planes.own, planes.green, planes.other);
    }
  }
  return x;
}

} // namespace

bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern) {
  if (source == nullptr || destination == nullptr || width < 2 || height < 2) {
    return false;
  }
  if (!Detail::HasInterior(width, height)) {
    Detail::DemosaicByCells(source, destination, width, height, pattern);
    return true;
  }
  static const CBgrInterleaver interleaver;
  const uint32_t lastColumn = Detail::LastInteriorColumn(width);
  for (uint32_t y = 1; y + 1 < height; ++y) {
    const bool lowIsGreen = Detail::ColourAt(pattern, 1, y) == EColour::Green;
    const EColour own = lowIsGreen ? Detail::ColourAt(pattern, 2, y) : Detail::ColourAt(pattern, 1, y);
    uint32_t x = 0;
    if (lowIsGreen) {
      x = own == EColour::Red ? InterpolateRow<true, true>(source, destination, width, y, lastColumn, interleaver)
                              : InterpolateRow<true, false>(source, destination, width, y, lastColumn, interleaver);
    } else {
      x = own == EColour::Red ? InterpolateRow<false, true>(source, destination, width, y, lastColumn, interleaver)
                              : InterpolateRow<false, false>(source, destination, width, y, lastColumn, interleaver);
    }
    for (; x <= lastColumn; ++x) {
      Detail::InterpolateInterior(source, width, x, y, pattern, destination + (uint64_t{y} * width + x) * 3);
    }
  }
  Detail::FillBorders(destination, width, height);
  return true;
}

} // namespace TALVIR::Pixel::Avx2

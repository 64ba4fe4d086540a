// AVX2 bilinear demosaic; compiled with -mavx2, called only when CpuHasAvx2().
//
// 32 pixels of a row are read as 16 little-endian words: the low byte of word j is column x0 + 2j, the high
// byte column x0 + 2j + 1. All low bytes share one colour and all high bytes the other, so each half is
// computed in 16-bit lanes without unpacking, and the results are merged into pixel pairs for writing.
#include "image/Demosaic.h"

#include "image/Avx2Bgr.h"

#include <immintrin.h>

namespace TALVIR::Pixel::Avx2 {
namespace {

using Detail::EColour;

// 32 output pixels as pixel pairs, the form CPairInterleaver writes: p = (blue, green) of the low pixel,
// q = (red of the low, blue of the high pixel), s = (green, red) of the high pixel.
struct SPairs {
  __m256i p;
  __m256i q;
  __m256i s;
};

__attribute__((always_inline)) inline __m256i Load(const uint8_t* at) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

// above, row and below point to column x0 of three consecutive rows. "Own" is the non-green colour of this
// row, "other" the non-green colour of the rows above and below.
template <bool LowIsGreen, bool OwnIsRed>
__attribute__((always_inline)) inline SPairs Interpolate32(const uint8_t* above, const uint8_t* row,
                                                           const uint8_t* below) {
  const __m256i low = _mm256_set1_epi16(0x00FF);
  const __m256i high = _mm256_set1_epi16(static_cast<int16_t>(0xFF00));
  const __m256i centre = Load(row);
  const __m256i left = Load(row - 1);
  const __m256i right = Load(row + 1);
  const __m256i up = Load(above);
  const __m256i down = Load(below);
  // Sums of the horizontal pair around each low and each high pixel, and of the vertical pairs.
  const __m256i horizontalLow = _mm256_add_epi16(_mm256_and_si256(left, low), _mm256_and_si256(right, low));
  const __m256i horizontalHigh = _mm256_add_epi16(_mm256_and_si256(centre, low), _mm256_srli_epi16(right, 8));
  const __m256i verticalLow = _mm256_add_epi16(_mm256_and_si256(up, low), _mm256_and_si256(down, low));
  const __m256i verticalHigh = _mm256_add_epi16(_mm256_srli_epi16(up, 8), _mm256_srli_epi16(down, 8));
  SPairs pairs;
  if constexpr (!LowIsGreen) {
    // Low: own colour sample; green from four axis neighbours; other colour from the four diagonals.
    // High: green sample; own colour from left and right; other colour from above and below.
    const __m256i diagonals = _mm256_add_epi16(
        _mm256_add_epi16(_mm256_and_si256(Load(above - 1), low), _mm256_and_si256(Load(above + 1), low)),
        _mm256_add_epi16(_mm256_and_si256(Load(below - 1), low), _mm256_and_si256(Load(below + 1), low)));
    const __m256i ownLow = _mm256_and_si256(centre, low);
    const __m256i greenLowHigh = _mm256_slli_epi16(_mm256_srli_epi16(_mm256_add_epi16(horizontalLow, verticalLow), 2),
                                                   8);
    const __m256i otherLow = _mm256_srli_epi16(diagonals, 2);
    const __m256i ownHigh = _mm256_srli_epi16(horizontalHigh, 1);
    const __m256i greenHigh = _mm256_srli_epi16(centre, 8);
    const __m256i otherHigh = _mm256_srli_epi16(verticalHigh, 1);
    if constexpr (OwnIsRed) {
      pairs.p = _mm256_or_si256(otherLow, greenLowHigh);
      pairs.q = _mm256_or_si256(ownLow, _mm256_slli_epi16(otherHigh, 8));
      pairs.s = _mm256_or_si256(greenHigh, _mm256_slli_epi16(ownHigh, 8));
    } else {
      pairs.p = _mm256_or_si256(ownLow, greenLowHigh);
      pairs.q = _mm256_or_si256(otherLow, _mm256_slli_epi16(ownHigh, 8));
      pairs.s = _mm256_or_si256(greenHigh, _mm256_slli_epi16(otherHigh, 8));
    }
  } else {
    // Low: green sample; own colour from left and right; other colour from above and below.
    // High: own colour sample; green from four axis neighbours; other colour from the four diagonals.
    const __m256i diagonals =
        _mm256_add_epi16(_mm256_add_epi16(_mm256_and_si256(up, low), _mm256_srli_epi16(Load(above + 1), 8)),
                         _mm256_add_epi16(_mm256_and_si256(down, low), _mm256_srli_epi16(Load(below + 1), 8)));
    const __m256i greenLowHigh = _mm256_slli_epi16(centre, 8);
    const __m256i ownLow = _mm256_srli_epi16(horizontalLow, 1);
    const __m256i otherLow = _mm256_srli_epi16(verticalLow, 1);
    const __m256i ownHighHigh = _mm256_and_si256(centre, high);
    const __m256i greenHigh = _mm256_srli_epi16(_mm256_add_epi16(horizontalHigh, verticalHigh), 2);
    const __m256i otherHigh = _mm256_srli_epi16(diagonals, 2);
    if constexpr (OwnIsRed) {
      pairs.p = _mm256_or_si256(otherLow, greenLowHigh);
      pairs.q = _mm256_or_si256(ownLow, _mm256_slli_epi16(otherHigh, 8));
      pairs.s = _mm256_or_si256(greenHigh, ownHighHigh);
    } else {
      pairs.p = _mm256_or_si256(ownLow, greenLowHigh);
      pairs.q = _mm256_or_si256(otherLow, ownHighHigh);
      pairs.s = _mm256_or_si256(greenHigh, _mm256_slli_epi16(otherHigh, 8));
    }
  }
  return pairs;
}

using EStore = CBgrInterleaver::EStore;

template <bool LowIsGreen, bool OwnIsRed, EStore Kind>
__attribute__((always_inline)) inline void Block(const uint8_t* row, uint64_t stride, uint8_t* out,
                                                 const CPairInterleaver& interleaver) {
  const SPairs pairs = Interpolate32<LowIsGreen, OwnIsRed>(row - stride, row, row + stride);
  interleaver.Store<Kind>(out, pairs.p, pairs.q, pairs.s);
}

// Which of the four kernels a block starting at column x of row y needs.
struct SBlockKind {
  bool lowIsGreen;
  bool ownIsRed;
};

SBlockKind KindAt(EBayer pattern, uint32_t x, uint32_t y) {
  const EColour low = Detail::ColourAt(pattern, x, y);
  const EColour high = Detail::ColourAt(pattern, x + 1, y);
  const bool lowIsGreen = low == EColour::Green;
  return {lowIsGreen, (lowIsGreen ? high : low) == EColour::Red};
}

template <EStore Kind>
void BlockAt(const SBlockKind& kind, const uint8_t* row, uint64_t stride, uint8_t* out,
             const CPairInterleaver& interleaver) {
  if (kind.lowIsGreen) {
    kind.ownIsRed ? Block<true, true, Kind>(row, stride, out, interleaver)
                  : Block<true, false, Kind>(row, stride, out, interleaver);
  } else {
    kind.ownIsRed ? Block<false, true, Kind>(row, stride, out, interleaver)
                  : Block<false, false, Kind>(row, stride, out, interleaver);
  }
}

// One interior row, columns 1..lastColumn (at least 32 of them). The main blocks start where the output is
// 32-byte aligned; one unaligned block before them and one after cover the ends, overlapping pixels that
// other blocks write with the same values.
template <EStore Kind>
void InterpolateRow(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t y, uint32_t lastColumn,
                    EBayer pattern, const CPairInterleaver& interleaver) {
  const uint64_t stride = width;
  const uint8_t* row = source + y * stride;
  uint8_t* out = destination + y * stride * 3;
  uint32_t first = 1;
  while (first < 33 && (reinterpret_cast<uintptr_t>(out + 3 * first) & 31) != 0) {
    ++first;
  }
  if (first != 1) {
    BlockAt<EStore::Unaligned>(KindAt(pattern, 1, y), row + 1, stride, out + 3, interleaver);
  }
  uint32_t x = first;
  if (x + 31 <= lastColumn) {
    const SBlockKind kind = KindAt(pattern, x, y);
    for (; x + 31 <= lastColumn; x += 32) {
      BlockAt<Kind>(kind, row + x, stride, out + 3 * x, interleaver);
    }
  }
  if (x <= lastColumn) {
    const uint32_t last = lastColumn - 31;
    BlockAt<EStore::Unaligned>(KindAt(pattern, last, y), row + last, stride, out + 3 * last, interleaver);
  }
}

}  // namespace

bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern) {
  if (source == nullptr || destination == nullptr || width < 2 || height < 2) {
    return false;
  }
  if (!Detail::HasInterior(width, height)) {
    Detail::DemosaicByCells(source, destination, width, height, pattern);
    return true;
  }
  static const CPairInterleaver interleaver;
  const uint32_t lastColumn = Detail::LastInteriorColumn(width);
  for (uint32_t y = 1; y + 1 < height; ++y) {
    uint32_t x = 1;
    if (lastColumn >= 32) {
      // (Streaming stores, which bypass the caches, measured slower even for large frames.)
      InterpolateRow<EStore::Aligned>(source, destination, width, y, lastColumn, pattern, interleaver);
      x = lastColumn + 1;
    }
    for (; x <= lastColumn; ++x) {
      Detail::InterpolateInterior(source, width, x, y, pattern, destination + (uint64_t{y} * width + x) * 3);
    }
  }
  Detail::FillBorders(destination, width, height);
  return true;
}

}  // namespace TALVIR::Pixel::Avx2

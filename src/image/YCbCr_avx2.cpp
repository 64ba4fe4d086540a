// AVX2 4:2:2 conversions; compiled with -mavx2, called only when CpuHasAvx2().
//
// The table entries (c - 128) x k are recomputed exactly, not looked up: with d = 2 (c - 128) held in 16 bits,
// _mm256_mulhrs_epi16(d, K) = round(d x K / 2^15), and for each factor there is a 15-bit K for which this
// equals the table entry for all 256 chroma values (checked by the tests against the tables).
#include "image/YCbCr.h"

#include "image/Avx2Bgr.h"

#include <immintrin.h>

namespace TALVIR::Pixel::Avx2 {
namespace {

constexpr int16_t kRedFromV601 = 22458;    // 1.370705
constexpr int16_t kGreenFromV601 = 11435;  // 0.698001
constexpr int16_t kGreenFromU601 = 5532;   // 0.337633
constexpr int16_t kBlueFromU601 = 28383;   // 1.732446
constexpr int16_t kRed709 = 25226;         // 1.53965
constexpr int16_t kGreen1709 = 3000;       // 0.18314
constexpr int16_t kGreen2709 = 7498;       // 0.45768
constexpr int16_t kBlue709 = 29724;        // 1.81418

// How one 4:2:2 layout maps onto the kernel. In each 32-bit group the two chroma bytes become the low and the
// high 16-bit word of the group; the terms for blue and red are the products of those words with the
// matching factors, and green subtracts both of its products.
struct SLayout422 {
  bool lumaInHighByte;  // UYVY: the luma bytes are the odd ones
  int16_t colourLow;    // factor for the low chroma word's blue or red term
  int16_t colourHigh;   // factor for the high chroma word's blue or red term
  int16_t greenLow;
  int16_t greenHigh;
  bool blueFromLow;  // whether the low chroma word drives blue (else it drives red)
};

struct SPlanes16 {
  __m256i blue;
  __m256i green;
  __m256i red;
};

// 16 pixels (32 bytes of input) to three vectors of 16-bit results, not yet clamped.
SPlanes16 Convert16(const uint8_t* in, const SLayout422& layout, __m256i colourFactors, __m256i greenFactors) {
  const __m256i words = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
  const __m256i lowBytes = _mm256_and_si256(words, _mm256_set1_epi16(0x00FF));
  const __m256i highBytes = _mm256_srli_epi16(words, 8);
  const __m256i luma = layout.lumaInHighByte ? highBytes : lowBytes;
  const __m256i chroma = layout.lumaInHighByte ? lowBytes : highBytes;
  const __m256i doubled = _mm256_sub_epi16(_mm256_add_epi16(chroma, chroma), _mm256_set1_epi16(256));
  const __m256i colour = _mm256_mulhrs_epi16(doubled, colourFactors);
  const __m256i greenParts = _mm256_mulhrs_epi16(doubled, greenFactors);
  // Both green products summed into both words of each group: add the group with its words exchanged.
  const __m256i greenSum = _mm256_add_epi16(greenParts,
                                            _mm256_shufflelo_epi16(_mm256_shufflehi_epi16(greenParts, 0xB1), 0xB1));
  // No vector constants at namespace scope: their initialisation would run AVX2 code on any CPU at load.
  const __m256i duplicateLow = _mm256_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13, 0, 1, 0, 1, 4, 5, 4,
                                                5, 8, 9, 8, 9, 12, 13, 12, 13);
  const __m256i duplicateHigh = _mm256_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15, 2, 3, 2, 3, 6,
                                                 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15);
  const __m256i lowTerm = _mm256_shuffle_epi8(colour, duplicateLow);
  const __m256i highTerm = _mm256_shuffle_epi8(colour, duplicateHigh);
  SPlanes16 planes;
  planes.blue = _mm256_add_epi16(luma, layout.blueFromLow ? lowTerm : highTerm);
  planes.red = _mm256_add_epi16(luma, layout.blueFromLow ? highTerm : lowTerm);
  planes.green = _mm256_sub_epi16(luma, greenSum);
  return planes;
}

// Clamps two 16-pixel halves to bytes in pixel order.
__m256i Pack(__m256i first, __m256i second) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), 0xD8);
}

bool Convert422(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, const SLayout422& layout,
                bool (*finish)(const uint8_t*, uint8_t*, uint32_t, uint32_t)) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  static const CBgrInterleaver interleaver;
  const __m256i colourFactors =
      _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint16_t>(layout.colourLow) |
                                             (static_cast<uint32_t>(static_cast<uint16_t>(layout.colourHigh)) << 16)));
  const __m256i greenFactors = _mm256_set1_epi32(static_cast<int32_t>(
      static_cast<uint16_t>(layout.greenLow) | (static_cast<uint32_t>(static_cast<uint16_t>(layout.greenHigh)) << 16)));
  const uint64_t pixels = uint64_t{width} * height / 2 * 2;
  uint64_t p = 0;
  for (; p + 32 <= pixels; p += 32) {
    const SPlanes16 first = Convert16(source + 2 * p, layout, colourFactors, greenFactors);
    const SPlanes16 second = Convert16(source + 2 * p + 32, layout, colourFactors, greenFactors);
    interleaver.Store(destination + 3 * p, Pack(first.blue, second.blue), Pack(first.green, second.green),
                      Pack(first.red, second.red));
  }
  if (p < pixels) {
    // The last few groups by the reference routine, as a short image of their own.
    return finish(source + 2 * p, destination + 3 * p, static_cast<uint32_t>(pixels - p), 1);
  }
  return true;
}

bool Reference601Yuyv(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Reference::Yuv422ToBgr(s, d, w, h, EYuv422Order::YUYV);
}
bool Reference601Uyvy(const uint8_t* s, uint8_t* d, uint32_t w, uint32_t h) {
  return Reference::Yuv422ToBgr(s, d, w, h, EYuv422Order::UYVY);
}

}  // namespace

bool Yuv422ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EYuv422Order order) {
  // Chroma words are (U, V) in both byte orders: U comes first in each group.
  const bool uyvy = order == EYuv422Order::UYVY;
  const SLayout422 layout{uyvy, kBlueFromU601, kRedFromV601, kGreenFromU601, kGreenFromV601, true};
  return Convert422(source, destination, width, height, layout, uyvy ? Reference601Uyvy : Reference601Yuyv);
}

bool YCbCr422ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  // Groups Y0 c1 Y1 c3: c1 drives red and the first green part, c3 blue and the second.
  const SLayout422 layout{false, kRed709, kBlue709, kGreen1709, kGreen2709, false};
  return Convert422(source, destination, width, height, layout, Reference::YCbCr422ToBgr709);
}

}  // namespace TALVIR::Pixel::Avx2

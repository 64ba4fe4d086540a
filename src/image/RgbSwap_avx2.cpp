// AVX2 red/blue exchange; compiled with -mavx2, called only when CpuHasAvx2().
#include "image/RgbSwap.h"

#include <immintrin.h>

#include <cstdint>

namespace TALVIR::Pixel::Avx2 {
namespace {

// Output byte i of a pixel-aligned run comes from input byte i - 2, i or i + 2. For each 16-byte lane at
// offset o we load the input at o - 2 and at o + 2 and merge two shuffles: every source byte lies in one of
// them. 96 bytes (32 pixels) make the lane masks repeat, so there are three pairs of 32-byte masks.
struct SSwapMasks {
  __m256i fromBefore[3];
  __m256i fromAfter[3];
};

SSwapMasks MakeSwapMasks() {
  SSwapMasks masks;
  for (int chunk = 0; chunk < 3; ++chunk) {
    alignas(32) int8_t before[32];
    alignas(32) int8_t after[32];
    for (int lane = 0; lane < 2; ++lane) {
      const int laneStart = 32 * chunk + 16 * lane;
      for (int j = 0; j < 16; ++j) {
        const int i = laneStart + j;
        const int from = 3 * (i / 3) + 2 - i % 3;
        const int inBefore = from - (laneStart - 2);
        const int inAfter = from - (laneStart + 2);
        const bool useBefore = inBefore >= 0 && inBefore < 16;
        before[16 * lane + j] = useBefore ? static_cast<int8_t>(inBefore) : static_cast<int8_t>(0x80);
        after[16 * lane + j] = useBefore ? static_cast<int8_t>(0x80) : static_cast<int8_t>(inAfter);
      }
    }
    masks.fromBefore[chunk] = _mm256_load_si256(reinterpret_cast<const __m256i*>(before));
    masks.fromAfter[chunk] = _mm256_load_si256(reinterpret_cast<const __m256i*>(after));
  }
  return masks;
}

void SwapPixel(const uint8_t* in, uint8_t* out) {
  const uint8_t first = in[0];
  out[0] = in[2];
  out[1] = in[1];
  out[2] = first;
}

} // namespace

bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  static const SSwapMasks masks = MakeSwapMasks();
  const uint64_t bytes = uint64_t{width} * height * 3;
  // Single pixels first: at least one, so that every load at "offset - 2" stays inside the image, and then
  // until the destination is 32-byte aligned (3 and 32 are coprime, so at most 32 pixels).
  uint64_t at = 0;
  do {
    SwapPixel(source + at, destination + at);
    at += 3;
  } while (at < bytes && (reinterpret_cast<uintptr_t>(destination + at) & 31) != 0);
  for (; at + 98 <= bytes; at += 96) {
    for (int chunk = 0; chunk < 3; ++chunk) {
      const uint8_t* in = source + at + 32 * chunk;
      const __m256i before = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in - 2));
      const __m256i after = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + 2));
      const __m256i merged = _mm256_or_si256(_mm256_shuffle_epi8(before, masks.fromBefore[chunk]),
                                             _mm256_shuffle_epi8(after, masks.fromAfter[chunk]));
      _mm256_store_si256(reinterpret_cast<__m256i*>(destination + at + 32 * chunk), merged);
    }
  }
  for (; at < bytes; at += 3) {
    SwapPixel(source + at, destination + at);
  }
  return true;
}

} // namespace TALVIR::Pixel::Avx2

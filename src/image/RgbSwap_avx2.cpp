// AVX2 red/blue exchange; compiled with -mavx2, called only when CpuHasAvx2().
#include "image/RgbSwap.h"

#include <immintrin.h>

#include <cstdint>

namespace TALVIR::Pixel::Avx2 {
namespace {

// Output byte i of a pixel-aligned run is input byte i + 2 (first byte of a pixel), i (second) or i - 2 (third).
// So each 32-byte output chunk is three overlapping loads, at -2, 0 and +2, each masked to the bytes it
// supplies and merged. Masks repeat every 96 bytes (32 pixels): three sets. Only AND and OR are used, which
// several execution ports can run, and the loads fold into the ANDs.
struct SSwapMasks {
  __m256i first[3];   // bytes taken from two bytes further on
  __m256i middle[3];  // bytes kept in place
  __m256i third[3];   // bytes taken from two bytes back
};

SSwapMasks MakeSwapMasks() {
  SSwapMasks masks;
  for (int chunk = 0; chunk < 3; ++chunk) {
    alignas(32) int8_t bytes[3][32];
    for (int j = 0; j < 32; ++j) {
      const int channel = (32 * chunk + j) % 3;
      for (int c = 0; c < 3; ++c) {
        bytes[c][j] = channel == c ? static_cast<int8_t>(-1) : static_cast<int8_t>(0);
      }
    }
    masks.first[chunk] = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[0]));
    masks.middle[chunk] = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[1]));
    masks.third[chunk] = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes[2]));
  }
  return masks;
}

__m256i Load(const uint8_t* at) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at)); }

void SwapPixel(const uint8_t* in, uint8_t* out) {
  const uint8_t first = in[0];
  out[0] = in[2];
  out[1] = in[1];
  out[2] = first;
}

}  // namespace

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
  // The three chunks of a 96-byte block written out, so that all nine masks stay in registers and every
  // load folds into its AND.
  const __m256i first0 = masks.first[0], first1 = masks.first[1], first2 = masks.first[2];
  const __m256i middle0 = masks.middle[0], middle1 = masks.middle[1], middle2 = masks.middle[2];
  const __m256i third0 = masks.third[0], third1 = masks.third[1], third2 = masks.third[2];
  auto chunk = [](const uint8_t* in, __m256i first, __m256i middle, __m256i third) {
    return _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(first, Load(in + 2)), _mm256_and_si256(middle, Load(in))),
                           _mm256_and_si256(third, Load(in - 2)));
  };
  for (; at + 98 <= bytes; at += 96) {
    const uint8_t* in = source + at;
    uint8_t* out = destination + at;
    _mm256_store_si256(reinterpret_cast<__m256i*>(out), chunk(in, first0, middle0, third0));
    _mm256_store_si256(reinterpret_cast<__m256i*>(out + 32), chunk(in + 32, first1, middle1, third1));
    _mm256_store_si256(reinterpret_cast<__m256i*>(out + 64), chunk(in + 64, first2, middle2, third2));
  }
  for (; at < bytes; at += 3) {
    SwapPixel(source + at, destination + at);
  }
  return true;
}

}  // namespace TALVIR::Pixel::Avx2

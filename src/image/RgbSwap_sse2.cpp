// SSE2 red/blue exchange, for x86-64 processors without AVX2 (SSE2 is always there). The same method as the
// AVX2 version, 16 bytes at a time: three overlapping loads masked to the bytes each supplies, and merged.
#include "image/RgbSwap.h"

#include <emmintrin.h>

#include <cstdint>

namespace TALVIR::Pixel::Sse2 {
namespace {

struct SSwapMasks {
  __m128i fromAfter[3];
  __m128i inPlace[3];
  __m128i fromBefore[3];
};

SSwapMasks MakeSwapMasks() {
  SSwapMasks masks;
  for (int part = 0; part < 3; ++part) {
    alignas(16) int8_t bytes[3][16];
    for (int j = 0; j < 16; ++j) {
      const int channel = (16 * part + j) % 3;
      for (int c = 0; c < 3; ++c) {
        bytes[c][j] = channel == c ? static_cast<int8_t>(-1) : static_cast<int8_t>(0);
      }
    }
    masks.fromAfter[part] = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes[0]));
    masks.inPlace[part] = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes[1]));
    masks.fromBefore[part] = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes[2]));
  }
  return masks;
}

__m128i Load(const uint8_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

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
  // The first pixel alone, so that every load at "offset - 2" stays inside the image.
  SwapPixel(source, destination);
  uint64_t at = 3;
  for (; at + 50 <= bytes; at += 48) {
    for (int part = 0; part < 3; ++part) {
      const uint8_t* in = source + at + 16 * part;
      const __m128i merged = _mm_or_si128(_mm_or_si128(_mm_and_si128(masks.fromAfter[part], Load(in + 2)),
                                                       _mm_and_si128(masks.inPlace[part], Load(in))),
                                          _mm_and_si128(masks.fromBefore[part], Load(in - 2)));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + at + 16 * part), merged);
    }
  }
  for (; at < bytes; at += 3) {
    SwapPixel(source + at, destination + at);
  }
  return true;
}

}  // namespace TALVIR::Pixel::Sse2

// SSE2 version of the 16-to-8-bit shift, for x86-64 processors without AVX2 (SSE2 is always there).
#include "image/Shift.h"

#include <emmintrin.h>

namespace TALVIR::Pixel::Sse2 {
namespace {

// 16 samples to bytes: keep the 8 bits that survive the shift, shift, pack (see the AVX2 version).
template <int Shift>
inline __m128i Shift16(const uint8_t* in) {
  const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 16));
  const __m128i kept = _mm_set1_epi16(static_cast<int16_t>(0xFF << Shift));
  return _mm_packus_epi16(_mm_srli_epi16(_mm_and_si128(a, kept), Shift), _mm_srli_epi16(_mm_and_si128(b, kept), Shift));
}

template <int Shift>
void ShiftAll(const uint8_t* source, uint8_t* destination, uint64_t count) {
  uint64_t i = 0;
  for (; i + 16 <= count; i += 16) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + i), Shift16<Shift>(source + 2 * i));
  }
  for (; i < count; ++i) {
    const unsigned sample = unsigned{source[2 * i]} | (unsigned{source[2 * i + 1]} << 8);
    destination[i] = static_cast<uint8_t>(sample >> Shift);
  }
}

}  // namespace

bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0 || bits <= 8) {
    return false;
  }
  const uint64_t count = uint64_t{width} * height;
  switch (bits) {
  case 10: ShiftAll<2>(source, destination, count); return true;
  case 12: ShiftAll<4>(source, destination, count); return true;
  case 14: ShiftAll<6>(source, destination, count); return true;
  case 16: ShiftAll<8>(source, destination, count); return true;
  default: return Reference::ShiftTo8(source, destination, width, height, bits);
  }
}

}  // namespace TALVIR::Pixel::Sse2

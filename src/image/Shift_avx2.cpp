// AVX2 version of the 16-to-8-bit shift; this file alone is compiled with -mavx2 and is only called after
// CpuHasAvx2() said yes.
#include "image/Shift.h"

#include <immintrin.h>

namespace TALVIR::Pixel::Avx2 {

bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0 || bits <= 8 || bits > 16) {
    return false;
  }
  const uint64_t count = uint64_t{width} * height;
  const __m128i shift = _mm_cvtsi32_si128(static_cast<int>(bits - 8));
  const __m256i lowByte = _mm256_set1_epi16(0x00FF);
  uint64_t i = 0;
  for (; i + 32 <= count; i += 32) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + 2 * i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + 2 * i + 32));
    const __m256i a8 = _mm256_and_si256(_mm256_srl_epi16(a, shift), lowByte);
    const __m256i b8 = _mm256_and_si256(_mm256_srl_epi16(b, shift), lowByte);
    // packus works per 128-bit lane; the 64-bit permute puts the four quarters back in pixel order.
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(a8, b8), 0xD8);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + i), packed);
  }
  const unsigned scalarShift = bits - 8;
  for (; i < count; ++i) {
    const unsigned sample = unsigned{source[2 * i]} | (unsigned{source[2 * i + 1]} << 8);
    destination[i] = static_cast<uint8_t>(sample >> scalarShift);
  }
  return true;
}

} // namespace TALVIR::Pixel::Avx2

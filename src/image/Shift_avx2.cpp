// AVX2 version of the 16-to-8-bit shift; this file alone is compiled with -mavx2 and is only called after
// CpuHasAvx2() said yes.
#include "image/Shift.h"

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace TALVIR::Pixel::Avx2 {
namespace {

__attribute__((always_inline)) inline __m256i LoadLanes(const uint8_t* low, const uint8_t* high) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
}

// 32 samples to bytes. Masking before shifting, (x & (0xFF << s)) >> s, equals the low byte of x >> s (so wider
// data wraps like the reference). The shift is done as a high-half multiplication by 2^(16 - s), which
// measured faster here than the shift instruction (both are exact for 16-bit data).
template <int Shift>
__attribute__((always_inline)) inline __m256i Shift32(const uint8_t* in) {
  const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
  const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + 32));
  const __m256i scale = _mm256_set1_epi16(static_cast<int16_t>(1u << (16 - Shift)));
  __m256i a8;
  __m256i b8;
  if constexpr (Shift < 8) {
    const __m256i kept = _mm256_set1_epi16(static_cast<int16_t>(0xFF << Shift));
    a8 = _mm256_mulhi_epu16(_mm256_and_si256(kept, a), scale);
    b8 = _mm256_mulhi_epu16(_mm256_and_si256(kept, b), scale);
  } else {
    a8 = _mm256_mulhi_epu16(a, scale);
    b8 = _mm256_mulhi_epu16(b, scale);
  }
  // packus works per 128-bit lane; the 64-bit permute puts the four quarters back in pixel order.
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(a8, b8), 0xD8);
}

template <int Shift>
void ShiftAll(const uint8_t* source, uint8_t* destination, uint64_t count) {
  // Single samples until the destination is 32-byte aligned, so that no store straddles two cache lines
  // (measured faster than aligning the loads).
  uint64_t i = 0;
  for (; i < count && (reinterpret_cast<uintptr_t>(destination + i) & 31) != 0; ++i) {
    const unsigned sample = unsigned{source[2 * i]} | (unsigned{source[2 * i + 1]} << 8);
    destination[i] = static_cast<uint8_t>(sample >> Shift);
  }
  for (; i + 64 <= count; i += 64) {
    const __m256i first = Shift32<Shift>(source + 2 * i);
    const __m256i second = Shift32<Shift>(source + 2 * i + 64);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + i), first);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + i + 32), second);
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
  case 10: ShiftAll<2>(source, destination, count); break;
  case 12: ShiftAll<4>(source, destination, count); break;
  case 14: ShiftAll<6>(source, destination, count); break;
  case 16: ShiftAll<8>(source, destination, count); break;
  default:
    // Other bit counts exist in no camera format; the plain routine serves them.
    return Reference::ShiftTo8(source, destination, width, height, bits);
  }
  return true;
}

}  // namespace TALVIR::Pixel::Avx2

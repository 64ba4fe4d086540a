#pragma once
// Writing 32 pixels held as three 32-byte planes (blue, green, red) as 96 bytes of BGR8.
// Included only by files compiled with -mavx2.
#include <immintrin.h>

#include <cstdint>

namespace TALVIR::Pixel::Avx2 {

class CBgrInterleaver {
public:
  CBgrInterleaver() {
    // Within one 16-pixel lane, output byte 16k + j is channel (16k + j) % 3 of pixel (16k + j) / 3.
    for (int k = 0; k < 3; ++k) {
      alignas(16) int8_t masks[3][16];
      for (int j = 0; j < 16; ++j) {
        const int at = 16 * k + j;
        for (int channel = 0; channel < 3; ++channel) {
          masks[channel][j] = at % 3 == channel ? static_cast<int8_t>(at / 3) : static_cast<int8_t>(0x80);
        }
      }
      for (int channel = 0; channel < 3; ++channel) {
        m_mask[k][channel] =
            _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(masks[channel])));
      }
    }
  }

  // How the three 32-byte parts reach memory: unaligned stores anywhere, aligned ones when out is 32-byte
  // aligned.
  enum class EStore { Unaligned, Aligned };

  template <EStore Kind = EStore::Unaligned>
  __attribute__((always_inline)) void Store(uint8_t* out, __m256i blue, __m256i green, __m256i red) const {
    __m256i part[3];
    for (int k = 0; k < 3; ++k) {
      part[k] = _mm256_or_si256(
          _mm256_or_si256(_mm256_shuffle_epi8(blue, m_mask[k][0]), _mm256_shuffle_epi8(green, m_mask[k][1])),
          _mm256_shuffle_epi8(red, m_mask[k][2]));
    }
    // part[k] holds output bytes 16k.. of pixels 0-15 in its low lane and of pixels 16-31 in its high lane.
    Put<Kind>(out, _mm256_permute2x128_si256(part[0], part[1], 0x20));
    Put<Kind>(out + 32, _mm256_permute2x128_si256(part[2], part[0], 0x30));
    Put<Kind>(out + 64, _mm256_permute2x128_si256(part[1], part[2], 0x31));
  }

private:
  template <EStore Kind>
  __attribute__((always_inline)) static void Put(uint8_t* at, __m256i value) {
    if constexpr (Kind == EStore::Aligned) {
      _mm256_store_si256(reinterpret_cast<__m256i*>(at), value);
    } else {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), value);
    }
  }

  __m256i m_mask[3][3];
};

// Writing 32 pixels held as pixel pairs: three vectors of 16 words, P = (blue, green) of the even pixel,
// Q = (red of the even, blue of the odd pixel), S = (green, red) of the odd pixel; the output is the words
// P0 Q0 S0 P1 Q1 S1 ... Within a 16-byte lane, rotating Q by 3 words and S by 6 makes the eight words each
// 16-byte output part needs sit at distinct positions of P, Q and S, so two blends and one byte shuffle
// (the same for all three parts) build each part.
class CPairInterleaver {
public:
  using EStore = CBgrInterleaver::EStore;

  template <EStore Kind = EStore::Unaligned>
  __attribute__((always_inline)) void Store(uint8_t* out, __m256i p, __m256i q, __m256i s) const {
    const __m256i order = _mm256_setr_epi8(0, 1, 6, 7, 12, 13, 2, 3, 8, 9, 14, 15, 4, 5, 10, 11, 0, 1, 6, 7, 12, 13, 2,
                                           3, 8, 9, 14, 15, 4, 5, 10, 11);
    const __m256i qRotated = _mm256_alignr_epi8(q, q, 10);
    const __m256i sRotated = _mm256_alignr_epi8(s, s, 4);
    const __m256i part0 = _mm256_shuffle_epi8(_mm256_blend_epi16(_mm256_blend_epi16(p, qRotated, 0x38), sRotated, 0xC0),
                                              order);
    const __m256i part1 = _mm256_shuffle_epi8(_mm256_blend_epi16(_mm256_blend_epi16(sRotated, p, 0x38), qRotated, 0xC0),
                                              order);
    const __m256i part2 = _mm256_shuffle_epi8(_mm256_blend_epi16(_mm256_blend_epi16(qRotated, sRotated, 0x38), p, 0xC0),
                                              order);
    Put<Kind>(out, _mm256_permute2x128_si256(part0, part1, 0x20));
    Put<Kind>(out + 32, _mm256_permute2x128_si256(part2, part0, 0x30));
    Put<Kind>(out + 64, _mm256_permute2x128_si256(part1, part2, 0x31));
  }

private:
  template <EStore Kind>
  __attribute__((always_inline)) static void Put(uint8_t* at, __m256i value) {
    if constexpr (Kind == EStore::Aligned) {
      _mm256_store_si256(reinterpret_cast<__m256i*>(at), value);
    } else {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), value);
    }
  }
};

}  // namespace TALVIR::Pixel::Avx2

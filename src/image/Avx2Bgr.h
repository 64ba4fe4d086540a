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
        m_mask[k][channel] = _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(masks[channel])));
      }
    }
  }

  void Store(uint8_t* out, __m256i blue, __m256i green, __m256i red) const {
    __m256i part[3];
    for (int k = 0; k < 3; ++k) {
      part[k] = _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(blue, m_mask[k][0]),
                                                _mm256_shuffle_epi8(green, m_mask[k][1])),
                                _mm256_shuffle_epi8(red, m_mask[k][2]));
    }
    // part[k] holds output bytes 16k.. of pixels 0-15 in its low lane and of pixels 16-31 in its high lane.
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_permute2x128_si256(part[0], part[1], 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 32), _mm256_permute2x128_si256(part[2], part[0], 0x30));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 64), _mm256_permute2x128_si256(part[1], part[2], 0x31));
  }

private:
  __m256i m_mask[3][3];
};

} // namespace TALVIR::Pixel::Avx2

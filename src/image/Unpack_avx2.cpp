// AVX2 versions of the packed-sample routines; compiled with -mavx2, called only when CpuHasAvx2().
#include "image/Unpack.h"

#include <immintrin.h>

namespace TALVIR::Pixel::Avx2 {
namespace {

__m256i LoadTwoLanes(const uint8_t* low, const uint8_t* high) {
  const __m128i lowLane = _mm_loadu_si128(reinterpret_cast<const __m128i*>(low));
  const __m128i highLane = _mm_loadu_si128(reinterpret_cast<const __m128i*>(high));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(lowLane), highLane, 1);
}

// Byte-shuffle mask repeated in both lanes.
__m256i LaneMask(const int8_t (&mask)[16]) {
  const __m128i lane = _mm_loadu_si128(reinterpret_cast<const __m128i*>(mask));
  return _mm256_broadcastsi128_si256(lane);
}

// Per lane, 8 pixels of an LSB-first stream start at a whole group, so one mask and one multiplier set serve
// every lane: word i takes the two bytes holding the pixel's top 8 bits, and the multiplier 2^(8 - s) moves
// bit s of that word to bit 8, where a shift by 8 picks the byte.
struct SLsbKernel {
  __m256i gather;
  __m256i multiplier;
};

SLsbKernel MakeLsbKernel(uint32_t bits) {
  int8_t gather[16];
  int16_t multiplier[8];
  for (uint32_t i = 0; i < 8; ++i) {
    const uint32_t position = i * bits + (bits - 8);
    const uint32_t byte = position / 8;
    const uint32_t shift = position % 8;
    gather[2 * i] = static_cast<int8_t>(byte);
    gather[2 * i + 1] = byte + 1 < bits ? static_cast<int8_t>(byte + 1) : static_cast<int8_t>(0x80);
    multiplier[i] = static_cast<int16_t>(1 << (8 - shift));
  }
  SLsbKernel kernel;
  kernel.gather = LaneMask(gather);
  kernel.multiplier = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(multiplier)));
  return kernel;
}

}  // namespace

bool KeepHighBytes(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  const uint64_t pairs = uint64_t{width} * height / 2;
  // Output byte j of a 16-byte run comes from input byte 3 (j / 2) + 2 (j % 2) of a 24-byte run: the first
  // 16 input bytes give bytes 0..10, a second load 8 bytes on gives the rest.
  int8_t first[16];
  int8_t second[16];
  for (int j = 0; j < 16; ++j) {
    const int from = 3 * (j / 2) + 2 * (j % 2);
    first[j] = from < 16 ? static_cast<int8_t>(from) : static_cast<int8_t>(0x80);
    second[j] = from < 16 ? static_cast<int8_t>(0x80) : static_cast<int8_t>(from - 8);
  }
  const __m256i firstMask = LaneMask(first);
  const __m256i secondMask = LaneMask(second);
  uint64_t k = 0;
  for (; k + 16 <= pairs; k += 16) {
    const uint8_t* in = source + 3 * k;
    const __m256i a = _mm256_shuffle_epi8(LoadTwoLanes(in, in + 24), firstMask);
    const __m256i b = _mm256_shuffle_epi8(LoadTwoLanes(in + 8, in + 32), secondMask);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + 2 * k), _mm256_or_si256(a, b));
  }
  for (; k < pairs; ++k) {
    destination[2 * k] = source[3 * k];
    destination[2 * k + 1] = source[3 * k + 2];
  }
  return true;
}

bool UnpackLsbFirst(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits) {
  const SLsbGroup group = LsbFirstGroup(bits);
  if (source == nullptr || destination == nullptr || width == 0 || height == 0 || group.pixels == 0) {
    return false;
  }
  const uint64_t pixels = uint64_t{width} * height / group.pixels * group.pixels;
  const uint64_t inputBytes = pixels / group.pixels * group.bytes;
  const SLsbKernel kernel = MakeLsbKernel(bits);
  // 32 pixels per step: four lanes of 8 pixels, each lane `bits` bytes after the previous one.
  uint64_t p = 0;
  for (; p + 32 <= pixels; p += 32) {
    const uint64_t inOffset = p * bits / 8;
    if (inOffset + 3 * bits + 16 > inputBytes) {
      break;  // the last lane's 16-byte load would read past the packed data
    }
    const uint8_t* in = source + inOffset;
    const __m256i low = _mm256_shuffle_epi8(LoadTwoLanes(in, in + bits), kernel.gather);
    const __m256i high = _mm256_shuffle_epi8(LoadTwoLanes(in + 2 * bits, in + 3 * bits), kernel.gather);
    const __m256i low8 = _mm256_srli_epi16(_mm256_mullo_epi16(low, kernel.multiplier), 8);
    const __m256i high8 = _mm256_srli_epi16(_mm256_mullo_epi16(high, kernel.multiplier), 8);
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(low8, high8), 0xD8);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + p), packed);
  }
  // The rest, whole groups at a time, exactly as the reference does it.
  const uint64_t mask = (uint64_t{1} << bits) - 1;
  for (; p < pixels; p += group.pixels) {
    const uint8_t* in = source + p / group.pixels * group.bytes;
    uint64_t value = 0;
    for (uint32_t b = 0; b < group.bytes; ++b) {
      value |= uint64_t{in[b]} << (8 * b);
    }
    for (uint32_t i = 0; i < group.pixels; ++i) {
      destination[p + i] = static_cast<uint8_t>(((value >> (i * bits)) & mask) >> (bits - 8));
    }
  }
  return true;
}

}  // namespace TALVIR::Pixel::Avx2

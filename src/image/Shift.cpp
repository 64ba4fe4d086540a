#include "image/Shift.h"

#include "image/CpuFeatures.h"

#include <cstddef>

namespace TALVIR::Pixel {

namespace Reference {

bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0 || bits <= 8) {
    return false;
  }
  const uint64_t count = uint64_t{width} * height;
  if (bits >= 24) {
    // A shift of 16 or more leaves nothing of a 16-bit sample (and would be undefined for 32 or more).
    for (uint64_t i = 0; i < count; ++i) {
      destination[i] = 0;
    }
    return true;
  }
  const unsigned shift = bits - 8;
  // A plain loop over bytes: no alignment is assumed and the compiler vectorises it on every target.
  for (uint64_t i = 0; i < count; ++i) {
    const unsigned sample = unsigned{source[2 * i]} | (unsigned{source[2 * i + 1]} << 8);
    destination[i] = static_cast<uint8_t>(sample >> shift);
  }
  return true;
}

}  // namespace Reference

bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::ShiftTo8(source, destination, width, height, bits);
  }
#endif
#if TALVIR_IMAGE_HAS_SSE2
  return Sse2::ShiftTo8(source, destination, width, height, bits);
#else
  return Reference::ShiftTo8(source, destination, width, height, bits);
#endif
}

}  // namespace TALVIR::Pixel

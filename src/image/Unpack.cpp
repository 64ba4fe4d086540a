#include "image/Unpack.h"

#include "image/CpuFeatures.h"

namespace TALVIR::Pixel {

SLsbGroup LsbFirstGroup(uint32_t bits) {
  switch (bits) {
  case 10: return {5, 4};
  case 12: return {3, 2};
  case 14: return {7, 4};
  default: return {};
  }
}

namespace Reference {

bool KeepHighBytes(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  const uint64_t pairs = uint64_t{width} * height / 2;
  for (uint64_t k = 0; k < pairs; ++k) {
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
  const uint64_t groups = uint64_t{width} * height / group.pixels;
  const uint64_t mask = (uint64_t{1} << bits) - 1;
  for (uint64_t g = 0; g < groups; ++g) {
    const uint8_t* in = source + g * group.bytes;
    uint64_t value = 0;
    for (uint32_t b = 0; b < group.bytes; ++b) {
      value |= uint64_t{in[b]} << (8 * b);
    }
    uint8_t* out = destination + g * group.pixels;
    for (uint32_t i = 0; i < group.pixels; ++i) {
      const uint64_t pixel = (value >> (i * bits)) & mask;
      out[i] = static_cast<uint8_t>(pixel >> (bits - 8));
    }
  }
  return true;
}

}  // namespace Reference

bool KeepHighBytes(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::KeepHighBytes(source, destination, width, height);
  }
#endif
  return Reference::KeepHighBytes(source, destination, width, height);
}

bool UnpackLsbFirst(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::UnpackLsbFirst(source, destination, width, height, bits);
  }
#endif
  return Reference::UnpackLsbFirst(source, destination, width, height, bits);
}

}  // namespace TALVIR::Pixel

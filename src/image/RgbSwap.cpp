#include "image/RgbSwap.h"

#include "image/CpuFeatures.h"

namespace TALVIR::Pixel {

namespace Reference {

bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  const uint64_t count = uint64_t{width} * height;
  for (uint64_t i = 0; i < count; ++i) {
    destination[3 * i] = source[3 * i + 2];
    destination[3 * i + 1] = source[3 * i + 1];
    destination[3 * i + 2] = source[3 * i];
  }
  return true;
}

}  // namespace Reference

bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::SwapRedBlue(source, destination, width, height);
  }
#endif
#if TALVIR_IMAGE_HAS_SSE2
  return Sse2::SwapRedBlue(source, destination, width, height);
#else
  return Reference::SwapRedBlue(source, destination, width, height);
#endif
}

}  // namespace TALVIR::Pixel

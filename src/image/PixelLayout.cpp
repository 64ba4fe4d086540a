#include "image/PixelLayout.h"

#include "image/PixelFormats.h"

#include <algorithm>
#include <iterator>

namespace TALVIR {
namespace {

using namespace PixelFormat;

// Formats whose layout is bits-per-pixel from the code, one unit per pixel.
constexpr uint32_t kSingleUnitFormats[] = {
    Mono8,           Mono8s,          Mono10,          Mono12,          Mono14,          Mono16,
    Mono10Packed,    Mono12Packed,    Mono10p,         Mono12p,         Mono14p,         BayerGR8,
    BayerRG8,        BayerGB8,        BayerBG8,        BayerGR10,       BayerRG10,       BayerGB10,
    BayerBG10,       BayerGR12,       BayerRG12,       BayerGB12,       BayerBG12,       BayerGR14,
    BayerRG14,       BayerGB14,       BayerBG14,       BayerGR16,       BayerRG16,       BayerGB16,
    BayerBG16,       BayerGR10Packed, BayerRG10Packed, BayerGB10Packed, BayerBG10Packed, BayerGR12Packed,
    BayerRG12Packed, BayerGB12Packed, BayerBG12Packed, BayerGR10p,      BayerRG10p,      BayerGB10p,
    BayerBG10p,      BayerGR12p,      BayerRG12p,      BayerGB12p,      BayerBG12p,      BayerGR14p,
    BayerRG14p,      BayerGB14p,      BayerBG14p,      YUV411_8_UYYVYY, RGB565p,         BGR565p,
};

bool IsSingleUnitFormat(uint32_t pfnc) {
  return std::find(std::begin(kSingleUnitFormats), std::end(kSingleUnitFormats), pfnc) != std::end(kSingleUnitFormats);
}

}  // namespace

SPixelLayout PixelLayoutOf(uint32_t pfnc) {
  switch (pfnc) {
  case RGB8:
  case BGR8:
  case YUV8_UYV:
  case YCbCr709_8_CbYCr: return {8, 3};
  case RGB10:
  case RGB12: return {16, 3};
  case RGB10p: return {10, 3};
  case YUV422_8:
  case YUV422_8_UYVY:
  case YCbCr422_8:
  case YCbCr709_422_8: return {8, 2};
  default: break;
  }
  if (IsSingleUnitFormat(pfnc)) {
    return {EncodedBitsPerPixel(pfnc), 1};
  }
  return {0, 0};
}

uint64_t ImageSizeBytes(uint32_t pfnc, uint64_t width, uint64_t height) {
  const SPixelLayout layout = PixelLayoutOf(pfnc);
  const uint64_t bitsPerPixel = uint64_t{layout.bits} * layout.factor;
  uint64_t pixels = 0;
  uint64_t bits = 0;
  if (__builtin_mul_overflow(width, height, &pixels) || __builtin_mul_overflow(pixels, bitsPerPixel, &bits)) {
    return 0;
  }
  return bits / 8 + (bits % 8 != 0 ? 1 : 0);
}

}  // namespace TALVIR

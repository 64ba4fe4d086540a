#pragma once
// How many bytes an image of a given pixel format takes. Every part of the library that sizes image buffers,
// computes a line pitch or checks a payload uses these two functions, so that they always agree.
#include <cstdint>

namespace TALVIR {

// Bits of one stored unit and the number of units per pixel: RGB8 is (8, 3), RGB10 in 16-bit containers is
// (16, 3), the 4:2:2 formats are (8, 2), Mono12Packed is (12, 1). Both are 0 for a code this library does not know.
struct SPixelLayout {
  uint32_t bits = 0;
  uint32_t factor = 0;
};

SPixelLayout PixelLayoutOf(uint32_t pfnc);

// width x height x bits x factor / 8, rounded up to a whole byte. 0 for an unknown format, and 0 when the
// product does not fit in 64 bits (no real image is that large, so such a size can only come from bad input).
uint64_t ImageSizeBytes(uint32_t pfnc, uint64_t width, uint64_t height);

}  // namespace TALVIR

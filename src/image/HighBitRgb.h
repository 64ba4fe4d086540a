#pragma once
// Our own conversion of the 10- and 12-bit RGB formats to BGR8, used when the maker's conversion library is not
// installed: each component's top 8 bits (the low 8 bits of the component shifted right by bits - 8), written
// in blue, green, red order.
//
//   RGB10 / RGB12: three little-endian 16-bit containers per pixel, red first.
//   RGB10p: 30 bits per pixel, red, green, blue, packed LSB first in a little-endian bit stream.
//
// Fails for a null pointer, a zero dimension or any other format.
#include <cstdint>

namespace TALVIR::Pixel {

bool HighBitRgbToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height,
                     uint32_t pixelFormat);

}  // namespace TALVIR::Pixel

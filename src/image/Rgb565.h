#pragma once
// 5-6-5 packed 16-bit pixels (little-endian) to three bytes. A 5-bit field f becomes the integer part of
// f x 255 / 31 + 0.5, the 6-bit field the integer part of f x 255 / 63 + 0.5.
//
// LowFieldFirst: output byte 0 from bits 0-4, byte 1 from bits 5-10, byte 2 from bits 11-15.
// HighFieldFirst: output byte 0 from bits 11-15, byte 1 from bits 5-10, byte 2 from bits 0-4.
// Fails for a null pointer or a zero dimension.
#include <cstdint>

namespace TALVIR::Pixel {

enum class E565Order { LowFieldFirst, HighFieldFirst };

namespace Reference {
bool Expand565(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, E565Order order);
}

bool Expand565(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, E565Order order);

}  // namespace TALVIR::Pixel

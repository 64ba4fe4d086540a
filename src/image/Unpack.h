#pragma once
// Packed monochrome (and raw Bayer) samples to 8 bits.
//
// KeepHighBytes: the three-byte layout in which two pixels share a middle byte holding their low bits. Every
// 3 input bytes give 2 output bytes, input bytes 0 and 2. (width x height) / 2 pairs are converted, so with
// an odd pixel count the last output byte is left as it was; fewer than two pixels write nothing and succeed.
//
// UnpackLsbFirst: pixels packed least significant bit first in a little-endian bit stream (bits 10, 12 or 14).
// Groups of 5 bytes give 4 pixels (10 bits), 3 bytes 2 pixels (12), 7 bytes 4 pixels (14); each output byte
// is the pixel's top 8 bits. Only whole groups are converted: trailing pixels that do not fill a group are
// left as they were. Fails for bits other than 10, 12 and 14.
//
// Both fail for a null pointer or a zero dimension.
#include <cstdint>

namespace TALVIR::Pixel {

namespace Reference {
bool KeepHighBytes(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
bool UnpackLsbFirst(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);
}  // namespace Reference

namespace Avx2 {
bool KeepHighBytes(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
bool UnpackLsbFirst(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);
}  // namespace Avx2

bool KeepHighBytes(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
bool UnpackLsbFirst(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);

// Group geometry of the LSB-first layouts; both 0 for an unsupported bit count.
struct SLsbGroup {
  uint32_t bytes = 0;
  uint32_t pixels = 0;
};
SLsbGroup LsbFirstGroup(uint32_t bits);

}  // namespace TALVIR::Pixel

#pragma once
// 16-bit samples (little-endian containers of 10, 12, 14 or 16 significant bits) to 8 bits.
//
// Each output byte is the low 8 bits of the sample shifted right by (bits - 8): data with more significant
// bits than declared wraps instead of saturating, so every implementation below gives the same bytes for any
// input; a declared count of 24 bits or more leaves 0. All routines fail (return false) for a null pointer, a
// zero dimension or bits of 8 or fewer.
#include <cstdint>

namespace TALVIR::Pixel {

namespace Reference {
bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);
}
namespace Avx2 {
bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);
}
namespace Sse2 {  // x86-64 only
bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);
}

// The fastest implementation this CPU supports.
bool ShiftTo8(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, uint32_t bits);

}  // namespace TALVIR::Pixel

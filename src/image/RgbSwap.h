#pragma once
// Three-byte pixels with the first and third byte exchanged (RGB8 to BGR8). Fails for a null pointer or a zero
// dimension.
#include <cstdint>

namespace TALVIR::Pixel {

namespace Reference {
bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
}
namespace Avx2 {
bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
}
namespace Sse2 {  // x86-64 only
bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
}

bool SwapRedBlue(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);

}  // namespace TALVIR::Pixel

#pragma once
// 8-bit Bayer mosaic to BGR8 by bilinear interpolation with integer truncation.
//
// The pattern names the colours of the first two pixels of the first row. Inside the image a pixel keeps its
// own colour; a missing colour is the mean of the two nearest samples of that colour when they lie on one axis
// (sum >> 1), or of the four nearest when they lie on the diagonals or on both axes (sum >> 2).
//
// Border rule. The interpolated box is rows 1..height-2 and columns 1..xLast, where xLast = width - 2 for an
// even width and width - 3 for an odd one (columns are interpolated in pairs starting at column 1, and an odd
// width leaves the last interior column unpaired). Every pixel outside the box copies the BGR triple of the
// nearest pixel of the box (its coordinates clamped into the box): row 0 repeats row 1, the last row repeats
// the row above it, column 0 repeats column 1, and the columns right of xLast repeat column xLast.
// Images too small to have a box (width < 4 or height < 3) use the 2x2 cell rule instead: every pixel takes the
// red and blue samples of the 2x2 cell whose top-left corner is (min(x & ~1, width - 2), min(y & ~1, height - 2)),
// its own green if it is a green pixel, else the mean of the cell's two greens (sum >> 1).
//
// All routines fail for a null pointer or a width or height below 2.
#include <cstdint>

namespace TALVIR::Pixel {

enum class EBayer { GR, RG, GB, BG };

namespace Reference {
bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern);
}
namespace Avx2 {
bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern);
}

bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern);

namespace Detail {

enum class EColour { Red, Green, Blue };

// Colour of the sample at (x, y).
EColour ColourAt(EBayer pattern, uint32_t x, uint32_t y);

// Last interpolated column (see the border rule); only meaningful when HasInterior(). Not inline on purpose:
// an inline function used by both the plain and the AVX2 files could be kept in its AVX2-compiled copy.
uint32_t LastInteriorColumn(uint32_t width);
bool HasInterior(uint32_t width, uint32_t height);

// Interpolates the interior pixel (x, y), 1 <= x <= width - 2, 1 <= y <= height - 2, into out[0..2] (B, G, R).
void InterpolateInterior(const uint8_t* source, uint32_t width, uint32_t x, uint32_t y, EBayer pattern, uint8_t* out);

// Copies the box's edge pixels outward over everything outside the box, once the box is filled.
void FillBorders(uint8_t* destination, uint32_t width, uint32_t height);

// The whole image by the 2x2 cell rule (for images without a box).
void DemosaicByCells(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern);

}  // namespace Detail

}  // namespace TALVIR::Pixel

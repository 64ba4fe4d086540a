#pragma once
// Luma/chroma formats to BGR8 through two fixed lookup tables.
//
// Each table has four arrays of 256 entries, indexed by a chroma byte c, entry = (c - 128) x k rounded to the
// nearest integer. Array 0 gives red from chroma, array 3 blue from chroma, arrays 1 and 2 the two parts
// subtracted for green. Every result is clamped to 0..255.
//
//   601 table, k = 1.370705, 0.698001, 0.337633, 1.732446 (YUV formats)
//   709 table, k = 1.53965, 0.18314, 0.45768, 1.81418 (the YCbCr formats)
//
// All routines fail for a null pointer or a zero dimension. The pixel count is width x height; pixels that do
// not fill a whole chroma group at the end (an odd count for 4:2:2, a count not divisible by 4 for 4:1:1)
// are left as they were.
#include <cstdint>

namespace TALVIR::Pixel {

struct SChromaTable {
  int32_t entry[4][256];
};

// Built at compile time, so they exist before any code of the library runs.
const SChromaTable& Table601();
const SChromaTable& Table709();

// Byte order of the 4:2:2 groups of the 601 formats.
enum class EYuv422Order { YUYV, UYVY };

namespace Reference {
// 4:2:2 with the 601 table: per 2 pixels, blue = Y + A3[U], green = Y - A1[V] - A2[U], red = Y + A0[V].
bool Yuv422ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EYuv422Order order);
// 4:2:2 with the 709 table, groups Y0 c1 Y1 c3: blue = Y + B3[c3], green = Y - B2[c3] - B1[c1], red = Y + B0[c1].
bool YCbCr422ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
// 4:4:4 with the 601 table, U Y V per pixel.
bool Yuv444ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
// 4:1:1 with the 601 table, U Y0 Y1 V Y2 Y3 per 4 pixels, the 4:2:2 formulas for each Y.
bool Yuv411ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
// 4:4:4 with the 709 table, c0 Y c2 per pixel: blue = Y + B3[c2], green = Y - B2[c2] - B1[c0], red = Y + B0[c0].
bool YCbCr444ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
}  // namespace Reference

namespace Avx2 {
bool Yuv422ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EYuv422Order order);
bool YCbCr422ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
}  // namespace Avx2

bool Yuv422ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EYuv422Order order);
bool YCbCr422ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
bool Yuv444ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
bool Yuv411ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);
bool YCbCr444ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height);

}  // namespace TALVIR::Pixel

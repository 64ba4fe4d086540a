#include "image/Demosaic.h"

#include "image/CpuFeatures.h"

#include <algorithm>
#include <cstring>

namespace TALVIR::Pixel {
namespace Detail {
namespace {

// Position parity of the red sample in each pattern; blue sits on the opposite corner of the 2x2 cell.
void RedParity(EBayer pattern, uint32_t& redX, uint32_t& redY) {
  switch (pattern) {
  case EBayer::GR:
    redX = 1;
    redY = 0;
    return;
  case EBayer::RG:
    redX = 0;
    redY = 0;
    return;
  case EBayer::GB:
    redX = 0;
    redY = 1;
    return;
  case EBayer::BG:
    redX = 1;
    redY = 1;
    return;
  }
  redX = 0;
  redY = 0;
}

void Put(uint8_t* out, EColour colour, unsigned value) {
  // Output order is blue, green, red.
  const int index = colour == EColour::Blue ? 0 : (colour == EColour::Green ? 1 : 2);
  out[index] = static_cast<uint8_t>(value);
}

}  // namespace

uint32_t LastInteriorColumn(uint32_t width) { return (width - 2) / 2 * 2; }

bool HasInterior(uint32_t width, uint32_t height) { return width >= 4 && height >= 3; }

EColour ColourAt(EBayer pattern, uint32_t x, uint32_t y) {
  uint32_t redX = 0;
  uint32_t redY = 0;
  RedParity(pattern, redX, redY);
  const bool xMatchesRed = (x & 1) == redX;
  const bool yMatchesRed = (y & 1) == redY;
  if (xMatchesRed && yMatchesRed) {
    return EColour::Red;
  }
  if (!xMatchesRed && !yMatchesRed) {
    return EColour::Blue;
  }
  return EColour::Green;
}

void InterpolateInterior(const uint8_t* source, uint32_t width, uint32_t x, uint32_t y, EBayer pattern, uint8_t* out) {
  const uint64_t stride = width;
  const uint8_t* c = source + y * stride + x;
  const unsigned north = c[-static_cast<int64_t>(stride)];
  const unsigned south = c[stride];
  const unsigned west = c[-1];
  const unsigned east = c[1];
  const EColour own = ColourAt(pattern, x, y);
  Put(out, own, c[0]);
  if (own == EColour::Green) {
    // The two other colours lie on one axis each.
    Put(out, ColourAt(pattern, x + 1, y), (west + east) >> 1);
    Put(out, ColourAt(pattern, x, y + 1), (north + south) >> 1);
    return;
  }
  const unsigned diagonals = c[-static_cast<int64_t>(stride) - 1] + c[-static_cast<int64_t>(stride) + 1] +
                             c[stride - 1] + c[stride + 1];
  Put(out, EColour::Green, (north + south + west + east) >> 2);
  Put(out, own == EColour::Red ? EColour::Blue : EColour::Red, diagonals >> 2);
}

void FillBorders(uint8_t* destination, uint32_t width, uint32_t height) {
  const uint64_t rowBytes = uint64_t{width} * 3;
  const uint32_t lastColumn = LastInteriorColumn(width);
  for (uint32_t y = 1; y + 1 < height; ++y) {
    uint8_t* row = destination + y * rowBytes;
    std::memcpy(row, row + 3, 3);
    for (uint32_t x = lastColumn + 1; x < width; ++x) {
      std::memcpy(row + 3 * x, row + 3 * lastColumn, 3);
    }
  }
  std::memcpy(destination, destination + rowBytes, rowBytes);
  std::memcpy(destination + (height - 1) * rowBytes, destination + (height - 2) * rowBytes, rowBytes);
}

void DemosaicByCells(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern) {
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t cellX = std::min(x & ~1u, width - 2);
      const uint32_t cellY = std::min(y & ~1u, height - 2);
      unsigned red = 0;
      unsigned blue = 0;
      unsigned greenSum = 0;
      for (uint32_t dy = 0; dy < 2; ++dy) {
        for (uint32_t dx = 0; dx < 2; ++dx) {
          const unsigned sample = source[uint64_t{cellY + dy} * width + cellX + dx];
          switch (ColourAt(pattern, cellX + dx, cellY + dy)) {
          case EColour::Red: red = sample; break;
          case EColour::Blue: blue = sample; break;
          case EColour::Green: greenSum += sample; break;
          }
        }
      }
      uint8_t* out = destination + (uint64_t{y} * width + x) * 3;
      const bool ownGreen = ColourAt(pattern, x, y) == EColour::Green;
      out[0] = static_cast<uint8_t>(blue);
      out[1] = static_cast<uint8_t>(ownGreen ? source[uint64_t{y} * width + x] : greenSum >> 1);
      out[2] = static_cast<uint8_t>(red);
    }
  }
}

}  // namespace Detail

namespace Reference {

bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern) {
  if (source == nullptr || destination == nullptr || width < 2 || height < 2) {
    return false;
  }
  if (!Detail::HasInterior(width, height)) {
    Detail::DemosaicByCells(source, destination, width, height, pattern);
    return true;
  }
  const uint32_t lastColumn = Detail::LastInteriorColumn(width);
  for (uint32_t y = 1; y + 1 < height; ++y) {
    for (uint32_t x = 1; x <= lastColumn; ++x) {
      Detail::InterpolateInterior(source, width, x, y, pattern, destination + (uint64_t{y} * width + x) * 3);
    }
  }
  Detail::FillBorders(destination, width, height);
  return true;
}

}  // namespace Reference

bool Demosaic(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EBayer pattern) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::Demosaic(source, destination, width, height, pattern);
  }
#endif
  return Reference::Demosaic(source, destination, width, height, pattern);
}

}  // namespace TALVIR::Pixel

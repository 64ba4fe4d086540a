#include "image/HighBitRgb.h"

#include "image/PixelFormats.h"

namespace TALVIR::Pixel {
namespace {

void FromContainers(const uint8_t* source, uint8_t* destination, uint64_t count, unsigned shift) {
  for (uint64_t i = 0; i < count; ++i) {
    const uint8_t* in = source + 6 * i;
    uint8_t* out = destination + 3 * i;
    for (int c = 0; c < 3; ++c) {
      const unsigned sample = unsigned{in[2 * c]} | (unsigned{in[2 * c + 1]} << 8);
      out[2 - c] = static_cast<uint8_t>(sample >> shift);
    }
  }
}

// Component k of the stream occupies bits [10k, 10k + 10); its top 8 bits start at bit 10k + 2. Only the bytes
// that hold those 8 bits are read, so the last component never reads past the packed data.
uint8_t TopByteOfComponent(const uint8_t* source, uint64_t k) {
  const uint64_t position = 10 * k + 2;
  const uint64_t byte = position / 8;
  const unsigned shift = static_cast<unsigned>(position % 8);
  unsigned word = source[byte];
  if (shift != 0) {
    word |= unsigned{source[byte + 1]} << 8;
  }
  return static_cast<uint8_t>(word >> shift);
}

void FromPacked10(const uint8_t* source, uint8_t* destination, uint64_t count) {
  for (uint64_t i = 0; i < count; ++i) {
    uint8_t* out = destination + 3 * i;
    for (uint64_t c = 0; c < 3; ++c) {
      out[2 - c] = TopByteOfComponent(source, 3 * i + c);
    }
  }
}

}  // namespace

bool HighBitRgbToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height,
                     uint32_t pixelFormat) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  const uint64_t count = uint64_t{width} * height;
  switch (pixelFormat) {
  case PixelFormat::RGB10: FromContainers(source, destination, count, 2); return true;
  case PixelFormat::RGB12: FromContainers(source, destination, count, 4); return true;
  case PixelFormat::RGB10p: FromPacked10(source, destination, count); return true;
  default: return false;
  }
}

}  // namespace TALVIR::Pixel

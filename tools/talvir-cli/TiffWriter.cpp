#include "TiffWriter.h"

#include <cstring>
#include <stdexcept>

namespace TalvirCli {
namespace {

constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;

void Append16(std::vector<uint8_t>& bytes, uint32_t value) {
  bytes.push_back(static_cast<uint8_t>(value & 0xFF));
  bytes.push_back(static_cast<uint8_t>((value >> 8) & 0xFF));
}

void Append32(std::vector<uint8_t>& bytes, uint32_t value) {
  Append16(bytes, value & 0xFFFF);
  Append16(bytes, value >> 16);
}

// One directory entry; a single SHORT sits in the first half of the value field.
void AppendEntry(std::vector<uint8_t>& bytes, uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
  Append16(bytes, tag);
  Append16(bytes, type);
  Append32(bytes, count);
  if (type == kShort && count == 1) {
    Append16(bytes, value);
    Append16(bytes, 0);
  } else {
    Append32(bytes, value);
  }
}

// The picture's rows without padding, colour as R, G, B, 16-bit samples little-endian.
void AppendSamples(std::vector<uint8_t>& bytes, const SPicture& picture) {
  const size_t channels = static_cast<size_t>(picture.channels);
  for (uint32_t y = 0; y < picture.height; ++y) {
    const uint8_t* row = picture.pixels + static_cast<size_t>(y) * picture.stride;
    for (size_t x = 0; x < picture.width; ++x) {
      for (size_t channel = 0; channel < channels; ++channel) {
        const size_t index = x * channels + (channels == 3 ? 2 - channel : channel);  // B, G, R in memory
        if (picture.bitDepth == 16) {
          uint16_t value;
          std::memcpy(&value, row + index * 2, 2);
          Append16(bytes, value);
        } else {
          bytes.push_back(row[index]);
        }
      }
    }
  }
}

}  // namespace

std::vector<uint8_t> CTiffWriter::Encode(const SPicture& picture) {
  const size_t channels = static_cast<size_t>(picture.channels);
  const uint64_t dataBytes = static_cast<uint64_t>(picture.width) * picture.height * channels *
                             static_cast<uint64_t>(picture.bitDepth / 8);
  // Layout: header, pixel data (padded to an even size), the bits-per-sample array for colour, the directory.
  constexpr uint32_t kHeader = 8;
  constexpr uint16_t kEntries = 11;
  const uint64_t bitsAt = kHeader + dataBytes + (dataBytes & 1);
  const uint64_t directoryAt = bitsAt + (channels > 1 ? 2 * channels : 0);
  const uint64_t total = directoryAt + 2 + 12 * kEntries + 4;
  if (total > UINT32_MAX) {
    throw std::runtime_error("the picture is too large for a TIFF file");
  }
  std::vector<uint8_t> bytes;
  bytes.reserve(static_cast<size_t>(total));
  bytes.push_back('I');
  bytes.push_back('I');
  Append16(bytes, 42);
  Append32(bytes, static_cast<uint32_t>(directoryAt));
  AppendSamples(bytes, picture);
  if ((dataBytes & 1) != 0) {
    bytes.push_back(0);
  }
  for (size_t channel = 0; channel < channels && channels > 1; ++channel) {
    Append16(bytes, static_cast<uint32_t>(picture.bitDepth));
  }
  const uint32_t bits = channels > 1 ? static_cast<uint32_t>(bitsAt) : static_cast<uint32_t>(picture.bitDepth);
  Append16(bytes, kEntries);
  // Tags in ascending order, as readers expect.
  AppendEntry(bytes, 256, kLong, 1, picture.width);                        // image width
  AppendEntry(bytes, 257, kLong, 1, picture.height);                       // image length
  AppendEntry(bytes, 258, kShort, static_cast<uint32_t>(channels), bits);  // bits per sample
  AppendEntry(bytes, 259, kShort, 1, 1);                                   // no compression
  AppendEntry(bytes, 262, kShort, 1, channels == 3 ? 2 : 1);               // RGB, or black is zero
  AppendEntry(bytes, 273, kLong, 1, kHeader);                              // strip offset
  AppendEntry(bytes, 274, kShort, 1, 1);                                   // top row, left column first
  AppendEntry(bytes, 277, kShort, 1, static_cast<uint32_t>(channels));     // samples per pixel
  AppendEntry(bytes, 278, kLong, 1, picture.height);                       // rows per strip: all
  AppendEntry(bytes, 279, kLong, 1, static_cast<uint32_t>(dataBytes));     // strip byte count
  AppendEntry(bytes, 284, kShort, 1, 1);                                   // samples of a pixel together
  Append32(bytes, 0);                                                      // no further image
  return bytes;
}

}  // namespace TalvirCli

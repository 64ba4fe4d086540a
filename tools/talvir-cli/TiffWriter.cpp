#include "TiffWriter.h"

#include <cstring>
#include <stdexcept>

namespace TalvirCli {
namespace {

constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;

void Put16(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
  bytes[at] = static_cast<uint8_t>(value & 0xFF);
  bytes[at + 1] = static_cast<uint8_t>((value >> 8) & 0xFF);
}

void Put32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
  Put16(bytes, at, value & 0xFFFF);
  Put16(bytes, at + 2, value >> 16);
}

}  // namespace

std::vector<uint8_t> CTiffWriter::Encode(const SPicture& picture) {
  const size_t bytesPerSample = picture.bitDepth == 16 ? 2 : 1;
  const size_t channels = static_cast<size_t>(picture.channels);
  const size_t rowBytes = static_cast<size_t>(picture.width) * channels * bytesPerSample;
  const uint64_t dataBytes = static_cast<uint64_t>(rowBytes) * picture.height;
  // Layout: header, pixel data (word aligned), the bits-per-sample array for colour, the directory.
  constexpr size_t kHeader = 8;
  constexpr uint16_t kEntries = 11;
  const uint64_t bitsAt = kHeader + dataBytes + (dataBytes & 1);
  const uint64_t directoryAt = bitsAt + (channels > 1 ? 2 * channels : 0);
  const uint64_t total = directoryAt + 2 + 12 * kEntries + 4;
  if (total > UINT32_MAX) {
    throw std::runtime_error("the picture is too large for a TIFF file");
  }
  std::vector<uint8_t> bytes(static_cast<size_t>(total), 0);
  bytes[0] = 'I';
  bytes[1] = 'I';
  Put16(bytes, 2, 42);
  Put32(bytes, 4, static_cast<uint32_t>(directoryAt));
  for (uint32_t y = 0; y < picture.height; ++y) {
    const uint8_t* source = picture.pixels + static_cast<size_t>(y) * picture.stride;
    uint8_t* target = &bytes[kHeader + y * rowBytes];
    for (size_t x = 0; x < picture.width; ++x) {
      for (size_t channel = 0; channel < channels; ++channel) {
        const size_t from = channels == 3 ? 2 - channel : channel;  // B, G, R in memory; R, G, B in the file
        const uint8_t* sample = source + (x * channels + from) * bytesPerSample;
        uint8_t* stored = target + (x * channels + channel) * bytesPerSample;
        if (bytesPerSample == 2) {
          uint16_t value;
          std::memcpy(&value, sample, 2);
          stored[0] = static_cast<uint8_t>(value & 0xFF);
          stored[1] = static_cast<uint8_t>(value >> 8);
        } else {
          stored[0] = sample[0];
        }
      }
    }
  }
  for (size_t channel = 0; channel < channels && channels > 1; ++channel) {
    Put16(bytes, static_cast<size_t>(bitsAt + 2 * channel), static_cast<uint32_t>(picture.bitDepth));
  }
  size_t entry = static_cast<size_t>(directoryAt);
  Put16(bytes, entry, kEntries);
  entry += 2;
  const auto add = [&bytes, &entry](uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    Put16(bytes, entry, tag);
    Put16(bytes, entry + 2, type);
    Put32(bytes, entry + 4, count);
    if (type == kShort && count == 1) {
      Put16(bytes, entry + 8, value);
    } else {
      Put32(bytes, entry + 8, value);
    }
    entry += 12;
  };
  // Tags in ascending order, as readers expect.
  add(256, kLong, 1, picture.width);                 // image width
  add(257, kLong, 1, picture.height);                // image length
  add(258, kShort, static_cast<uint32_t>(channels),  // bits per sample
      channels > 1 ? static_cast<uint32_t>(bitsAt) : static_cast<uint32_t>(picture.bitDepth));
  add(259, kShort, 1, 1);                                // no compression
  add(262, kShort, 1, channels == 3 ? 2 : 1);            // RGB or black is zero
  add(273, kLong, 1, static_cast<uint32_t>(kHeader));    // strip offset
  add(274, kShort, 1, 1);                                // top row first, left column first
  add(277, kShort, 1, static_cast<uint32_t>(channels));  // samples per pixel
  add(278, kLong, 1, picture.height);                    // rows per strip: all
  add(279, kLong, 1, static_cast<uint32_t>(dataBytes));  // strip byte count
  add(284, kShort, 1, 1);                                // samples of a pixel together
  Put32(bytes, entry, 0);                                // no further image
  return bytes;
}

}  // namespace TalvirCli

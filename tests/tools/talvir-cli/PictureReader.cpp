#include "PictureReader.h"

#include <zlib.h>

#include <cstdlib>
#include <map>
#include <stdexcept>

namespace TalvirCli {
namespace {

uint32_t BigEndian32(const std::string& bytes, size_t at) {
  if (at + 4 > bytes.size()) {
    throw std::runtime_error("cut-off file");
  }
  uint32_t value = 0;
  for (size_t index = 0; index < 4; ++index) {
    value = (value << 8) | static_cast<uint8_t>(bytes[at + index]);
  }
  return value;
}

int Paeth(int left, int up, int upLeft) {
  const int estimate = left + up - upLeft;
  const int toLeft = std::abs(estimate - left);
  const int toUp = std::abs(estimate - up);
  const int toUpLeft = std::abs(estimate - upLeft);
  if (toLeft <= toUp && toLeft <= toUpLeft) {
    return left;
  }
  return toUp <= toUpLeft ? up : upLeft;
}

// The samples of rows of big- or little-endian 8- or 16-bit values.
std::vector<uint16_t> Samples(const uint8_t* data, size_t count, int bitDepth, bool bigEndian) {
  std::vector<uint16_t> samples(count);
  for (size_t index = 0; index < count; ++index) {
    if (bitDepth == 8) {
      samples[index] = data[index];
    } else {
      const uint8_t first = data[index * 2];
      const uint8_t second = data[index * 2 + 1];
      samples[index] = static_cast<uint16_t>(bigEndian ? (first << 8) | second : (second << 8) | first);
    }
  }
  return samples;
}

// A TIFF file's numbers in its own byte order.
class CTiffBytes {
public:
  explicit CTiffBytes(const std::string& bytes) : m_bytes(bytes) {
    if (bytes.size() < 8 || (bytes.compare(0, 2, "II") != 0 && bytes.compare(0, 2, "MM") != 0)) {
      throw std::runtime_error("not a TIFF file");
    }
    m_bigEndian = bytes[0] == 'M';
    if (U16(2) != 42) {
      throw std::runtime_error("not a classic TIFF file");
    }
  }
  bool BigEndian() const { return m_bigEndian; }
  uint32_t U16(size_t at) const { return Number(at, 2); }
  uint32_t U32(size_t at) const { return Number(at, 4); }
  // The values of the directory entry at `at` (SHORT or LONG).
  std::vector<uint32_t> Values(size_t at) const {
    const uint32_t type = U16(at + 2);
    const uint32_t count = U32(at + 4);
    if ((type != 3 && type != 4) || count == 0 || count > m_bytes.size()) {
      throw std::runtime_error("unexpected TIFF field type or count");
    }
    const size_t size = type == 3 ? 2 : 4;
    const size_t start = size * count <= 4 ? at + 8 : U32(at + 8);
    std::vector<uint32_t> values;
    for (size_t index = 0; index < count; ++index) {
      values.push_back(Number(start + index * size, size));
    }
    return values;
  }

private:
  uint32_t Number(size_t at, size_t size) const {
    if (at + size > m_bytes.size()) {
      throw std::runtime_error("cut-off TIFF file");
    }
    uint32_t value = 0;
    for (size_t index = 0; index < size; ++index) {
      const size_t from = m_bigEndian ? index : size - 1 - index;
      value = (value << 8) | static_cast<uint8_t>(m_bytes[at + from]);
    }
    return value;
  }

  const std::string& m_bytes;
  bool m_bigEndian = false;
};

}  // namespace

SDecodedPicture CPictureReader::ReadPng(const std::string& bytes) {
  if (bytes.compare(0, 8, std::string("\x89PNG\r\n\x1a\n", 8)) != 0) {
    throw std::runtime_error("no PNG signature");
  }
  SDecodedPicture picture;
  std::string compressed;
  bool header = false;
  bool end = false;
  for (size_t at = 8; !end;) {
    const uint32_t length = BigEndian32(bytes, at);
    if (at + 12 + static_cast<size_t>(length) > bytes.size()) {
      throw std::runtime_error("cut-off PNG chunk");
    }
    const std::string type = bytes.substr(at + 4, 4);
    const std::string data = bytes.substr(at + 8, length);
    const uLong crc = crc32(0L, reinterpret_cast<const Bytef*>(bytes.data() + at + 4), length + 4);
    if (crc != BigEndian32(bytes, at + 8 + length)) {
      throw std::runtime_error("bad CRC in PNG chunk " + type);
    }
    if (type == "IHDR") {
      if (length != 13 || data[10] != 0 || data[11] != 0 || data[12] != 0) {
        throw std::runtime_error("unexpected PNG header (compression, filter or interlace)");
      }
      picture.width = BigEndian32(data, 0);
      picture.height = BigEndian32(data, 4);
      picture.bitDepth = static_cast<uint8_t>(data[8]);
      const int colourType = static_cast<uint8_t>(data[9]);
      picture.channels = colourType == 0 ? 1 : colourType == 2 ? 3 : 0;
      if (picture.channels == 0 || (picture.bitDepth != 8 && picture.bitDepth != 16)) {
        throw std::runtime_error("unexpected PNG colour type or bit depth");
      }
      header = true;
    } else if (type == "sBIT") {
      picture.significantBits = static_cast<uint8_t>(data[0]);
    } else if (type == "IDAT") {
      compressed += data;
    } else if (type == "IEND") {
      end = true;
    }
    at += 12 + static_cast<size_t>(length);
  }
  if (!header) {
    throw std::runtime_error("no PNG header");
  }
  const size_t pixelBytes = static_cast<size_t>(picture.channels * picture.bitDepth / 8);
  const size_t rowBytes = picture.width * pixelBytes;
  std::vector<uint8_t> filtered(picture.height * (rowBytes + 1));
  uLongf size = static_cast<uLongf>(filtered.size());
  if (uncompress(filtered.data(), &size, reinterpret_cast<const Bytef*>(compressed.data()),
                 static_cast<uLong>(compressed.size())) != Z_OK ||
      size != filtered.size()) {
    throw std::runtime_error("PNG image data of the wrong size or not inflatable");
  }
  std::vector<uint8_t> rows(picture.height * rowBytes);
  for (size_t y = 0; y < picture.height; ++y) {
    const uint8_t filter = filtered[y * (rowBytes + 1)];
    const uint8_t* in = &filtered[y * (rowBytes + 1) + 1];
    uint8_t* out = &rows[y * rowBytes];
    const uint8_t* up = y > 0 ? out - rowBytes : nullptr;
    for (size_t x = 0; x < rowBytes; ++x) {
      const int left = x >= pixelBytes ? out[x - pixelBytes] : 0;
      const int above = up != nullptr ? up[x] : 0;
      const int aboveLeft = up != nullptr && x >= pixelBytes ? up[x - pixelBytes] : 0;
      int predictor = 0;
      switch (filter) {
      case 0: predictor = 0; break;
      case 1: predictor = left; break;
      case 2: predictor = above; break;
      case 3: predictor = (left + above) / 2; break;
      case 4: predictor = Paeth(left, above, aboveLeft); break;
      default: throw std::runtime_error("unknown PNG filter " + std::to_string(filter));
      }
      out[x] = static_cast<uint8_t>(in[x] + predictor);
    }
  }
  picture.samples = Samples(rows.data(), picture.height * picture.width * picture.channels, picture.bitDepth, true);
  return picture;
}

SDecodedPicture CPictureReader::ReadTiff(const std::string& bytes) {
  const CTiffBytes file(bytes);
  const size_t directory = file.U32(4);
  const uint32_t entries = file.U16(directory);
  std::map<uint32_t, std::vector<uint32_t>> fields;
  for (uint32_t index = 0; index < entries; ++index) {
    const size_t entry = directory + 2 + 12 * static_cast<size_t>(index);
    const uint32_t tag = file.U16(entry);
    if (tag == 256 || tag == 257 || tag == 258 || tag == 259 || tag == 262 || tag == 273 || tag == 274 || tag == 277 ||
        tag == 278 || tag == 279 || tag == 284) {
      fields[tag] = file.Values(entry);
    }
  }
  const auto one = [&fields](uint32_t tag, uint32_t absent) {
    const auto found = fields.find(tag);
    return found == fields.end() ? absent : found->second.at(0);
  };
  SDecodedPicture picture;
  picture.width = one(256, 0);
  picture.height = one(257, 0);
  picture.channels = static_cast<int>(one(277, 1));
  picture.bitDepth = static_cast<int>(one(258, 1));
  const uint32_t photometric = one(262, 99);
  if (one(259, 1) != 1 || one(284, 1) != 1 || one(274, 1) != 1) {
    throw std::runtime_error("compressed, planar or flipped TIFF");
  }
  if ((picture.channels == 1 && photometric != 1) || (picture.channels == 3 && photometric != 2) ||
      (picture.channels != 1 && picture.channels != 3)) {
    throw std::runtime_error("unexpected TIFF photometric interpretation for its samples per pixel");
  }
  for (uint32_t bits : fields[258]) {
    if (static_cast<int>(bits) != picture.bitDepth || (bits != 8 && bits != 16)) {
      throw std::runtime_error("unexpected TIFF bits per sample");
    }
  }
  const std::vector<uint32_t>& offsets = fields[273];
  const std::vector<uint32_t>& counts = fields[279];
  if (offsets.empty() || offsets.size() != counts.size()) {
    throw std::runtime_error("TIFF strips without offsets or sizes");
  }
  std::string data;
  for (size_t strip = 0; strip < offsets.size(); ++strip) {
    if (static_cast<size_t>(offsets[strip]) + counts[strip] > bytes.size()) {
      throw std::runtime_error("TIFF strip past the end of the file");
    }
    data += bytes.substr(offsets[strip], counts[strip]);
  }
  const size_t count = static_cast<size_t>(picture.width) * picture.height * picture.channels;
  if (data.size() != count * static_cast<size_t>(picture.bitDepth / 8)) {
    throw std::runtime_error("TIFF image data of the wrong size");
  }
  picture.samples = Samples(reinterpret_cast<const uint8_t*>(data.data()), count, picture.bitDepth, file.BigEndian());
  return picture;
}

}  // namespace TalvirCli

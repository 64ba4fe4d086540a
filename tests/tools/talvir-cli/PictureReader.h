#pragma once
// Reads back the pictures talvir-cli writes, independently of the encoders that wrote them: PNG (not interlaced) and
// uncompressed TIFF (contiguous samples, any strips, either byte order). Throws std::runtime_error on anything else.
#include <cstdint>
#include <string>
#include <vector>

namespace TalvirCli {

struct SDecodedPicture {
  uint32_t width = 0;
  uint32_t height = 0;
  int channels = 0;               // 1 (grey) or 3 (R, G, B)
  int bitDepth = 0;               // 8 or 16
  int significantBits = 0;        // from a PNG sBIT chunk; 0 without one
  std::vector<uint16_t> samples;  // row by row, R, G, B for colour
};

class CPictureReader {
public:
  static SDecodedPicture ReadPng(const std::string& bytes);
  static SDecodedPicture ReadTiff(const std::string& bytes);
};

}  // namespace TalvirCli

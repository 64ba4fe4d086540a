#pragma once
// Encoders for PNG (libpng) and TIFF (libtiff) from a plain pixel buffer.
#include <cstdint>
#include <string>

namespace TalvirCli {

struct SPicture {
  const uint8_t* pixels = nullptr;  // rows of `stride` bytes
  uint32_t width = 0;
  uint32_t height = 0;
  size_t stride = 0;
  int channels = 1;         // 1 (grey) or 3 (colour, in B, G, R order)
  int bitDepth = 8;         // 8, or 16 (native-endian 16-bit samples)
  int significantBits = 8;  // for 16-bit data: how many bits the camera delivered (recorded in the PNG)
};

class CPictureFile {
public:
  // Each throws CCommandError naming the file and the reason.
  static void WritePng(const std::string& path, const SPicture& picture);
  static void WriteTiff(const std::string& path, const SPicture& picture);
};

}  // namespace TalvirCli

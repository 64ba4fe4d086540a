#pragma once
// PNG and TIFF files from a plain pixel buffer, written with the operating system's encoders (see PictureCodec.h).
#include <cstddef>
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
  int significantBits = 8;  // for 16-bit grey data: how many bits the camera delivered (recorded in the PNG)
};

class CPictureFile {
public:
  // Each throws CCommandError naming the file and the reason. The picture is encoded before the file is opened, so a
  // picture that cannot be encoded leaves an existing file as it was; a file that could not be written whole is removed.
  static void WritePng(const std::string& path, const SPicture& picture);
  static void WriteTiff(const std::string& path, const SPicture& picture);

private:
  static void Write(const std::string& path, const SPicture& picture, bool png);
};

}  // namespace TalvirCli

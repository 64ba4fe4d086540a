#pragma once
// The operating system's picture encoders behind CPictureFile: libpng and libtiff on POSIX systems, the Windows Imaging
// Component on Windows. Each turns a checked picture into the complete bytes of one file; CPictureFile writes them.
#include "PictureFile.h"

#include <cstdint>
#include <vector>

namespace TalvirCli {

class CPictureCodec {
public:
  // Throws std::runtime_error with the reason (the caller names the file). The picture is already checked: 1 or 3
  // channels, 8 or 16 bits, rows of at least width * channels samples.
  static std::vector<uint8_t> EncodePng(const SPicture& picture);
  // Uncompressed, one contiguous plane, top row first.
  static std::vector<uint8_t> EncodeTiff(const SPicture& picture);
};

}  // namespace TalvirCli

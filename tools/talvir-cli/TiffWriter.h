#pragma once
// A minimal TIFF encoder: little-endian, uncompressed, one strip, contiguous samples. For the pictures a system's own
// TIFF encoder cannot store unchanged (16-bit grey under some Windows Imaging Component versions).
#include "PictureFile.h"

#include <cstdint>
#include <vector>

namespace TalvirCli {

class CTiffWriter {
public:
  // The whole file; colour is stored R, G, B. Throws std::runtime_error when the picture does not fit in 4 GiB.
  static std::vector<uint8_t> Encode(const SPicture& picture);
};

}  // namespace TalvirCli

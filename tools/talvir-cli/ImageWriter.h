#pragma once
// Saves one grabbed image: PNG or TIFF (8-bit Mono8 / BGR8 as the library converts it; 16-bit for unpacked Mono10,
// Mono12, Mono14 and Mono16 data, scaled to the full 16-bit range), or the raw buffer with a small JSON side file
// (FILE.json: width, height, pixel format, frame id, timestamp, line pitch, size).
#include <talvir/IImage.h>

#include <cstdint>
#include <string>

namespace TalvirCli {

class CImageWriter {
public:
  enum class EFormat { Png, Tiff, Raw };
  // The format named by the file's extension (.png, .tif/.tiff, .raw/.bin, any case); CUsageError for others.
  static EFormat FormatOf(const std::string& path);
  // Writes the image; CCommandError saying what and why when it cannot.
  static void Save(const std::string& path, TALVIR::IImage& image);
  // Significant bits of an unpacked 16-bit monochrome pixel format (10, 12, 14 or 16); 0 for any other format.
  static int HighBitDepth(uint64_t pixelFormat);

private:
  static void SavePicture(const std::string& path, EFormat format, TALVIR::IImage& image);
  static void SaveRaw(const std::string& path, TALVIR::IImage& image);
};

}  // namespace TalvirCli

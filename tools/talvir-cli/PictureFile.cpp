#include "PictureFile.h"

#include "Command.h"

#include <png.h>
#include <tiffio.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace TalvirCli {
namespace {

struct SFileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// One output row in file order: colour as R, G, B; 16-bit samples in the byte order the format wants.
std::vector<uint8_t> Row(const SPicture& picture, uint32_t y, bool bigEndian16) {
  const uint8_t* source = picture.pixels + static_cast<size_t>(y) * picture.stride;
  const size_t bytesPerSample = picture.bitDepth == 16 ? 2 : 1;
  const size_t samples = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.channels);
  std::vector<uint8_t> row(source, source + samples * bytesPerSample);
  if (picture.channels == 3) {
    for (size_t x = 0; x < picture.width; ++x) {
      std::swap(row[x * 3], row[x * 3 + 2]);
    }
  }
  if (bytesPerSample == 2 && bigEndian16) {
    for (size_t index = 0; index < samples; ++index) {
      uint16_t value;
      std::memcpy(&value, source + index * 2, 2);
      row[index * 2] = static_cast<uint8_t>(value >> 8);
      row[index * 2 + 1] = static_cast<uint8_t>(value & 0xFF);
    }
  }
  return row;
}

[[noreturn]] void PngError(png_structp png, png_const_charp message) {
  *static_cast<std::string*>(png_get_error_ptr(png)) = message;
  png_longjmp(png, 1);
}

void PngWarning(png_structp, png_const_charp) {}

}  // namespace

void CPictureFile::WritePng(const std::string& path, const SPicture& picture) {
  std::unique_ptr<std::FILE, SFileCloser> file(std::fopen(path.c_str(), "wb"));
  if (!file) {
    throw CCommandError("cannot write " + path + ": " + std::strerror(errno));
  }
  std::string error;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, PngError, PngWarning);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  if (info == nullptr) {
    png_destroy_write_struct(&png, nullptr);
    throw CCommandError("cannot write " + path + ": out of memory");
  }
  // Rows are prepared before the jump point so that no C++ object lives across a longjmp.
  std::vector<std::vector<uint8_t>> rows;
  for (uint32_t y = 0; y < picture.height; ++y) {
    rows.push_back(Row(picture, y, true));
  }
  std::vector<png_bytep> pointers;
  for (auto& row : rows) {
    pointers.push_back(row.data());
  }
  if (setjmp(png_jmpbuf(png)) == 0) {
    png_init_io(png, file.get());
    png_set_IHDR(png, info, picture.width, picture.height, picture.bitDepth,
                 picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (picture.bitDepth == 16 && picture.significantBits < 16) {
      png_color_8 bits{};
      bits.gray = static_cast<png_byte>(picture.significantBits);
      png_set_sBIT(png, info, &bits);
    }
    png_set_compression_level(png, 3);  // fast: grabbing programs save often
    png_write_info(png, info);
    png_write_image(png, pointers.data());
    png_write_end(png, info);
  }
  png_destroy_write_struct(&png, &info);
  const bool closed = std::fclose(file.release()) == 0;
  if (!error.empty() || !closed) {
    throw CCommandError("cannot write " + path + ": " + (error.empty() ? std::strerror(errno) : error));
  }
}

void CPictureFile::WriteTiff(const std::string& path, const SPicture& picture) {
  // libtiff reports through a process-wide handler; silence it and report the failing step instead.
  TIFFSetErrorHandler(nullptr);
  TIFFSetWarningHandler(nullptr);
  errno = 0;
  TIFF* tiff = TIFFOpen(path.c_str(), "w");
  if (tiff == nullptr) {
    throw CCommandError("cannot write " + path + ": " + (errno != 0 ? std::strerror(errno) : "cannot create it"));
  }
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, picture.channels);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, picture.bitDepth);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, picture.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
  bool written = true;
  for (uint32_t y = 0; y < picture.height && written; ++y) {
    std::vector<uint8_t> row = Row(picture, y, false);  // TIFF files say their byte order; ours is native
    written = TIFFWriteScanline(tiff, row.data(), y, 0) == 1;
  }
  TIFFClose(tiff);
  if (!written) {
    throw CCommandError("cannot write " + path + ": writing the image data failed (disk full?)");
  }
}

}  // namespace TalvirCli

// libpng and libtiff, both writing into memory through their output callbacks.
#include "PictureCodec.h"

#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>

namespace TalvirCli {
namespace {

// One output row in file order: colour as R, G, B; 16-bit samples in the byte order the format wants.
std::vector<uint8_t> Row(const SPicture& picture, uint32_t y, bool bigEndian16) {
  const uint8_t* source = picture.pixels + static_cast<size_t>(y) * picture.stride;
  const size_t bytesPerSample = picture.bitDepth == 16 ? 2 : 1;
  const size_t samples = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.channels);
  std::vector<uint8_t> row(source, source + samples * bytesPerSample);
  if (picture.channels == 3) {
    for (size_t x = 0; x < picture.width; ++x) {
      for (size_t byte = 0; byte < bytesPerSample; ++byte) {
        std::swap(row[(x * 3) * bytesPerSample + byte], row[(x * 3 + 2) * bytesPerSample + byte]);
      }
    }
  }
  if (bytesPerSample == 2 && bigEndian16) {
    for (size_t index = 0; index < samples; ++index) {
      uint16_t value;
      std::memcpy(&value, &row[index * 2], 2);
      row[index * 2] = static_cast<uint8_t>(value >> 8);
      row[index * 2 + 1] = static_cast<uint8_t>(value & 0xFF);
    }
  }
  return row;
}

struct SPngOutput {
  std::vector<uint8_t> bytes;
  std::string error;
};

[[noreturn]] void PngError(png_structp png, png_const_charp message) {
  static_cast<SPngOutput*>(png_get_error_ptr(png))->error = message;
  png_longjmp(png, 1);
}

void PngWarning(png_structp, png_const_charp) {}

void PngWrite(png_structp png, png_bytep data, png_size_t size) {
  std::vector<uint8_t>& bytes = static_cast<SPngOutput*>(png_get_io_ptr(png))->bytes;
  try {
    bytes.insert(bytes.end(), data, data + size);
  } catch (const std::bad_alloc&) {
    png_error(png, "out of memory");
  }
}

void PngFlush(png_structp) {}

// A growing memory file for libtiff, which seeks back to patch offsets.
struct STiffOutput {
  std::vector<uint8_t> bytes;
  size_t position = 0;
  bool failed = false;
};

tmsize_t TiffRead(thandle_t, void*, tmsize_t) { return 0; }

tmsize_t TiffWrite(thandle_t handle, void* data, tmsize_t size) {
  STiffOutput& output = *static_cast<STiffOutput*>(handle);
  if (size < 0) {
    return -1;
  }
  try {
    const size_t end = output.position + static_cast<size_t>(size);
    if (end > output.bytes.size()) {
      output.bytes.resize(end);
    }
  } catch (const std::bad_alloc&) {
    output.failed = true;
    return -1;
  }
  if (size > 0) {
    std::memcpy(&output.bytes[output.position], data, static_cast<size_t>(size));
  }
  output.position += static_cast<size_t>(size);
  return size;
}

toff_t TiffSeek(thandle_t handle, toff_t offset, int whence) {
  STiffOutput& output = *static_cast<STiffOutput*>(handle);
  const toff_t base = whence == SEEK_CUR ? output.position : whence == SEEK_END ? output.bytes.size() : 0;
  output.position = static_cast<size_t>(base + offset);
  return output.position;
}

int TiffClose(thandle_t) { return 0; }

toff_t TiffSize(thandle_t handle) { return static_cast<STiffOutput*>(handle)->bytes.size(); }

int TiffMap(thandle_t, void**, toff_t*) { return 0; }

void TiffUnmap(thandle_t, void*, toff_t) {}

}  // namespace

std::vector<uint8_t> CPictureCodec::EncodePng(const SPicture& picture) {
  SPngOutput output;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &output, PngError, PngWarning);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  if (info == nullptr) {
    png_destroy_write_struct(&png, nullptr);
    throw std::bad_alloc();
  }
  // Rows are prepared before the jump point so that no C++ object is created or destroyed across a longjmp.
  std::vector<std::vector<uint8_t>> rows;
  std::vector<png_bytep> pointers;
  try {
    for (uint32_t y = 0; y < picture.height; ++y) {
      rows.push_back(Row(picture, y, true));
    }
    for (auto& row : rows) {
      pointers.push_back(row.data());
    }
  } catch (...) {
    png_destroy_write_struct(&png, &info);
    throw;
  }
  if (setjmp(png_jmpbuf(png)) == 0) {
    png_set_write_fn(png, &output, PngWrite, PngFlush);
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
  if (!output.error.empty()) {
    throw std::runtime_error(output.error);
  }
  return std::move(output.bytes);
}

std::vector<uint8_t> CPictureCodec::EncodeTiff(const SPicture& picture) {
  // libtiff reports through a process-wide handler; silence it and report the failing step instead.
  TIFFSetErrorHandler(nullptr);
  TIFFSetWarningHandler(nullptr);
  STiffOutput output;
  TIFF* tiff = TIFFClientOpen("picture", "w", &output, TiffRead, TiffWrite, TiffSeek, TiffClose, TiffSize, TiffMap,
                              TiffUnmap);
  if (tiff == nullptr) {
    throw std::runtime_error("cannot start the TIFF encoder");
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
  try {
    for (uint32_t y = 0; y < picture.height && written; ++y) {
      std::vector<uint8_t> row = Row(picture, y, false);  // TIFF files say their byte order; ours is native
      written = TIFFWriteScanline(tiff, row.data(), y, 0) == 1;
    }
    written = TIFFWriteDirectory(tiff) == 1 && written;
  } catch (...) {
    TIFFClose(tiff);
    throw;
  }
  TIFFClose(tiff);
  if (!written || output.failed) {
    throw std::runtime_error(output.failed ? "out of memory" : "encoding the image data failed");
  }
  return std::move(output.bytes);
}

}  // namespace TalvirCli

#include "ImageWriter.h"

#include "Command.h"
#include "HostSystem.h"
#include "PictureFile.h"

#include <talvir/Talvir.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

namespace TalvirCli {
namespace {

constexpr uint32_t kBGR8 = 0x02180015;

std::string Extension(const std::string& path) {
  const size_t dot = path.find_last_of('.');
  const size_t slash = path.find_last_of(CHostSystem::PathSeparators());
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) {
    return std::string();
  }
  std::string extension = path.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

std::string Hex(uint64_t value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
  return text;
}

}  // namespace

CImageWriter::EFormat CImageWriter::FormatOf(const std::string& path) {
  const std::string extension = Extension(path);
  if (extension == "png") {
    return EFormat::Png;
  }
  if (extension == "tif" || extension == "tiff") {
    return EFormat::Tiff;
  }
  if (extension == "raw" || extension == "bin") {
    return EFormat::Raw;
  }
  throw CUsageError("cannot save '" + path + "': name the file .png, .tif, .tiff or .raw");
}

int CImageWriter::HighBitDepth(uint64_t pixelFormat) {
  switch (pixelFormat) {
  case 0x01100003: return 10;  // Mono10
  case 0x01100005: return 12;  // Mono12
  case 0x01100025: return 14;  // Mono14
  case 0x01100007: return 16;  // Mono16
  default: return 0;
  }
}

void CImageWriter::Save(const std::string& path, TALVIR::IImage& image) {
  const EFormat format = FormatOf(path);
  if (format == EFormat::Raw) {
    SaveRaw(path, image);
  } else {
    SavePicture(path, format, image);
  }
}

void CImageWriter::SavePicture(const std::string& path, EFormat format, TALVIR::IImage& image) {
  if (!image.IsImagePresent() || image.GetWidth() == 0 || image.GetHeight() == 0) {
    throw CCommandError("cannot save " + path + ": the last frame holds no image");
  }
  if (image.GetWidth() > UINT32_MAX || image.GetHeight() > UINT32_MAX) {
    throw CCommandError("cannot save " + path + ": the image is too large for the file format");
  }
  SPicture picture;
  picture.width = static_cast<uint32_t>(image.GetWidth());
  picture.height = static_cast<uint32_t>(image.GetHeight());
  std::vector<uint8_t> scaled;
  const int bits = HighBitDepth(image.GetPixelFormat());
  if (bits != 0) {
    // Unpacked 10- to 16-bit data: keep every bit, shifted to the top of 16 so that viewers show it full range.
    const size_t pitch = image.GetLinePitch() + image.GetPaddingX();
    const size_t needed = image.GetImageOffset() + pitch * (picture.height - 1) + 2 * picture.width;
    if (image.GetBuffer() == nullptr || needed > image.GetBufferSize()) {
      throw CCommandError("cannot save " + path + ": the image is larger than its buffer");
    }
    scaled.resize(static_cast<size_t>(picture.width) * picture.height * 2);
    for (uint32_t y = 0; y < picture.height; ++y) {
      const uint8_t* row = image.GetBuffer() + image.GetImageOffset() + y * pitch;
      for (uint32_t x = 0; x < picture.width; ++x) {
        uint16_t value;
        std::memcpy(&value, row + 2 * x, 2);
        value = static_cast<uint16_t>(value << (16 - bits));
        std::memcpy(&scaled[(static_cast<size_t>(y) * picture.width + x) * 2], &value, 2);
      }
    }
    picture.pixels = scaled.data();
    picture.stride = static_cast<size_t>(picture.width) * 2;
    picture.bitDepth = 16;
    picture.significantBits = bits;
  } else {
    const uint32_t converted = TALVIR::ConvertedPixelFormat(static_cast<uint32_t>(image.GetPixelFormat()));
    const uint8_t* pixels = converted != 0 ? image.GetConvertedImage() : nullptr;
    if (pixels == nullptr) {
      throw CCommandError("cannot save " + path + ": the library cannot convert pixel format " +
                          Hex(image.GetPixelFormat()) + (image.IsComplete() ? "" : " of an incomplete image") +
                          " (save it .raw instead)");
    }
    picture.pixels = pixels;
    picture.channels = converted == kBGR8 ? 3 : 1;
    picture.stride = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.channels);
  }
  if (format == EFormat::Png) {
    CPictureFile::WritePng(path, picture);
  } else {
    CPictureFile::WriteTiff(path, picture);
  }
}

void CImageWriter::SaveRaw(const std::string& path, TALVIR::IImage& image) {
  const uint64_t offset = image.GetImageOffset();
  const uint64_t filled = image.GetFilledSize() != 0 ? image.GetFilledSize() : image.GetBufferSize();
  const uint64_t end = std::min(filled, image.GetBufferSize());
  if (image.GetBuffer() == nullptr || offset > end) {
    throw CCommandError("cannot save " + path + ": the frame has no data");
  }
  const auto write = [](const std::string& file, const char* data, size_t size) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (out) {
      out.write(data, static_cast<std::streamsize>(size));
      out.close();
    }
    if (!out) {
      throw CCommandError("cannot write " + file + ": " + (errno != 0 ? std::strerror(errno) : "write failed"));
    }
  };
  errno = 0;
  write(path, reinterpret_cast<const char*>(image.GetBuffer() + offset), static_cast<size_t>(end - offset));
  const nlohmann::ordered_json side{{"width", image.GetWidth()},
                                    {"height", image.GetHeight()},
                                    {"pixelFormat", Hex(image.GetPixelFormat())},
                                    {"frameId", image.GetFrameId()},
                                    {"timestamp", image.GetTimestamp()},
                                    {"linePitch", image.GetLinePitch()},
                                    {"paddingX", image.GetPaddingX()},
                                    {"bytes", end - offset},
                                    {"complete", image.IsComplete()}};
  const std::string text = side.dump(2) + "\n";
  write(path + ".json", text.data(), text.size());
}

}  // namespace TalvirCli

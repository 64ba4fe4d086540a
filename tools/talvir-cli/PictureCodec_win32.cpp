// The Windows Imaging Component encodes into a memory stream; the PNG encoder cannot record significant bits, so an
// sBIT chunk is added after IHDR here, as libpng writes it on other systems.
#include "PictureCodec.h"

#include "TiffWriter.h"

#ifndef NOMINMAX  // libstdc++ on MinGW defines it already
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <objbase.h>
#include <wincodec.h>
#include <zlib.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>

namespace TalvirCli {
namespace {

// Owns one COM interface pointer.
template <typename T>
class CComRef {
public:
  CComRef() = default;
  CComRef(const CComRef&) = delete;
  CComRef& operator=(const CComRef&) = delete;
  ~CComRef() {
    if (m_pointer != nullptr) {
      m_pointer->Release();
    }
  }
  T* operator->() const { return m_pointer; }
  T* Get() const { return m_pointer; }
  T** Out() { return &m_pointer; }

private:
  T* m_pointer = nullptr;
};

// COM for this thread while encoding; a thread that already runs COM in another model is used as it is.
class CComScope {
public:
  CComScope() : m_result(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
  CComScope(const CComScope&) = delete;
  CComScope& operator=(const CComScope&) = delete;
  ~CComScope() {
    if (SUCCEEDED(m_result)) {
      CoUninitialize();
    }
  }

private:
  HRESULT m_result;
};

// The encoder offered another pixel format than the picture's: it would change the samples.
class CUnsupportedFormat : public std::runtime_error {
public:
  CUnsupportedFormat() : std::runtime_error("the encoder cannot store this pixel format unchanged") {}
};

std::string HexResult(HRESULT result) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lx", static_cast<unsigned long>(result));
  return text;
}

void Check(HRESULT result, const char* step) {
  if (FAILED(result)) {
    throw std::runtime_error(std::string(step) + " failed (Windows Imaging Component error " + HexResult(result) + ")");
  }
}

GUID PixelFormat(const SPicture& picture) {
  if (picture.channels == 3) {
    return picture.bitDepth == 16 ? GUID_WICPixelFormat48bppRGB : GUID_WICPixelFormat24bppBGR;
  }
  return picture.bitDepth == 16 ? GUID_WICPixelFormat16bppGray : GUID_WICPixelFormat8bppGray;
}

// The samples as the encoder takes them: WIC's 48-bit colour is in R, G, B order, ours is B, G, R; `swap16` turns 16-bit
// samples into big-endian ones.
std::vector<uint8_t> Samples(const SPicture& picture, bool swap16, UINT& stride) {
  const size_t bytesPerSample = picture.bitDepth == 16 ? 2 : 1;
  const size_t rowBytes = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.channels) * bytesPerSample;
  std::vector<uint8_t> samples(rowBytes * picture.height);
  for (uint32_t y = 0; y < picture.height; ++y) {
    std::memcpy(&samples[y * rowBytes], picture.pixels + static_cast<size_t>(y) * picture.stride, rowBytes);
  }
  if (picture.channels == 3 && bytesPerSample == 2) {
    for (size_t pixel = 0; pixel < samples.size(); pixel += 6) {
      std::swap(samples[pixel], samples[pixel + 4]);
      std::swap(samples[pixel + 1], samples[pixel + 5]);
    }
  }
  if (swap16 && bytesPerSample == 2) {
    for (size_t sample = 0; sample < samples.size(); sample += 2) {
      std::swap(samples[sample], samples[sample + 1]);
    }
  }
  if (rowBytes > UINT32_MAX / 2 || samples.size() > UINT32_MAX) {
    throw std::runtime_error("the image is too large for the Windows Imaging Component");
  }
  stride = static_cast<UINT>(rowBytes);
  return samples;
}

std::vector<uint8_t> Encode(const SPicture& picture, const GUID& container, bool swap16) {
  CComScope com;
  CComRef<IWICImagingFactory> factory;
  Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                         reinterpret_cast<void**>(factory.Out())),
        "starting the imaging component");
  CComRef<IStream> stream;
  Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()), "making a memory stream");
  CComRef<IWICBitmapEncoder> encoder;
  Check(factory->CreateEncoder(container, nullptr, encoder.Out()), "finding the encoder");
  Check(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), "starting the encoder");
  CComRef<IWICBitmapFrameEncode> frame;
  CComRef<IPropertyBag2> options;
  Check(encoder->CreateNewFrame(frame.Out(), options.Out()), "adding the image");
  if (container == GUID_ContainerFormatTiff && options.Get() != nullptr) {
    // Uncompressed, like the files written on other systems.
    PROPBAG2 option{};
    option.pstrName = const_cast<LPOLESTR>(L"TiffCompressionMethod");
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_UI1;
    value.bVal = WICTiffCompressionNone;
    Check(options->Write(1, &option, &value), "choosing no compression");
  }
  Check(frame->Initialize(options.Get()), "starting the image");
  Check(frame->SetSize(picture.width, picture.height), "setting the image size");
  GUID format = PixelFormat(picture);
  Check(frame->SetPixelFormat(&format), "setting the pixel format");
  if (format != PixelFormat(picture)) {
    throw CUnsupportedFormat();
  }
  UINT stride = 0;
  std::vector<uint8_t> samples = Samples(picture, swap16, stride);
  Check(frame->WritePixels(picture.height, stride, static_cast<UINT>(samples.size()), samples.data()),
        "encoding the pixels");
  Check(frame->Commit(), "finishing the image");
  Check(encoder->Commit(), "finishing the file");
  STATSTG status{};
  Check(stream->Stat(&status, STATFLAG_NONAME), "measuring the file");
  if (status.cbSize.QuadPart > SIZE_MAX) {
    throw std::runtime_error("the encoded file is too large");
  }
  std::vector<uint8_t> bytes(static_cast<size_t>(status.cbSize.QuadPart));
  LARGE_INTEGER start{};
  Check(stream->Seek(start, STREAM_SEEK_SET, nullptr), "reading the file back");
  ULONG read = 0;
  Check(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read), "reading the file back");
  if (read != bytes.size()) {
    throw std::runtime_error("reading the encoded file back from memory came up short");
  }
  return bytes;
}

uint32_t BigEndian32(const std::vector<uint8_t>& bytes, size_t at) {
  return static_cast<uint32_t>(bytes[at]) << 24 | static_cast<uint32_t>(bytes[at + 1]) << 16 |
         static_cast<uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

// The first `size` bytes of a PNG file's inflated image data.
std::vector<uint8_t> ImageData(const std::vector<uint8_t>& png, size_t size) {
  std::vector<uint8_t> compressed;
  for (size_t at = 8; at + 12 <= png.size();) {
    const size_t length = BigEndian32(png, at);
    if (length > png.size() - at - 12) {
      break;
    }
    if (std::memcmp(&png[at + 4], "IDAT", 4) == 0) {
      compressed.insert(compressed.end(), png.begin() + static_cast<std::ptrdiff_t>(at + 8),
                        png.begin() + static_cast<std::ptrdiff_t>(at + 8 + length));
    }
    at += 12 + length;
  }
  std::vector<uint8_t> data(size);
  uLongf inflated = static_cast<uLongf>(size);
  if (compressed.empty() ||
      uncompress(data.data(), &inflated, compressed.data(), static_cast<uLong>(compressed.size())) != Z_OK ||
      inflated != size) {
    throw std::runtime_error("the PNG encoder wrote image data that does not inflate");
  }
  return data;
}

// Whether the PNG encoder copies 16-bit samples in memory order, so that they must be handed over big-endian as PNG
// stores them, rather than reading them as native numbers. Component versions differ (Wine's copies); one pixel of
// 0x0201 tells, once: the first pixel of the first row is stored unchanged by every PNG filter.
bool PngEncoderCopies16BitBytes() {
  static const bool copies = [] {
    const uint16_t value = 0x0201;
    SPicture probe;
    probe.pixels = reinterpret_cast<const uint8_t*>(&value);
    probe.width = 1;
    probe.height = 1;
    probe.stride = 2;
    probe.bitDepth = 16;
    probe.significantBits = 16;
    const std::vector<uint8_t> row = ImageData(Encode(probe, GUID_ContainerFormatPng, false), 3);
    return row[1] == 0x01 && row[2] == 0x02;
  }();
  return copies;
}

void PutBigEndian32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
  for (size_t index = 0; index < 4; ++index) {
    bytes[at + index] = static_cast<uint8_t>(value >> (24 - 8 * index));
  }
}

// Inserts a grey "sBIT" chunk after the 8-byte signature and the 25-byte IHDR chunk.
void AddSignificantBits(std::vector<uint8_t>& png, const SPicture& picture) {
  constexpr size_t kAfterHeader = 8 + 25;
  if (png.size() < kAfterHeader || std::memcmp(&png[12], "IHDR", 4) != 0) {
    throw std::runtime_error("the encoder wrote an unexpected PNG header");
  }
  std::vector<uint8_t> chunk(13);
  PutBigEndian32(chunk, 0, 1);
  std::memcpy(&chunk[4], "sBIT", 4);
  chunk[8] = static_cast<uint8_t>(picture.significantBits);
  PutBigEndian32(chunk, 9, static_cast<uint32_t>(crc32(crc32(0L, Z_NULL, 0), &chunk[4], 5)));
  png.insert(png.begin() + kAfterHeader, chunk.begin(), chunk.end());
}

}  // namespace

std::vector<uint8_t> CPictureCodec::EncodePng(const SPicture& picture) {
  const bool swap16 = picture.bitDepth == 16 && PngEncoderCopies16BitBytes();
  std::vector<uint8_t> png = Encode(picture, GUID_ContainerFormatPng, swap16);
  // Grey only: libpng takes the grey figure alone and skips the chunk for colour.
  if (picture.channels == 1 && picture.bitDepth == 16 && picture.significantBits < 16) {
    AddSignificantBits(png, picture);
  }
  return png;
}

std::vector<uint8_t> CPictureCodec::EncodeTiff(const SPicture& picture) {
  try {
    return Encode(picture, GUID_ContainerFormatTiff, false);
  } catch (const CUnsupportedFormat&) {
    // Some versions of the component store no 16-bit grey TIFF (they offer 24-bit colour instead).
    return CTiffWriter::Encode(picture);
  }
}

}  // namespace TalvirCli

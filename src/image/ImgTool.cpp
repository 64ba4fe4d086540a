#include "image/ImgTool.h"

#include "image/Demosaic.h"
#include "image/HighBitRgb.h"
#include "image/ImvexConverter.h"
#include "image/PixelFormats.h"
#include "image/Rgb565.h"
#include "image/RgbSwap.h"
#include "image/Shift.h"
#include "image/Unpack.h"
#include "image/YCbCr.h"

#include <new>

namespace TALVIR {
namespace {

using namespace PixelFormat;
using Pixel::EBayer;

enum class EWork {
  None,           // not converted
  Source,         // already Mono8 or BGR8
  Shift,          // 16-bit containers to 8 bits
  KeepHighBytes,  // three-byte packing
  LsbFirst,       // LSB-first bit unpacking
  SwapRedBlue,
  Yuv422Yuyv,
  Yuv422Uyvy,
  Yuv411,
  Yuv444,
  YCbCr422,  // 709 table
  YCbCr444,  // 709 table
  Rgb565,
  Bgr565,
  MakerLibrary,
};

// What to do with one input format. A Bayer format runs its 8-bit stage (work, or nothing for 8-bit Bayer)
// into the mono buffer and then the demosaic of its pattern into the colour buffer.
struct SRoute {
  EWork work = EWork::None;
  uint32_t bits = 0;
  bool demosaic = false;
  EBayer pattern = EBayer::RG;
};

SRoute Mono(EWork work, uint32_t bits = 0) { return {work, bits, false, EBayer::RG}; }
SRoute Bayer(EWork work, uint32_t bits, EBayer pattern) { return {work, bits, true, pattern}; }
SRoute Colour(EWork work) { return {work, 0, false, EBayer::RG}; }

SRoute RouteOf(uint32_t pixelFormat) {
  switch (pixelFormat) {
  case Mono8:
  case Mono8s:
  case BGR8: return Mono(EWork::Source);
  case Mono10: return Mono(EWork::Shift, 10);
  case Mono12: return Mono(EWork::Shift, 12);
  case Mono14: return Mono(EWork::Shift, 14);
  case Mono16: return Mono(EWork::Shift, 16);
  case Mono10Packed:
  case Mono12Packed: return Mono(EWork::KeepHighBytes);
  case Mono10p: return Mono(EWork::LsbFirst, 10);
  case Mono12p: return Mono(EWork::LsbFirst, 12);
  case Mono14p: return Mono(EWork::LsbFirst, 14);

  case BayerGR8: return Bayer(EWork::None, 8, EBayer::GR);
  case BayerRG8: return Bayer(EWork::None, 8, EBayer::RG);
  case BayerGB8: return Bayer(EWork::None, 8, EBayer::GB);
  case BayerBG8: return Bayer(EWork::None, 8, EBayer::BG);
  case BayerGR10: return Bayer(EWork::Shift, 10, EBayer::GR);
  case BayerRG10: return Bayer(EWork::Shift, 10, EBayer::RG);
  case BayerGB10: return Bayer(EWork::Shift, 10, EBayer::GB);
  case BayerBG10: return Bayer(EWork::Shift, 10, EBayer::BG);
  case BayerGR12: return Bayer(EWork::Shift, 12, EBayer::GR);
  case BayerRG12: return Bayer(EWork::Shift, 12, EBayer::RG);
  case BayerGB12: return Bayer(EWork::Shift, 12, EBayer::GB);
  case BayerBG12: return Bayer(EWork::Shift, 12, EBayer::BG);
  case BayerGR14: return Bayer(EWork::Shift, 14, EBayer::GR);
  case BayerRG14: return Bayer(EWork::Shift, 14, EBayer::RG);
  case BayerGB14: return Bayer(EWork::Shift, 14, EBayer::GB);
  case BayerBG14: return Bayer(EWork::Shift, 14, EBayer::BG);
  case BayerGR16: return Bayer(EWork::Shift, 16, EBayer::GR);
  case BayerRG16: return Bayer(EWork::Shift, 16, EBayer::RG);
  case BayerGB16: return Bayer(EWork::Shift, 16, EBayer::GB);
  case BayerBG16: return Bayer(EWork::Shift, 16, EBayer::BG);
  case BayerGR10Packed:
  case BayerGR12Packed: return Bayer(EWork::KeepHighBytes, 0, EBayer::GR);
  case BayerRG10Packed:
  case BayerRG12Packed: return Bayer(EWork::KeepHighBytes, 0, EBayer::RG);
  case BayerGB10Packed:
  case BayerGB12Packed: return Bayer(EWork::KeepHighBytes, 0, EBayer::GB);
  case BayerBG10Packed:
  case BayerBG12Packed: return Bayer(EWork::KeepHighBytes, 0, EBayer::BG);
  case BayerGR10p: return Bayer(EWork::LsbFirst, 10, EBayer::GR);
  case BayerRG10p: return Bayer(EWork::LsbFirst, 10, EBayer::RG);
  case BayerGB10p: return Bayer(EWork::LsbFirst, 10, EBayer::GB);
  case BayerBG10p: return Bayer(EWork::LsbFirst, 10, EBayer::BG);
  case BayerGR12p: return Bayer(EWork::LsbFirst, 12, EBayer::GR);
  case BayerRG12p: return Bayer(EWork::LsbFirst, 12, EBayer::RG);
  case BayerGB12p: return Bayer(EWork::LsbFirst, 12, EBayer::GB);
  case BayerBG12p: return Bayer(EWork::LsbFirst, 12, EBayer::BG);
  case BayerGR14p: return Bayer(EWork::LsbFirst, 14, EBayer::GR);
  case BayerRG14p: return Bayer(EWork::LsbFirst, 14, EBayer::RG);
  case BayerGB14p: return Bayer(EWork::LsbFirst, 14, EBayer::GB);
  case BayerBG14p: return Bayer(EWork::LsbFirst, 14, EBayer::BG);

  case RGB8: return Colour(EWork::SwapRedBlue);
  case YUV422_8: return Colour(EWork::Yuv422Yuyv);
  case YUV422_8_UYVY: return Colour(EWork::Yuv422Uyvy);
  case YUV411_8_UYYVYY: return Colour(EWork::Yuv411);
  case YUV8_UYV: return Colour(EWork::Yuv444);
  case YCbCr422_8:
  case YCbCr709_422_8: return Colour(EWork::YCbCr422);
  case YCbCr709_8_CbYCr: return Colour(EWork::YCbCr444);
  case RGB565p: return Colour(EWork::Rgb565);
  case BGR565p: return Colour(EWork::Bgr565);
  case RGB10:
  case RGB12:
  case RGB10p: return Colour(EWork::MakerLibrary);
  default: return {};
  }
}

bool ProducesMono(const SRoute& route) {
  return !route.demosaic &&
         (route.work == EWork::Shift || route.work == EWork::KeepHighBytes || route.work == EWork::LsbFirst);
}

// Runs one of the mono-output stages (also the first stage of the high-bit-depth Bayer formats).
bool RunMonoStage(const SRoute& route, const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  switch (route.work) {
  case EWork::Shift: return Pixel::ShiftTo8(source, destination, width, height, route.bits);
  case EWork::KeepHighBytes: return Pixel::KeepHighBytes(source, destination, width, height);
  case EWork::LsbFirst: return Pixel::UnpackLsbFirst(source, destination, width, height, route.bits);
  default: return false;
  }
}

bool RunColourWork(const SRoute& route, const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  switch (route.work) {
  case EWork::SwapRedBlue: return Pixel::SwapRedBlue(source, destination, width, height);
  case EWork::Yuv422Yuyv: return Pixel::Yuv422ToBgr(source, destination, width, height, Pixel::EYuv422Order::YUYV);
  case EWork::Yuv422Uyvy: return Pixel::Yuv422ToBgr(source, destination, width, height, Pixel::EYuv422Order::UYVY);
  case EWork::Yuv411: return Pixel::Yuv411ToBgr(source, destination, width, height);
  case EWork::Yuv444: return Pixel::Yuv444ToBgr(source, destination, width, height);
  case EWork::YCbCr422: return Pixel::YCbCr422ToBgr709(source, destination, width, height);
  case EWork::YCbCr444: return Pixel::YCbCr444ToBgr709(source, destination, width, height);
  case EWork::Rgb565: return Pixel::Expand565(source, destination, width, height, Pixel::E565Order::LowFieldFirst);
  case EWork::Bgr565: return Pixel::Expand565(source, destination, width, height, Pixel::E565Order::HighFieldFirst);
  default: return false;
  }
}

uint64_t CheckedSize(uint32_t width, uint32_t height, uint64_t bytesPerPixel) {
  // width x height always fits in 64 bits; times 3 may not, and no such buffer could be allocated anyway.
  uint64_t size = 0;
  if (__builtin_mul_overflow(uint64_t{width} * height, bytesPerPixel, &size)) {
    throw std::bad_alloc();
  }
  return size;
}

}  // namespace

CImgTool::CImgTool(bool freshBuffers, const CImvexConverter* converter)
    : m_freshBuffers(freshBuffers), m_converter(converter) {}

CImgTool::~CImgTool() {
  delete[] m_monoBuffer;
  delete[] m_colourBuffer;
}

void CImgTool::FreeFreshBuffer(const uint8_t* buffer) { delete[] buffer; }

uint32_t CImgTool::OutputFormatOf(uint32_t pixelFormat) {
  const SRoute route = RouteOf(pixelFormat);
  if (route.work == EWork::Source) {
    return pixelFormat == BGR8 ? BGR8 : Mono8;
  }
  if (ProducesMono(route)) {
    return Mono8;
  }
  if (route.demosaic || route.work != EWork::None) {
    return BGR8;
  }
  return 0;
}

uint8_t* CImgTool::TakeBuffer(uint64_t size, bool colour) {
  if (m_freshBuffers) {
    return new uint8_t[size];
  }
  uint8_t*& buffer = colour ? m_colourBuffer : m_monoBuffer;
  uint64_t& recordedSize = colour ? m_colourSize : m_monoSize;
  if (buffer != nullptr && recordedSize != size) {
    delete[] buffer;
    buffer = nullptr;
    recordedSize = 0;
  }
  if (buffer == nullptr) {
    buffer = new uint8_t[size];
    recordedSize = size;
  }
  return buffer;
}

const uint8_t* CImgTool::Finish(uint8_t* buffer, bool succeeded) const {
  if (succeeded || !m_freshBuffers) {
    return buffer;
  }
  delete[] buffer;
  return nullptr;
}

const uint8_t* CImgTool::Convert(const uint8_t* source, uint32_t width, uint32_t height, uint32_t pixelFormat) {
  if (source == nullptr || width == 0 || height == 0) {
    return nullptr;
  }
  const SRoute route = RouteOf(pixelFormat);
  if (route.work == EWork::Source) {
    return source;
  }
  if (ProducesMono(route)) {
    uint8_t* mono = TakeBuffer(CheckedSize(width, height, 1), false);
    return Finish(mono, RunMonoStage(route, source, mono, width, height));
  }
  if (route.demosaic) {
    const uint8_t* bayer8 = source;
    uint8_t* intermediate = nullptr;
    bool succeeded = true;
    if (route.work != EWork::None) {
      intermediate = TakeBuffer(CheckedSize(width, height, 1), false);
      succeeded = RunMonoStage(route, source, intermediate, width, height);
      bayer8 = intermediate;
    }
    uint8_t* colour = nullptr;
    try {
      colour = TakeBuffer(CheckedSize(width, height, 3), true);
    } catch (...) {
      if (m_freshBuffers) {
        delete[] intermediate;
      }
      throw;
    }
    succeeded = succeeded && Pixel::Demosaic(bayer8, colour, width, height, route.pattern);
    if (m_freshBuffers) {
      delete[] intermediate;
    }
    return Finish(colour, succeeded);
  }
  if (route.work == EWork::None) {
    return nullptr;
  }
  uint8_t* colour = TakeBuffer(CheckedSize(width, height, 3), true);
  if (route.work == EWork::MakerLibrary) {
    const CImvexConverter& converter = m_converter != nullptr ? *m_converter : CImvexConverter::ForProcess();
    const bool succeeded = converter.IsAvailable() ? converter.ConvertToBgr8(pixelFormat, source, width, height, colour)
                                                   : Pixel::HighBitRgbToBgr(source, colour, width, height, pixelFormat);
    return Finish(colour, succeeded);
  }
  return Finish(colour, RunColourWork(route, source, colour, width, height));
}

}  // namespace TALVIR

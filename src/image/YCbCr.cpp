#include "image/YCbCr.h"

#include "image/CpuFeatures.h"

namespace TALVIR::Pixel {
namespace {

// Round half away from zero, usable at compile time.
constexpr int32_t RoundToNearest(double value) {
  return value >= 0 ? static_cast<int32_t>(value + 0.5) : -static_cast<int32_t>(-value + 0.5);
}

constexpr SChromaTable MakeTable(double k0, double k1, double k2, double k3) {
  SChromaTable table{};
  const double factors[4] = {k0, k1, k2, k3};
  for (int array = 0; array < 4; ++array) {
    for (int c = 0; c < 256; ++c) {
      table.entry[array][c] = RoundToNearest((c - 128) * factors[array]);
    }
  }
  return table;
}

constexpr SChromaTable kTable601 = MakeTable(1.370705, 0.698001, 0.337633, 1.732446);
constexpr SChromaTable kTable709 = MakeTable(1.53965, 0.18314, 0.45768, 1.81418);

uint8_t Clamp(int32_t value) { return static_cast<uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value)); }

// One output pixel from luma and the three chroma terms.
void Put(uint8_t* out, int32_t y, int32_t blueTerm, int32_t greenTerm, int32_t redTerm) {
  out[0] = Clamp(y + blueTerm);
  out[1] = Clamp(y - greenTerm);
  out[2] = Clamp(y + redTerm);
}

bool Valid(const uint8_t* source, const uint8_t* destination, uint32_t width, uint32_t height) {
  return source != nullptr && destination != nullptr && width != 0 && height != 0;
}

}  // namespace

const SChromaTable& Table601() { return kTable601; }
const SChromaTable& Table709() { return kTable709; }

namespace Reference {

bool Yuv422ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EYuv422Order order) {
  if (!Valid(source, destination, width, height)) {
    return false;
  }
  const auto& a = kTable601.entry;
  const uint64_t groups = uint64_t{width} * height / 2;
  const bool yFirst = order == EYuv422Order::YUYV;
  for (uint64_t g = 0; g < groups; ++g) {
    const uint8_t* in = source + 4 * g;
    const int y0 = yFirst ? in[0] : in[1];
    const int y1 = yFirst ? in[2] : in[3];
    const int u = yFirst ? in[1] : in[0];
    const int v = yFirst ? in[3] : in[2];
    const int32_t green = a[1][v] + a[2][u];
    Put(destination + 6 * g, y0, a[3][u], green, a[0][v]);
    Put(destination + 6 * g + 3, y1, a[3][u], green, a[0][v]);
  }
  return true;
}

bool YCbCr422ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (!Valid(source, destination, width, height)) {
    return false;
  }
  const auto& b = kTable709.entry;
  const uint64_t groups = uint64_t{width} * height / 2;
  for (uint64_t g = 0; g < groups; ++g) {
    const uint8_t* in = source + 4 * g;
    const int c1 = in[1];
    const int c3 = in[3];
    const int32_t green = b[2][c3] + b[1][c1];
    Put(destination + 6 * g, in[0], b[3][c3], green, b[0][c1]);
    Put(destination + 6 * g + 3, in[2], b[3][c3], green, b[0][c1]);
  }
  return true;
}

bool Yuv444ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (!Valid(source, destination, width, height)) {
    return false;
  }
  const auto& a = kTable601.entry;
  const uint64_t count = uint64_t{width} * height;
  for (uint64_t i = 0; i < count; ++i) {
    const uint8_t* in = source + 3 * i;
    const int u = in[0];
    const int v = in[2];
    Put(destination + 3 * i, in[1], a[3][u], a[2][u] + a[1][v], a[0][v]);
  }
  return true;
}

bool Yuv411ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (!Valid(source, destination, width, height)) {
    return false;
  }
  const auto& a = kTable601.entry;
  const uint64_t groups = uint64_t{width} * height / 4;
  for (uint64_t g = 0; g < groups; ++g) {
    const uint8_t* in = source + 6 * g;
    const int u = in[0];
    const int v = in[3];
    const int luma[4] = {in[1], in[2], in[4], in[5]};
    for (int i = 0; i < 4; ++i) {
      Put(destination + 12 * g + 3 * i, luma[i], a[3][u], a[1][v] + a[2][u], a[0][v]);
    }
  }
  return true;
}

bool YCbCr444ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  if (!Valid(source, destination, width, height)) {
    return false;
  }
  const auto& b = kTable709.entry;
  const uint64_t count = uint64_t{width} * height;
  for (uint64_t i = 0; i < count; ++i) {
    const uint8_t* in = source + 3 * i;
    const int c0 = in[0];
    const int c2 = in[2];
    Put(destination + 3 * i, in[1], b[3][c2], b[2][c2] + b[1][c0], b[0][c0]);
  }
  return true;
}

}  // namespace Reference

bool Yuv422ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, EYuv422Order order) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::Yuv422ToBgr(source, destination, width, height, order);
  }
#endif
  return Reference::Yuv422ToBgr(source, destination, width, height, order);
}

bool YCbCr422ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
#if TALVIR_IMAGE_HAS_AVX2
  if (CpuHasAvx2()) {
    return Avx2::YCbCr422ToBgr709(source, destination, width, height);
  }
#endif
  return Reference::YCbCr422ToBgr709(source, destination, width, height);
}

// Neither 4:4:4 nor 4:1:1 is common enough on cameras to need a vector version.
bool Yuv444ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  return Reference::Yuv444ToBgr(source, destination, width, height);
}
bool Yuv411ToBgr(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  return Reference::Yuv411ToBgr(source, destination, width, height);
}
bool YCbCr444ToBgr709(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height) {
  return Reference::YCbCr444ToBgr709(source, destination, width, height);
}

}  // namespace TALVIR::Pixel

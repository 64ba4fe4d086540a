#include "image/Rgb565.h"

namespace TALVIR::Pixel {
namespace {

// Integer part of f x 255 / max + 0.5, in integers: (2 x 255 f + max) / (2 max).
constexpr uint8_t Widen(unsigned field, unsigned maximum) {
  return static_cast<uint8_t>((2 * 255 * field + maximum) / (2 * maximum));
}

struct SWidenTables {
  uint8_t from5[32];
  uint8_t from6[64];
};

constexpr SWidenTables MakeWidenTables() {
  SWidenTables tables{};
  for (unsigned f = 0; f < 32; ++f) {
    tables.from5[f] = Widen(f, 31);
  }
  for (unsigned f = 0; f < 64; ++f) {
    tables.from6[f] = Widen(f, 63);
  }
  return tables;
}

constexpr SWidenTables kWiden = MakeWidenTables();

}  // namespace

namespace Reference {

bool Expand565(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, E565Order order) {
  if (source == nullptr || destination == nullptr || width == 0 || height == 0) {
    return false;
  }
  const uint64_t count = uint64_t{width} * height;
  const bool lowFirst = order == E565Order::LowFieldFirst;
  for (uint64_t i = 0; i < count; ++i) {
    const unsigned word = unsigned{source[2 * i]} | (unsigned{source[2 * i + 1]} << 8);
    const uint8_t lowField = kWiden.from5[word & 0x1F];
    const uint8_t middleField = kWiden.from6[(word >> 5) & 0x3F];
    const uint8_t highField = kWiden.from5[word >> 11];
    uint8_t* out = destination + 3 * i;
    out[0] = lowFirst ? lowField : highField;
    out[1] = middleField;
    out[2] = lowFirst ? highField : lowField;
  }
  return true;
}

}  // namespace Reference

// Rare on cameras; the plain loop is fast enough.
bool Expand565(const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, E565Order order) {
  return Reference::Expand565(source, destination, width, height, order);
}

}  // namespace TALVIR::Pixel

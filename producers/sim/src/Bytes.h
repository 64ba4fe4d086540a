#pragma once
// Big-endian register bytes and the bit patterns of doubles, as the simulated registers and chunks store them.
#include <cstdint>
#include <cstring>

namespace TalvirSim {

// "No value" in a 32-bit register.
constexpr uint32_t kNone32 = 0xFFFFFFFF;

inline uint32_t ReadBE32(const uint8_t* p) {
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | uint32_t{p[3]};
}

inline void WriteBE32(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v >> 24);
  p[1] = static_cast<uint8_t>(v >> 16);
  p[2] = static_cast<uint8_t>(v >> 8);
  p[3] = static_cast<uint8_t>(v);
}

inline void WriteBE64(uint8_t* p, uint64_t v) {
  WriteBE32(p, static_cast<uint32_t>(v >> 32));
  WriteBE32(p + 4, static_cast<uint32_t>(v));
}

inline double DoubleFromBits(uint64_t bits) {
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

inline uint64_t BitsFromDouble(double value) {
  uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

}  // namespace TalvirSim

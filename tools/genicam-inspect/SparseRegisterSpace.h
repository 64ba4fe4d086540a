#pragma once
// A sparse, unbounded byte-addressed register space for offline evaluation of description files.
//
// Bytes that were never written hold a pseudo-random value derived from their address and a seed, so that two
// independent engines given the same seed read identical registers without sharing any state. Written bytes are kept in
// a hash map; nothing else is stored, so a space is cheap however wide the addresses a description file uses.
#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace TALVIR::Tools {
// SplitMix64 applied to one state value: add the golden-ratio increment, then the two multiply-xorshift rounds.
constexpr uint64_t SplitMix64(uint64_t x) {
  uint64_t z = x + 0x9E3779B97F4A7C15ULL;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

class CSparseRegisterSpace {
public:
  explicit CSparseRegisterSpace(uint64_t seed = 0) : m_Seed(seed) {}

  // The value an address holds before anything is written there.
  uint8_t SeededByte(uint64_t address) const {
    return static_cast<uint8_t>(SplitMix64(address ^ (m_Seed << 40)) & 0xFF);
  }

  // Seeded length registers can claim gigabytes; no real register is that long, so such accesses fail like a port
  // error instead of exhausting memory.
  static constexpr size_t kMaxAccessLength = 1u << 20;

  // Addresses wrap around at 2^64, as a 64-bit address bus would. Returns false for over-long accesses.
  bool Read(void* buffer, uint64_t address, size_t length) {
    if (length > kMaxAccessLength) return false;
    auto* out = static_cast<uint8_t*>(buffer);
    ++m_ReadCount;
    for (size_t i = 0; i < length; ++i) {
      const uint64_t a = address + i;
      const auto it = m_Written.find(a);
      out[i] = it != m_Written.end() ? it->second : SeededByte(a);
    }
    return true;
  }

  bool Write(const void* buffer, uint64_t address, size_t length) {
    if (length > kMaxAccessLength) return false;
    const auto* in = static_cast<const uint8_t*>(buffer);
    ++m_WriteCount;
    for (size_t i = 0; i < length; ++i) m_Written[address + i] = in[i];
    return true;
  }

  uint64_t Seed() const { return m_Seed; }
  // Counters let tests and benchmarks see whether a read reached the register space or was served from a cache.
  uint64_t ReadCount() const { return m_ReadCount; }
  uint64_t WriteCount() const { return m_WriteCount; }
  size_t WrittenBytes() const { return m_Written.size(); }

private:
  uint64_t m_Seed;
  uint64_t m_ReadCount = 0;
  uint64_t m_WriteCount = 0;
  std::unordered_map<uint64_t, uint8_t> m_Written;
};
}  // namespace TALVIR::Tools

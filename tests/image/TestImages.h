#pragma once
// Shared helpers of the pixel tests: reproducible random images and the sizes every fast routine is checked at.
#include "image/CpuFeatures.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace TALVIR::Testing {

struct SSize {
  uint32_t width;
  uint32_t height;
};

// Odd and even sides, single rows and columns, and sides just below, at and above the vector widths (16, 32,
// 64 pixels) so that every bulk loop ends in every possible remainder.
inline std::vector<SSize> SizesToCheck() {
  std::vector<SSize> sizes = {{1, 1},  {2, 1},   {1, 2},   {2, 2},   {3, 3},   {4, 3},   {3, 4},   {5, 5},
                              {1, 37}, {37, 1},  {1, 64},  {64, 1},  {6, 2},   {7, 3},   {15, 4},  {16, 4},
                              {17, 5}, {31, 3},  {32, 3},  {33, 3},  {34, 4},  {35, 5},  {36, 6},  {63, 2},
                              {64, 4}, {65, 7},  {66, 3},  {67, 5},  {95, 3},  {96, 4},  {97, 5},  {98, 6},
                              {99, 3}, {127, 4}, {129, 5}, {130, 6}, {131, 7}, {200, 9}, {257, 3}, {640, 4}};
  return sizes;
}

inline std::vector<uint8_t> RandomBytes(uint64_t count, uint32_t seed) {
  std::mt19937 generator(seed);
  std::uniform_int_distribution<int> byte(0, 255);
  std::vector<uint8_t> bytes(count);
  for (auto& b : bytes) {
    b = static_cast<uint8_t>(byte(generator));
  }
  return bytes;
}

// A destination pre-filled with a known pattern, so that bytes a routine must leave alone are compared too.
inline std::vector<uint8_t> Prefilled(uint64_t count) { return std::vector<uint8_t>(count, 0xA5); }

inline bool HaveAvx2() { return Pixel::CpuHasAvx2(); }

inline std::string Describe(const SSize& size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace TALVIR::Testing

namespace TALVIR::Testing {

// A buffer whose data starts `offset` bytes past a 64-byte boundary, so that tests can place images at every
// alignment the vector routines treat differently. The bytes before and after are not part of the image.
class COffsetBuffer {
public:
  COffsetBuffer(uint64_t size, uint32_t offset, uint8_t fill) : m_storage(size + offset + 64, fill), m_size(size) {
    const auto base = reinterpret_cast<uintptr_t>(m_storage.data());
    m_data = m_storage.data() + ((64 - base % 64) % 64) + offset;
  }
  uint8_t* Data() { return m_data; }
  std::vector<uint8_t> Contents() const { return std::vector<uint8_t>(m_data, m_data + m_size); }

private:
  std::vector<uint8_t> m_storage;
  uint8_t* m_data;
  uint64_t m_size;
};

}  // namespace TALVIR::Testing

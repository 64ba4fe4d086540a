#pragma once
// The memory of one announced buffer. Shared between the camera (while the buffer is announced) and the image
// that shows it, so that an image the application still holds stays readable after the acquisition has been
// stopped and its buffers revoked.
#include <cstddef>
#include <cstdint>
#include <memory>

namespace TALVIR {

class CBufferMemory {
public:
  // Null when the memory cannot be had.
  static std::shared_ptr<CBufferMemory> Allocate(size_t size);
  ~CBufferMemory();
  CBufferMemory(const CBufferMemory&) = delete;
  CBufferMemory& operator=(const CBufferMemory&) = delete;

  uint8_t* Data() const { return m_pData; }
  size_t Size() const { return m_size; }

private:
  CBufferMemory(uint8_t* data, size_t size) : m_pData(data), m_size(size) {}

  uint8_t* m_pData;
  size_t m_size;
};

}  // namespace TALVIR

#include "camera/BufferMemory.h"

#include <new>

namespace TALVIR {
namespace {

// Cache-line aligned, so that the pixel routines' vector loads start on a line.
constexpr std::align_val_t kAlignment{64};

}  // namespace

std::shared_ptr<CBufferMemory> CBufferMemory::Allocate(size_t size) {
  if (size == 0) {
    return nullptr;
  }
  void* const data = ::operator new[](size, kAlignment, std::nothrow);
  if (data == nullptr) {
    return nullptr;
  }
  CBufferMemory* const memory = new (std::nothrow) CBufferMemory(static_cast<uint8_t*>(data), size);
  if (memory == nullptr) {
    ::operator delete[](data, kAlignment);
    return nullptr;
  }
  return std::shared_ptr<CBufferMemory>(memory);
}

CBufferMemory::~CBufferMemory() { ::operator delete[](m_pData, kAlignment); }

}  // namespace TALVIR

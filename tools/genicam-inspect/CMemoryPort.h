#pragma once
// A user port over a CSparseRegisterSpace: lets a node map run without a device, for offline inspection, tests and
// benchmarks. Over-long accesses raise a GenICam exception, as a failing transfer of a real port would.
#include "SparseRegisterSpace.h"

#include <GenApi/GenApi.h>

namespace TALVIR::Tools {
class CMemoryPort : public GenApi::CPortImpl {
public:
  explicit CMemoryPort(CSparseRegisterSpace& registers) : m_Registers(registers) {}

  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

  void Read(void* pBuffer, int64_t Address, int64_t Length) override {
    if (Length < 0 || !m_Registers.Read(pBuffer, static_cast<uint64_t>(Address), static_cast<size_t>(Length)))
      throw RUNTIME_EXCEPTION("Memory port: cannot read %lld bytes at 0x%llx", static_cast<long long>(Length),
                              static_cast<unsigned long long>(Address));
  }

  void Write(const void* pBuffer, int64_t Address, int64_t Length) override {
    if (Length < 0 || !m_Registers.Write(pBuffer, static_cast<uint64_t>(Address), static_cast<size_t>(Length)))
      throw RUNTIME_EXCEPTION("Memory port: cannot write %lld bytes at 0x%llx", static_cast<long long>(Length),
                              static_cast<unsigned long long>(Address));
  }

private:
  CSparseRegisterSpace& m_Registers;
};
}  // namespace TALVIR::Tools

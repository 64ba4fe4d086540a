#pragma once
// The comparison engine driven over a CSparseRegisterSpace: loading, per-feature queries in the dump format, and the
// raw calls the benchmarks time. Kept apart from main() so that benchmarks and tests share it.
#include "FeatureDump.h"
#include "SparseRegisterSpace.h"

#include <string>
#include <vector>

// Opaque handles of the comparison engine, so that users of this header need not see its headers.
typedef struct _ArvDevice ArvDevice;
typedef struct _ArvGc ArvGc;

namespace TALVIR::Tools {
class CAravisNodeMap {
public:
  explicit CAravisNodeMap(CSparseRegisterSpace& registers);
  ~CAravisNodeMap();
  CAravisNodeMap(const CAravisNodeMap&) = delete;
  CAravisNodeMap& operator=(const CAravisNodeMap&) = delete;

  bool Load(const std::string& xml);
  // Returns an error message, empty on success.
  std::string SetFromString(const std::string& name, const std::string& value);
  // Adds one record per feature with a value interface (all, or only those named in `only`).
  void Dump(CFeatureDump& dump, const std::vector<std::string>& only) const;

  // Raw access for benchmarks.
  void SetRegisterCache(bool enabled);
  bool ReadInteger(const std::string& name, int64_t& value) const;
  // The integer node of that name, looked up once so that a timed loop measures the read alone; null if none.
  void* FindInteger(const std::string& name) const;
  static bool ReadIntegerNode(void* node, int64_t& value);
  ArvGc* Gc() const { return m_Gc; }

private:
  CSparseRegisterSpace& m_Registers;
  ArvDevice* m_Device = nullptr;
  ArvGc* m_Gc = nullptr;
};
}  // namespace TALVIR::Tools

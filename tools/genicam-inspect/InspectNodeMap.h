#pragma once
// Our node map over a seeded register space, queried feature by feature into the dump format. Shared by the
// genicam-inspect program, the differential test and the benchmarks.
#include "CMemoryPort.h"
#include "FeatureDump.h"
#include "SparseRegisterSpace.h"

#include <GenApi/GenApi.h>

#include <map>
#include <string>
#include <vector>

namespace TALVIR::Tools {
class CInspectNodeMap {
public:
  explicit CInspectNodeMap(CSparseRegisterSpace& registers);

  // Loads a description (XML text or a ZIP archive holding it) and connects the memory port to every Port node that
  // serves device registers: chunk ports and event ports stay unconnected, as they are on a camera without a buffer
  // or an event. Throws GenICam exceptions from the engine and std::runtime_error from the element scan.
  void Load(const std::string& bytes);
  // Returns an error message, empty on success.
  std::string SetFromString(const std::string& name, const std::string& value);
  // Adds one record per feature with a value interface (all, or only those named in `only`).
  void Dump(CFeatureDump& dump, const std::vector<std::string>& only);

  GenApi::CNodeMapRef& NodeMap() { return m_NodeMap; }
  size_t ConnectedPorts() const { return m_ConnectedPorts; }

private:
  void ConnectDevicePorts();
  void DumpFeature(const std::string& name, const std::string& element, CFeatureDump& dump);

  CMemoryPort m_Port;
  GenApi::CNodeMapRef m_NodeMap;
  std::map<std::string, std::string> m_Elements;
  size_t m_ConnectedPorts = 0;
};
}  // namespace TALVIR::Tools

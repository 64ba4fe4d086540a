#pragma once
// A node map over the seeded register space of genicam-inspect, loaded from a description text or file.
#include <CMemoryPort.h>
#include <InspectNodeMap.h>
#include <SparseRegisterSpace.h>

#include <GenApi/GenApi.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace PersistenceTest {

inline std::string ReadFileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

class CDevice {
public:
  explicit CDevice(const std::string& description, uint64_t seed = 0)
      : m_registers(seed), m_map(std::make_unique<TALVIR::Tools::CInspectNodeMap>(m_registers)) {
    m_map->Load(description);
  }
  GenApi::INodeMap& Map() { return *m_map->NodeMap()._Ptr; }
  GenApi::INode* Node(const char* name) { return Map().GetNode(name); }
  std::string Get(const char* name) { return std::string(GenApi::CValuePtr(Node(name))->ToString()); }
  void Set(const char* name, const std::string& value) { GenApi::CValuePtr(Node(name))->FromString(value); }
  // Writes register bytes directly (read-only registers included) and drops every cached value.
  void Poke(uint64_t address, const std::vector<uint8_t>& bytes) {
    m_registers.Write(bytes.data(), address, bytes.size());
    Map().InvalidateNodes();
  }

private:
  TALVIR::Tools::CSparseRegisterSpace m_registers;
  std::unique_ptr<TALVIR::Tools::CInspectNodeMap> m_map;
};

}  // namespace PersistenceTest

#pragma once
// A user port over a sparse, unbounded register space for tests: bytes never written read as a seeded pseudo-random
// pattern (or zero), every access is counted, and failures can be injected.
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>

#include <GenApi/GenApi.h>

namespace EngineTest {

class CMemoryPort : public GenApi::CPortImpl {
public:
  explicit CMemoryPort(bool randomFill = false, uint64_t seed = 0) : m_randomFill(randomFill), m_seed(seed) {}

  GenApi::EAccessMode GetAccessMode() const override { return m_accessMode; }

  void Read(void* pBuffer, int64_t Address, int64_t Length) override {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_reads;
    if (m_failReads) throw GENERIC_EXCEPTION("Read address %#llx failure", static_cast<unsigned long long>(Address));
    auto* bytes = static_cast<uint8_t*>(pBuffer);
    for (int64_t i = 0; i < Length; ++i) bytes[i] = ByteAt(static_cast<uint64_t>(Address + i));
  }

  void Write(const void* pBuffer, int64_t Address, int64_t Length) override {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_writes;
    if (m_failWrites) throw GENERIC_EXCEPTION("Write address %#llx failure", static_cast<unsigned long long>(Address));
    const auto* bytes = static_cast<const uint8_t*>(pBuffer);
    for (int64_t i = 0; i < Length; ++i) m_memory[static_cast<uint64_t>(Address + i)] = bytes[i];
  }

  // Direct access for the test (bypasses the counters).
  void Poke32BE(uint64_t address, uint32_t value) {
    for (int i = 0; i < 4; ++i)
      m_memory[address + static_cast<uint64_t>(i)] = static_cast<uint8_t>(value >> (24 - 8 * i));
  }
  void Poke32LE(uint64_t address, uint32_t value) {
    for (int i = 0; i < 4; ++i) m_memory[address + static_cast<uint64_t>(i)] = static_cast<uint8_t>(value >> (8 * i));
  }
  void PokeBytes(uint64_t address, const void* data, size_t length) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t i = 0; i < length; ++i) m_memory[address + i] = bytes[i];
  }
  uint32_t Peek32LE(uint64_t address) {
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = (value << 8) | ByteAt(address + static_cast<uint64_t>(i));
    return value;
  }
  uint32_t Peek32BE(uint64_t address) {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = (value << 8) | ByteAt(address + static_cast<uint64_t>(i));
    return value;
  }

  int Reads() const { return m_reads; }
  int Writes() const { return m_writes; }
  void ResetCounters() { m_reads = m_writes = 0; }
  void FailReads(bool fail) { m_failReads = fail; }
  void FailWrites(bool fail) { m_failWrites = fail; }
  void SetAccessMode(GenApi::EAccessMode mode) { m_accessMode = mode; }

private:
  uint8_t ByteAt(uint64_t address) const {
    const auto it = m_memory.find(address);
    if (it != m_memory.end()) return it->second;
    if (!m_randomFill) return 0;
    uint64_t z = address ^ (m_seed << 40);
    z += 0x9e3779b97f4a7c15ULL;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    z = z ^ (z >> 31);
    return static_cast<uint8_t>(z & 0xFF);
  }

  std::mutex m_mutex;
  std::map<uint64_t, uint8_t> m_memory;
  bool m_randomFill;
  uint64_t m_seed;
  int m_reads = 0;
  int m_writes = 0;
  bool m_failReads = false;
  bool m_failWrites = false;
  GenApi::EAccessMode m_accessMode = GenApi::RW;
};

// Wraps node definitions into a complete description with a port named Device.
inline std::string Describe(const std::string& nodes) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<RegisterDescription ModelName=\"TestModel\" VendorName=\"TestVendor\" StandardNameSpace=\"GEV\" "
         "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"2\" "
         "MinorVersion=\"3\" SubMinorVersion=\"4\">\n"
         "<Port Name=\"Device\"/>\n" +
         nodes + "\n</RegisterDescription>\n";
}

}  // namespace EngineTest

namespace EngineTest {

// A node map loaded from node definitions, with a memory port connected as "Device".
struct CTestMap {
  explicit CTestMap(const std::string& nodes, bool randomFill = false) : port(randomFill) {
    map._LoadXMLFromString(Describe(nodes));
    map._Connect(&port, "Device");
  }
  GenApi::INode* Node(const char* name) { return map._GetNode(name); }
  GenApi::CNodeMapRef map;
  CMemoryPort port;
};

// The description of the GenICam exception thrown by the callable, or "" when nothing was thrown.
template <class F>
std::string ErrorOf(F&& f) {
  try {
    f();
  } catch (const GenICam::GenericException& error) {
    return error.GetDescription();
  }
  return std::string();
}

}  // namespace EngineTest

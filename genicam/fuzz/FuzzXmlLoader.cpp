// Fuzz target: description text through the loader, then one read of every value node.
#include "FuzzNodeMap.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TALVIR::Tools::CSparseRegisterSpace registers;
  TALVIR::Tools::CMemoryPort port(registers);
  GenApi::CNodeMapRef nodeMap;
  try {
    nodeMap._LoadXMLFromString(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const GenICam::GenericException&) {
    return 0;
  }
  TALVIR::Fuzz::ExerciseNodeMap(nodeMap, port);
  return 0;
}

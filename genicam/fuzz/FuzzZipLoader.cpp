// Fuzz target: bytes through the ZIP loader (archive parsing and inflation come before any XML).
#include "FuzzNodeMap.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  GenApi::CNodeMapRef nodeMap;
  try {
    nodeMap._LoadXMLFromZIPData(data, size);
  } catch (const GenICam::GenericException&) {
  }
  return 0;
}

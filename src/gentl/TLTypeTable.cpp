#include "gentl/TLTypeTable.h"

#include <talvir/TLType.h>

#include <iterator>

namespace TALVIR {
namespace {

struct TLTypeEntry {
  const char* name;
  uint32_t value;
};

// Searched in this order; the first exact match wins.
constexpr TLTypeEntry kTLTypeTable[] = {
    {"GEV", TLType::GEV}, {"CL", TLType::CL},     {"IIDC", TLType::IIDC}, {"UVC", TLType::UVC},
    {"CXP", TLType::CXP}, {"CLHS", TLType::CLHS}, {"U3V", TLType::U3V},   {"Ethernet", TLType::Ethernet},
    {"PCI", TLType::PCI},
};

}  // namespace

uint32_t TLTypeFromName(const std::string& name) {
  for (const TLTypeEntry& entry : kTLTypeTable) {
    if (name == entry.name) {
      return entry.value;
    }
  }
  return 0;
}

const char* TLTypeName(uint32_t tlType) {
  for (const TLTypeEntry& entry : kTLTypeTable) {
    if (tlType == entry.value) {
      return entry.name;
    }
  }
  return "";
}

}  // namespace TALVIR

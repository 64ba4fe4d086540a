#pragma once
// Maps the transport-layer type names that producers report to the library's TLType bits.
#include <cstdint>
#include <string>

namespace TALVIR {

// The bit for a producer's transport-layer name, compared exactly (case-sensitive, whole string); 0 for a name the
// table does not know ("Mixed", "Custom", anything else).
uint32_t TLTypeFromName(const std::string& name);

// The table's name for a single bit ("GEV", ...); empty for any other value.
const char* TLTypeName(uint32_t tlType);

}  // namespace TALVIR

// Fuzz target: formula text. Checked by the node map's formula parser, then evaluated inside a small description
// (FormulaDescription.h) by every formula-carrying node type.
#include "FormulaDescription.h"
#include "FuzzNodeMap.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string formula(reinterpret_cast<const char*>(data), size);
  TALVIR::Tools::CSparseRegisterSpace registers;
  TALVIR::Tools::CMemoryPort port(registers);
  GenApi::CNodeMapRef nodeMap;
  try {
    nodeMap._LoadXMLFromString(TALVIR::Fuzz::FormulaDescription(formula));
  } catch (const GenICam::GenericException&) {
    return 0;
  }
  if (nodeMap._Ptr != nullptr) nodeMap._Ptr->ParseSwissKnife(formula);
  TALVIR::Fuzz::ExerciseNodeMap(nodeMap, port);
  for (const char* name : {"IntConv", "FloatConv"}) {
    try {
      GenApi::CValuePtr value(nodeMap._GetNode(name));
      if (value.IsValid()) value->FromString("3", false);
    } catch (const GenICam::GenericException&) {
    }
  }
  return 0;
}

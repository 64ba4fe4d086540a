#pragma once
// What every fuzz target does after a load: connect the seeded memory port and read every value node once, so that
// evaluation (formulas, address arithmetic, reference chains, cycles) runs on whatever the loader accepted.
#include "CMemoryPort.h"

namespace TALVIR::Fuzz {
// Reads at most `limit` value nodes; every GenICam exception is an accepted outcome.
inline void ExerciseNodeMap(GenApi::CNodeMapRef& nodeMap, TALVIR::Tools::CMemoryPort& port, size_t limit = 400) {
  GenApi::NodeList_t nodes;
  nodeMap._GetNodes(nodes);
  for (GenApi::INode* node : nodes)
    if (node->GetPrincipalInterfaceType() == GenApi::intfIPort) nodeMap._Connect(&port, node->GetName());
  size_t visited = 0;
  for (GenApi::INode* node : nodes) {
    if (++visited > limit) break;
    try {
      // Registers and strings whose (seeded) length is absurd are skipped: allocating it is the caller's risk.
      if (GenApi::CRegisterPtr reg(node); reg.IsValid() && reg->GetLength() > (1 << 16)) continue;
      if (GenApi::CStringPtr text(node);
          text.IsValid() && text->GetMaxLength() > (1 << 16) && text->GetMaxLength() != INT64_MAX)
        continue;
      if (GenApi::CValuePtr value(node); value.IsValid() && GenApi::IsReadable(node)) value->ToString();
      if (GenApi::CIntegerPtr integer(node); integer.IsValid() && GenApi::IsAvailable(node)) {
        integer->GetMin();
        integer->GetMax();
        integer->GetInc();
      }
      if (GenApi::CFloatPtr number(node); number.IsValid() && GenApi::IsAvailable(node)) {
        number->GetMin();
        number->GetMax();
      }
    } catch (const GenICam::GenericException&) {
    }
  }
}
}  // namespace TALVIR::Fuzz

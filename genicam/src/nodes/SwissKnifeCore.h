#pragma once
// CSwissKnifeCore: the formula of a SwissKnife or IntSwissKnife, its variables and its compiled program.
#include <string>

#include "formula/Formula.h"
#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

struct CSwissKnifeCore {
  CSwissKnifeCore(CNode* owner, bool integerMode) : set(owner, integerMode) {}
  bool Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child);
  // Compiles the formula; fails the load when there is none.
  void Finish(CNode& owner, CLoadContext& context);
  CFormulaSet set;
  std::string formula;
  bool hasFormula = false;
  int program = -1;
};

}  // namespace Engine
}  // namespace GenApi

// CSwissKnifeCore: Formula and variables of SwissKnife and IntSwissKnife nodes.
#include "nodes/SwissKnifeCore.h"

#include "nodes/FormulaVariables.h"
#include "nodes/LoadContext.h"

namespace GenApi {
namespace Engine {

bool CSwissKnifeCore::Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child) {
  if (ConfigureFormulaVariable(owner, context, id, child, set)) return true;
  if (id != EElement::Formula) return false;
  formula = std::string(CLoadContext::Text(child));
  hasFormula = true;
  return true;
}

void CSwissKnifeCore::Finish(CNode& owner, CLoadContext& context) {
  if (!hasFormula) context.Fail(&owner, CXmlElement(), "has no Formula");
  program = set.Compile(formula, "Formula");
  AddFormulaDependencies(owner, set);
}

}  // namespace Engine
}  // namespace GenApi

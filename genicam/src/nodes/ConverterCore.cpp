// CConverterCore: formulas, target and slope of Converter and IntConverter nodes.
#include "nodes/ConverterCore.h"

#include "nodes/FormulaVariables.h"
#include "nodes/LoadContext.h"

namespace GenApi {
namespace Engine {

bool CConverterCore::Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child) {
  if (ConfigureFormulaVariable(owner, context, id, child, set)) return true;
  switch (id) {
  case EElement::FormulaTo:
    formulaTo = std::string(CLoadContext::Text(child));
    hasTo = true;
    return true;
  case EElement::FormulaFrom:
    formulaFrom = std::string(CLoadContext::Text(child));
    hasFrom = true;
    return true;
  case EElement::pValue:
    target = context.Resolve(owner, child);
    owner.m_writingChildren.push_back(target);
    return true;
  case EElement::Slope: {
    const std::string_view text = CLoadContext::Text(child);
    if (text == "Increasing") slope = Increasing;
    else if (text == "Decreasing") slope = Decreasing;
    else if (text == "Varying") slope = Varying;
    else if (text == "Automatic") slope = Automatic;
    else context.Fail(&owner, child, "unknown slope");
    return true;
  }
  case EElement::IsLinear: isLinear = context.YesNo(owner, child); return true;
  default: return false;
  }
}

void CConverterCore::Finish(CNode& owner, CLoadContext& context) {
  if (target == nullptr) context.Fail(&owner, CXmlElement(), "has no pValue");
  if (!hasTo || !hasFrom) context.Fail(&owner, CXmlElement(), "needs FormulaTo and FormulaFrom");
  set.AddExternal("FROM", 0);
  set.AddExternal("TO", 1);
  programTo = set.Compile(formulaTo, "FormulaTo");
  programFrom = set.Compile(formulaFrom, "FormulaFrom");
  AddFormulaDependencies(owner, set);
}

}  // namespace Engine
}  // namespace GenApi

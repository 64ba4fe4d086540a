// Variables of formula nodes (pVariable, Constant, Expression) and their dependency edges.
#include "nodes/FormulaVariables.h"

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"

namespace GenApi {
namespace Engine {

namespace {
std::string NameAttribute(CNode& owner, CLoadContext& context, const CXmlElement& child) {
  const std::string_view name = child.Attribute("Name");
  if (name.empty()) context.Fail(&owner, child, "variable without Name attribute");
  return std::string(TrimSpaces(name));
}

}  // namespace

// pVariable elements already linked their nodes; repeated links are removed after loading.
void AddFormulaDependencies(CNode& owner, CFormulaSet& set) {
  for (IFormulaOperand* node : set.ReferencedNodes()) CLoadContext::AddDependency(owner, *static_cast<CNode*>(node));
  set.FinishCompiling();
}

bool ConfigureFormulaVariable(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child,
                              CFormulaSet& set) {
  switch (id) {
  case EElement::pVariable: {
    std::string name = NameAttribute(owner, context, child);
    set.AddNodeVariable(std::move(name), context.Resolve(owner, child));
    return true;
  }
  case EElement::Constant: {
    std::string name = NameAttribute(owner, context, child);
    const std::string_view text = CLoadContext::Text(child);
    int64_t intValue = 0;
    double floatValue = 0;
    if (ParseInteger(text, intValue)) {
      floatValue = static_cast<double>(intValue);
    } else if (ParseDouble(text, floatValue)) {
      intValue = ClampToInt64(floatValue);
    } else {
      context.Fail(&owner, child, "bad constant");
    }
    set.AddConstant(std::move(name), intValue, floatValue);
    return true;
  }
  case EElement::Expression: {
    std::string name = NameAttribute(owner, context, child);
    set.AddExpression(std::move(name), std::string(CLoadContext::Text(child)));
    return true;
  }
  default: return false;
  }
}

}  // namespace Engine
}  // namespace GenApi

#pragma once
// Variables of formula nodes (pVariable, Constant, Expression) and their dependency edges.
#include "formula/Formula.h"
#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

// pVariable / Constant / Expression elements into a formula set; false for other elements.
bool ConfigureFormulaVariable(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child,
                              CFormulaSet& set);
// Once every program of the set is compiled: the owner reads the nodes they name; then drops what only compiling needs.
void AddFormulaDependencies(CNode& owner, CFormulaSet& set);

}  // namespace Engine
}  // namespace GenApi

#pragma once
// Compiles the text of one formula into postfix code, resolving its identifiers through the formula set.
#include <string_view>

#include "formula/Formula.h"

namespace GenApi {
namespace Engine {

// Throws a GenICam exception naming the set's node, the formula and the position on a syntax error, an unknown
// variable or a formula nested too deeply.
void CompileFormula(CFormulaSet& set, std::string_view text, const char* what, CFormulaSet::CProgram& program);

}  // namespace Engine
}  // namespace GenApi

#pragma once
// CConverterCore: what Converter and IntConverter share (FormulaTo, FormulaFrom, pValue, Slope, IsLinear).
#include <string>

#include "formula/Formula.h"
#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

// The common part of both converters: FROM is the user value, TO the value of pValue.
struct CConverterCore {
  explicit CConverterCore(CNode* owner, bool integerMode) : set(owner, integerMode) {}
  bool Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child);
  void Finish(CNode& owner, CLoadContext& context);
  CFormulaSet set;
  std::string formulaTo;
  std::string formulaFrom;
  bool hasTo = false;
  bool hasFrom = false;
  int programTo = -1;
  int programFrom = -1;
  CNode* target = nullptr;
  ESlope slope = Automatic;
  bool isLinear = false;
};

}  // namespace Engine
}  // namespace GenApi

#pragma once
// SwissKnife: a read-only float computed by a formula in double.
#include <string>

#include "nodes/FloatBase.h"
#include "nodes/FormulaValueNode.h"

namespace GenApi {
namespace Engine {

class CSwissKnifeNode : public CFormulaValueNode<CFloatBase> {
public:
  CSwissKnifeNode(CNodeMapImpl& map, std::string name) : CFormulaValueNode(map, std::move(name), intfIFloat, false) {}
  double GetFloat(bool, bool ignoreCache) override { return Evaluate<double>(ignoreCache); }
  void SetFloat(double, bool) override { RefuseWrite(); }
};

}  // namespace Engine
}  // namespace GenApi

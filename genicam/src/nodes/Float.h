#pragma once
// Float: a value of its own, a pValue target or one selected by pIndex; Min, Max, Inc.
#include <string>

#include "nodes/FloatBase.h"
#include "nodes/NumberNode.h"

namespace GenApi {
namespace Engine {

class CFloatNode : public CNumberNode<CFloatBase, double> {
public:
  CFloatNode(CNodeMapImpl& map, std::string name) : CNumberNode(map, std::move(name), intfIFloat) {}
  double GetFloat(bool, bool ignoreCache) override { return Read(ignoreCache); }
  void SetFloat(double value, bool verify) override {
    if (verify) Verify(value);
    Write(value, verify);
  }
  double NativeMin() override { return Limit(m_min, false); }
  double NativeMax() override { return Limit(m_max, true); }
  bool HasFloatInc() override;
  double GetFloatInc() override;
};

}  // namespace Engine
}  // namespace GenApi

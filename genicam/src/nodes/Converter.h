#pragma once
// Converter: a target seen through FormulaFrom and written through FormulaTo, in double. A converter marked IsLinear
// over a target with an increment steps by the converted increment; any other has none.
#include <string>

#include "nodes/ConverterValueNode.h"
#include "nodes/FloatBase.h"

namespace GenApi {
namespace Engine {

class CConverterNode : public CConverterValueNode<CFloatBase, double> {
public:
  CConverterNode(CNodeMapImpl& map, std::string name) : CConverterValueNode(map, std::move(name), intfIFloat) {}
  double GetFloat(bool, bool ignoreCache) override { return Read(ignoreCache); }
  void SetFloat(double value, bool verify) override {
    if (verify) Verify(value);
    Write(value, verify);
  }
  double NativeMin() override { return ConvertedLimit(false); }
  double NativeMax() override { return ConvertedLimit(true); }
  bool HasFloatInc() override;
  double GetFloatInc() override;
};

}  // namespace Engine
}  // namespace GenApi

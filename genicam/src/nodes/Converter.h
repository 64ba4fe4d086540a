#pragma once
// Converter: a target seen through FormulaFrom and written through FormulaTo, in double.
#include <string>

#include "nodes/ConverterCore.h"
#include "nodes/FloatBase.h"

namespace GenApi {
namespace Engine {

class CConverterNode : public CFloatBase {
public:
  CConverterNode(CNodeMapImpl& map, std::string name)
      : CFloatBase(map, std::move(name), intfIFloat), m_core(this, false) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return m_core.target->ComputeAccessMode(); }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;
  double NativeMin() override;
  double NativeMax() override;
  // A linear converter over a target with an increment steps by the converted increment.
  bool HasFloatInc() override;
  double GetFloatInc() override;

private:
  double From(double to, bool ignoreCache);
  CConverterCore m_core;
};

}  // namespace Engine
}  // namespace GenApi

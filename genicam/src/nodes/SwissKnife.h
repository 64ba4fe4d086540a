#pragma once
// SwissKnife: a read-only float computed by a formula in double.
#include <string>

#include "nodes/FloatBase.h"
#include "nodes/SwissKnifeCore.h"

namespace GenApi {
namespace Engine {

class CSwissKnifeNode : public CFloatBase {
public:
  CSwissKnifeNode(CNodeMapImpl& map, std::string name)
      : CFloatBase(map, std::move(name), intfIFloat), m_core(this, false) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return RO; }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;

private:
  CSwissKnifeCore m_core;
};

}  // namespace Engine
}  // namespace GenApi

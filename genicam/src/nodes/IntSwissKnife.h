#pragma once
// IntSwissKnife: a read-only integer computed by a formula in 64-bit integers.
#include <string>

#include "nodes/IntegerBase.h"
#include "nodes/SwissKnifeCore.h"

namespace GenApi {
namespace Engine {

class CIntSwissKnifeNode : public CIntegerBase {
public:
  CIntSwissKnifeNode(CNodeMapImpl& map, std::string name)
      : CIntegerBase(map, std::move(name), intfIInteger), m_core(this, true) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return RO; }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;

private:
  CSwissKnifeCore m_core;
};

}  // namespace Engine
}  // namespace GenApi

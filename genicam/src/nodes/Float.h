#pragma once
// Float: a value of its own, a pValue target or one selected by pIndex; Min, Max, Inc.
#include "nodes/FloatBase.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

class CFloatNode : public CFloatBase {
public:
  CFloatNode(CNodeMapImpl& map, std::string name) : CFloatBase(map, std::move(name), intfIFloat) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;
  double NativeMin() override;
  double NativeMax() override;
  bool HasFloatInc() override;
  double GetFloatInc() override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CFloatNode&>(*this)); }
  CValueSource& Source() { return m_value; }

private:
  CValueSource m_value;
  CFloatRef m_min, m_max, m_inc;
};

}  // namespace Engine
}  // namespace GenApi

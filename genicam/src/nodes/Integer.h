#pragma once
// Integer: a value of its own, a pValue target (with pValueCopy) or one selected by pIndex; Min, Max, Inc.
#include "nodes/IntegerBase.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

class CIntegerNode : public CIntegerBase {
public:
  CIntegerNode(CNodeMapImpl& map, std::string name) : CIntegerBase(map, std::move(name), intfIInteger) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  int64_t NativeMin() override;
  int64_t NativeMax() override;
  int64_t NativeInc() override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CIntegerNode&>(*this)); }

private:
  CValueSource m_value;
  CIntRef m_min, m_max, m_inc;
};

}  // namespace Engine
}  // namespace GenApi

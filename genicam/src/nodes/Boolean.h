#pragma once
// Boolean: an integer value that is OnValue or OffValue.
#include <cstdint>
#include <string>

#include "nodes/ValueNode.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

class CBooleanNode : public CValueNode, public virtual IBoolean {
public:
  CBooleanNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfIBoolean) {}
  void SetValue(bool Value, bool Verify = true) override;
  bool GetValue(bool Verify = false, bool IgnoreCache = false) const override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CBooleanNode&>(*this)); }
  bool IsNumeric() const override { return true; }
  CValueSource& Source() { return m_value; }

private:
  bool Read(bool ignoreCache);
  CValueSource m_value;
  int64_t m_onValue = 1;
  int64_t m_offValue = 0;
};

}  // namespace Engine
}  // namespace GenApi

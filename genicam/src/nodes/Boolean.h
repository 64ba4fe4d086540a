#pragma once
// Boolean: an integer value that is OnValue or OffValue.
#include <cstdint>
#include <string>

#include "nodes/SourcedNode.h"
#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CBooleanNode : public CSourcedNode<CValueNode>, public virtual IBoolean {
public:
  CBooleanNode(CNodeMapImpl& map, std::string name) : CSourcedNode(map, std::move(name), intfIBoolean) {}
  void SetValue(bool Value, bool Verify = true) override;
  bool GetValue(bool Verify = false, bool IgnoreCache = false) const override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  bool IsNumeric() const override { return true; }

private:
  bool Read(bool ignoreCache);
  int64_t m_onValue = 1;
  int64_t m_offValue = 0;
};

}  // namespace Engine
}  // namespace GenApi

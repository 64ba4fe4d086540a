#pragma once
// EnumEntry: one value of an enumeration (Value, NumericValue, Symbolic, IsSelfClearing) with its own availability.
#include <cstdint>
#include <string>

#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CEnumEntryNode : public CValueNode, public virtual IEnumEntry {
public:
  CEnumEntryNode(CNodeMapImpl& map, std::string name, std::string symbolic)
      : CValueNode(map, std::move(name), intfIEnumEntry), m_symbolic(std::move(symbolic)) {}
  int64_t GetValue() override { return m_value; }
  gcstring GetSymbolic() const override { return m_symbolic; }
  double GetNumericValue() override { return m_hasNumericValue ? m_numericValue : static_cast<double>(m_value); }
  bool IsSelfClearing() override { return m_isSelfClearing; }
  gcstring ToString(bool = false, bool = false) override { return m_symbolic; }
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  EAccessMode OwnAccessMode() override { return RO; }
  int64_t GetInt(bool, bool) override { return m_value; }
  bool IsNumeric() const override { return true; }
  const std::string& Symbolic() const { return m_symbolic; }
  int64_t Value() const { return m_value; }

private:
  std::string m_symbolic;
  int64_t m_value = 0;
  double m_numericValue = 0.0;
  bool m_hasNumericValue = false;
  bool m_isSelfClearing = false;
};

}  // namespace Engine
}  // namespace GenApi

#pragma once
// CIntegerBase: the IInteger plumbing (locking, access checks, limits with the imposed ones, verification, valid value
// sets, unit, representation and texts) written once for Integer, IntReg, MaskedIntReg, IntSwissKnife and
// IntConverter. Public entry points lock, check access and forward to the internal interface.
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CIntegerBase : public CValueNode, public virtual IInteger {
public:
  using CValueNode::CValueNode;
  void SetValue(int64_t Value, bool Verify = true) override;
  int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override;
  int64_t GetMin() override;
  int64_t GetMax() override;
  EIncMode GetIncMode() override;
  int64_t GetInc() override;
  int64_autovector_t GetListOfValidValues(bool bounded = true) override;
  ERepresentation GetRepresentation() override { return m_representation; }
  gcstring GetUnit() override { return m_unit; }
  void ImposeMin(int64_t Value) override;
  void ImposeMax(int64_t Value) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool IsNumeric() const override { return true; }
  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  // Own limits before the imposed ones.
  virtual int64_t NativeMin() { return std::numeric_limits<int64_t>::min(); }
  virtual int64_t NativeMax() { return std::numeric_limits<int64_t>::max(); }
  virtual int64_t NativeInc() { return 1; }
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;
  int64_t GetIntInc() override;
  // Range (and, when asked, increment) check against the node's current limits.
  void Verify(int64_t value, bool checkInc);

protected:
  ERepresentation m_representation = _UndefinedRepresentation;
  std::string m_unit;
  int64_t m_imposedMin = std::numeric_limits<int64_t>::min();
  int64_t m_imposedMax = std::numeric_limits<int64_t>::max();
  std::vector<int64_t> m_validValues;
};

}  // namespace Engine
}  // namespace GenApi

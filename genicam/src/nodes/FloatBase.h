#pragma once
// CFloatBase: the IFloat plumbing (locking, access checks, limits with the imposed ones, verification, unit,
// representation, display notation and texts) written once for Float, FloatReg, SwissKnife and Converter.
#include <cstdint>
#include <limits>
#include <string>

#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CFloatBase : public CValueNode, public virtual IFloat {
public:
  using CValueNode::CValueNode;
  void SetValue(double Value, bool Verify = true) override;
  double GetValue(bool Verify = false, bool IgnoreCache = false) override;
  double GetMin() override;
  double GetMax() override;
  bool HasInc() override;
  EIncMode GetIncMode() override;
  double GetInc() override;
  double_autovector_t GetListOfValidValues(bool bounded = true) override;
  ERepresentation GetRepresentation() override { return m_representation; }
  gcstring GetUnit() const override { return m_unit; }
  EDisplayNotation GetDisplayNotation() const override { return m_displayNotation; }
  int64_t GetDisplayPrecision() const override { return m_displayPrecision; }
  void ImposeMin(double Value) override;
  void ImposeMax(double Value) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool IsNumeric() const override { return true; }
  bool IsFloatValued() const override { return true; }
  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override { SetFloat(static_cast<double>(value), verify); }
  virtual double NativeMin() { return -std::numeric_limits<double>::max(); }
  virtual double NativeMax() { return std::numeric_limits<double>::max(); }
  double GetFloatMin() override;
  double GetFloatMax() override;
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;
  void Verify(double value);

protected:
  ERepresentation m_representation = _UndefinedRepresentation;
  std::string m_unit;
  EDisplayNotation m_displayNotation = fnAutomatic;
  int64_t m_displayPrecision = 6;
  double m_imposedMin = -std::numeric_limits<double>::max();
  double m_imposedMax = std::numeric_limits<double>::max();
};

}  // namespace Engine
}  // namespace GenApi

// CFloatBase: the IFloat plumbing of every float-valued node.
#include "nodes/FloatBase.h"

#include <algorithm>
#include <cmath>

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"
#include "nodes/ValueText.h"

namespace GenApi {
namespace Engine {

bool CFloatBase::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::Unit: m_unit = std::string(CLoadContext::Text(child)); return true;
  case EElement::Representation:
    if (!ParseRepresentation(CLoadContext::Text(child), m_representation)) {
      context.Fail(this, child, "unknown representation");
    }
    return true;
  case EElement::DisplayNotation:
    if (!ParseDisplayNotation(CLoadContext::Text(child), m_displayNotation)) {
      context.Fail(this, child, "unknown display notation");
    }
    return true;
  case EElement::DisplayPrecision: m_displayPrecision = context.Integer(*this, child); return true;
  default: return CValueNode::ConfigureElement(context, id, child);
  }
}

// A float read as an integer is truncated toward zero, as a C conversion does.
int64_t CFloatBase::GetInt(bool verify, bool ignoreCache) { return ClampToInt64(GetFloat(verify, ignoreCache)); }
double CFloatBase::GetFloatMin() {
  CDepthGuard depth(*this);
  return std::max(NativeMin(), m_imposedMin);
}
double CFloatBase::GetFloatMax() {
  CDepthGuard depth(*this);
  return std::min(NativeMax(), m_imposedMax);
}
int64_t CFloatBase::GetIntMin() { return ClampToInt64(std::ceil(GetFloatMin())); }
int64_t CFloatBase::GetIntMax() { return ClampToInt64(std::floor(GetFloatMax())); }

void CFloatBase::Verify(double value) { CheckFloatRange(*this, value, GetFloatMin(), GetFloatMax()); }

void CFloatBase::SetValue(double Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(FloatToText(Value));
  SetFloat(Value, Verify);
}

double CFloatBase::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const double value = GetFloat(Verify, IgnoreCache);
  if (Verify) this->Verify(value);
  return value;
}

double CFloatBase::GetMin() {
  CEntryGuard guard(m_map);
  return GetFloatMin();
}
double CFloatBase::GetMax() {
  CEntryGuard guard(m_map);
  return GetFloatMax();
}
bool CFloatBase::HasInc() {
  CEntryGuard guard(m_map);
  return HasFloatInc();
}
EIncMode CFloatBase::GetIncMode() {
  CEntryGuard guard(m_map);
  return HasFloatInc() ? fixedIncrement : noIncrement;
}
double CFloatBase::GetInc() {
  CEntryGuard guard(m_map);
  if (!HasFloatInc()) throw RUNTIME_EXCEPTION("Node '%s' has no increment", m_name.c_str());
  return GetFloatInc();
}
double_autovector_t CFloatBase::GetListOfValidValues(bool) { return double_autovector_t(); }
void CFloatBase::ImposeMin(double Value) {
  CEntryGuard guard(m_map);
  m_imposedMin = Value;
  m_map.PropagateChange(this, false);
}
void CFloatBase::ImposeMax(double Value) {
  CEntryGuard guard(m_map);
  m_imposedMax = Value;
  m_map.PropagateChange(this, false);
}
gcstring CFloatBase::ToString(bool Verify, bool IgnoreCache) {
  return gcstring(FloatToText(GetValue(Verify, IgnoreCache)));
}
void CFloatBase::FromString(const gcstring& ValueStr, bool Verify) { SetValue(TextToFloat(*this, ValueStr), Verify); }

}  // namespace Engine
}  // namespace GenApi

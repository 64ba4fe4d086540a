// CIntegerBase: the IInteger plumbing of every integer-valued node.
#include "nodes/IntegerBase.h"

#include <algorithm>
#include <cinttypes>

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"
#include "nodes/ValueText.h"

namespace GenApi {
namespace Engine {

bool CIntegerBase::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::Unit: m_unit = std::string(CLoadContext::Text(child)); return true;
  case EElement::Representation:
    if (!ParseRepresentation(CLoadContext::Text(child), m_representation)) {
      context.Fail(this, child, "unknown representation");
    }
    return true;
  case EElement::ValidValueSet: {
    std::string_view text = CLoadContext::Text(child);
    while (!text.empty()) {
      const size_t separator = text.find(';');
      int64_t value = 0;
      if (!ParseInteger(text.substr(0, separator), value)) context.Fail(this, child, "bad valid value");
      m_validValues.push_back(value);
      if (separator == std::string_view::npos) break;
      text.remove_prefix(separator + 1);
    }
    return true;
  }
  default: return CValueNode::ConfigureElement(context, id, child);
  }
}

int64_t CIntegerBase::GetIntMin() {
  CDepthGuard depth(*this);
  return std::max(NativeMin(), m_imposedMin);
}
int64_t CIntegerBase::GetIntMax() {
  CDepthGuard depth(*this);
  return std::min(NativeMax(), m_imposedMax);
}
int64_t CIntegerBase::GetIntInc() {
  CDepthGuard depth(*this);
  const int64_t inc = NativeInc();
  if (inc <= 0) throw RUNTIME_EXCEPTION("Node '%s': increment %" PRId64 " is not positive", m_name.c_str(), inc);
  return inc;
}

void CIntegerBase::Verify(int64_t value, bool checkInc) {
  CheckIntRange(*this, value, GetIntMin(), GetIntMax(), checkInc ? GetIntInc() : 1, checkInc);
  if (!m_validValues.empty() && std::find(m_validValues.begin(), m_validValues.end(), value) == m_validValues.end()) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is not in the set of valid values", m_name.c_str(),
                                 value);
  }
}

void CIntegerBase::SetValue(int64_t Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(std::to_string(Value));
  SetInt(Value, Verify);
}

int64_t CIntegerBase::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const int64_t value = GetInt(Verify, IgnoreCache);
  if (Verify) this->Verify(value, false);
  return value;
}

int64_t CIntegerBase::GetMin() {
  CEntryGuard guard(m_map);
  return GetIntMin();
}
int64_t CIntegerBase::GetMax() {
  CEntryGuard guard(m_map);
  return GetIntMax();
}
EIncMode CIntegerBase::GetIncMode() { return m_validValues.empty() ? fixedIncrement : listIncrement; }
int64_t CIntegerBase::GetInc() {
  CEntryGuard guard(m_map);
  return GetIntInc();
}

int64_autovector_t CIntegerBase::GetListOfValidValues(bool bounded) {
  CEntryGuard guard(m_map);
  int64_autovector_t values;
  const int64_t min = bounded ? GetIntMin() : std::numeric_limits<int64_t>::min();
  const int64_t max = bounded ? GetIntMax() : std::numeric_limits<int64_t>::max();
  for (int64_t value : m_validValues) {
    if (value >= min && value <= max) values.push_back(value);
  }
  return values;
}

void CIntegerBase::ImposeMin(int64_t Value) {
  CEntryGuard guard(m_map);
  m_imposedMin = Value;
  m_map.PropagateChange(this, false);
}
void CIntegerBase::ImposeMax(int64_t Value) {
  CEntryGuard guard(m_map);
  m_imposedMax = Value;
  m_map.PropagateChange(this, false);
}

gcstring CIntegerBase::ToString(bool Verify, bool IgnoreCache) {
  return gcstring(IntToText(GetValue(Verify, IgnoreCache), m_representation));
}
void CIntegerBase::FromString(const gcstring& ValueStr, bool Verify) { SetValue(TextToInt(*this, ValueStr), Verify); }

}  // namespace Engine
}  // namespace GenApi

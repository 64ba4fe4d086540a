// Converter nodes: a target seen through FormulaFrom, written through FormulaTo, in double.
#include "nodes/Converter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CConverterNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CFloatBase::ConfigureElement(context, id, child);
}

double CConverterNode::From(double to, bool ignoreCache) {
  const double externals[4] = {0.0, to, 0.0, 0.0};
  return m_core.set.EvaluateFloat(m_core.programFrom, externals, ignoreCache);
}

double CConverterNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return From(m_core.target->GetFloat(false, ignoreCache), ignoreCache);
}

void CConverterNode::SetFloat(double value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value);
  const double externals[4] = {value, 0.0, 0.0, 0.0};
  const double converted = m_core.set.EvaluateFloat(m_core.programTo, externals, false);
  m_core.target->SetFloat(converted, verify);
  ValueChanged();
}

bool CConverterNode::HasFloatInc() {
  if (!m_core.isLinear || !m_core.target->IsNumeric()) return false;
  return m_core.target->IsFloatValued() ? m_core.target->HasFloatInc() : true;
}

double CConverterNode::GetFloatInc() {
  if (!HasFloatInc()) return 0.0;
  const double base = m_core.target->GetFloatMin();
  const double step = m_core.target->IsFloatValued() ? m_core.target->GetFloatInc()
                                                      : static_cast<double>(m_core.target->GetIntInc());
  return std::fabs(From(base + step, false) - From(base, false));
}

double CConverterNode::NativeMin() {
  if (!m_core.target->IsNumeric()) return -std::numeric_limits<double>::max();
  const double a = From(m_core.target->GetFloatMin(), false);
  const double b = From(m_core.target->GetFloatMax(), false);
  return std::min(a, b);  // a monotonic conversion of [min, max] spans [min(a, b), max(a, b)] whatever its direction
}

double CConverterNode::NativeMax() {
  if (!m_core.target->IsNumeric()) return std::numeric_limits<double>::max();
  const double a = From(m_core.target->GetFloatMin(), false);
  const double b = From(m_core.target->GetFloatMax(), false);
  return std::max(a, b);
}

}  // namespace Engine
}  // namespace GenApi

// IntConverter nodes: an integer target seen through FormulaFrom, written through FormulaTo.
#include "nodes/IntConverter.h"

#include <algorithm>
#include <limits>

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CIntConverterNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CIntegerBase::ConfigureElement(context, id, child);
}

int64_t CIntConverterNode::From(int64_t to, bool ignoreCache) {
  const int64_t externals[4] = {0, to, 0, 0};
  return m_core.set.EvaluateInt(m_core.programFrom, externals, ignoreCache);
}

int64_t CIntConverterNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return From(m_core.target->GetInt(false, ignoreCache), ignoreCache);
}

void CIntConverterNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value, false);
  const int64_t externals[4] = {value, 0, 0, 0};
  const int64_t converted = m_core.set.EvaluateInt(m_core.programTo, externals, false);
  m_core.target->SetInt(converted, verify);
  ValueChanged();
}

int64_t CIntConverterNode::NativeMin() {
  if (!m_core.target->IsNumeric()) return std::numeric_limits<int64_t>::min();
  const int64_t a = From(m_core.target->GetIntMin(), false);
  const int64_t b = From(m_core.target->GetIntMax(), false);
  return std::min(a, b);  // a monotonic conversion of [min, max] spans [min(a, b), max(a, b)] whatever its direction
}

int64_t CIntConverterNode::NativeMax() {
  if (!m_core.target->IsNumeric()) return std::numeric_limits<int64_t>::max();
  const int64_t a = From(m_core.target->GetIntMin(), false);
  const int64_t b = From(m_core.target->GetIntMax(), false);
  return std::max(a, b);
}

}  // namespace Engine
}  // namespace GenApi

// Integer nodes: a value of their own, a pValue target or one selected by pIndex, with optional limits.
#include "nodes/Integer.h"

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CIntegerNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, false)) return true;
  switch (id) {
    case EElement::Min: context.IntRef(*this, child, false, m_min); return true;
    case EElement::pMin: context.IntRef(*this, child, true, m_min); return true;
    case EElement::Max: context.IntRef(*this, child, false, m_max); return true;
    case EElement::pMax: context.IntRef(*this, child, true, m_max); return true;
    case EElement::Inc: context.IntRef(*this, child, false, m_inc); return true;
    case EElement::pInc: context.IntRef(*this, child, true, m_inc); return true;
    default: return CIntegerBase::ConfigureElement(context, id, child);
  }
}

void CIntegerNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }

int64_t CIntegerNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetInt(*this, ignoreCache);
}

void CIntegerNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value, true);
  m_value.SetInt(*this, value, verify);
  ValueChanged();
}

int64_t CIntegerNode::NativeMin() {
  if (m_min.present) return m_min.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetIntMin() : std::numeric_limits<int64_t>::min();
}
int64_t CIntegerNode::NativeMax() {
  if (m_max.present) return m_max.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetIntMax() : std::numeric_limits<int64_t>::max();
}
int64_t CIntegerNode::NativeInc() {
  if (m_inc.present) return m_inc.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() && !target->IsFloatValued() ? target->GetIntInc() : 1;
}

}  // namespace Engine
}  // namespace GenApi

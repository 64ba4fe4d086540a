// Float nodes: a value of their own, a pValue target or one selected by pIndex, with optional limits.
#include "nodes/Float.h"

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

void CFloatNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }

bool CFloatNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, true)) return true;
  switch (id) {
    case EElement::Min: context.FloatRef(*this, child, false, m_min); return true;
    case EElement::pMin: context.FloatRef(*this, child, true, m_min); return true;
    case EElement::Max: context.FloatRef(*this, child, false, m_max); return true;
    case EElement::pMax: context.FloatRef(*this, child, true, m_max); return true;
    case EElement::Inc: context.FloatRef(*this, child, false, m_inc); return true;
    case EElement::pInc: context.FloatRef(*this, child, true, m_inc); return true;
    default: return CFloatBase::ConfigureElement(context, id, child);
  }
}

double CFloatNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetFloat(*this, ignoreCache);
}

void CFloatNode::SetFloat(double value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value);
  m_value.SetFloat(*this, value, verify);
  ValueChanged();
}

double CFloatNode::NativeMin() {
  if (m_min.present) return m_min.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetFloatMin() : -std::numeric_limits<double>::max();
}
double CFloatNode::NativeMax() {
  if (m_max.present) return m_max.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetFloatMax() : std::numeric_limits<double>::max();
}
// Without an increment of its own, a Float over an integer-valued node steps by that node's increment, and over a
// float-valued node by its increment when it has one.
bool CFloatNode::HasFloatInc() {
  if (m_inc.present) return true;
  CNode* target = m_value.TargetNode();
  if (target == nullptr || !target->IsNumeric()) return false;
  return target->IsFloatValued() ? target->HasFloatInc() : true;
}
double CFloatNode::GetFloatInc() {
  if (m_inc.present) return m_inc.Get();
  CNode* target = m_value.TargetNode();
  if (target != nullptr && target->IsNumeric()) {
    return target->IsFloatValued() ? target->GetFloatInc() : static_cast<double>(target->GetIntInc());
  }
  return 0.0;
}

}  // namespace Engine
}  // namespace GenApi

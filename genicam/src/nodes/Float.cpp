// Float nodes: the increment.
#include "nodes/Float.h"

namespace GenApi {
namespace Engine {

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

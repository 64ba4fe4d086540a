// Integer nodes: the increment.
#include "nodes/Integer.h"

namespace GenApi {
namespace Engine {

int64_t CIntegerNode::NativeInc() {
  if (m_inc.present) return m_inc.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() && !target->IsFloatValued() ? target->GetIntInc() : 1;
}

}  // namespace Engine
}  // namespace GenApi

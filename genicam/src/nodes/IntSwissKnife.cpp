// IntSwissKnife nodes: formulas in 64-bit integers.
#include "nodes/IntSwissKnife.h"

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CIntSwissKnifeNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CIntegerBase::ConfigureElement(context, id, child);
}

int64_t CIntSwissKnifeNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_core.set.EvaluateInt(m_core.program, nullptr, ignoreCache);
}

void CIntSwissKnifeNode::SetInt(int64_t, bool) {
  throw ACCESS_EXCEPTION("Node '%s' is not writable (a formula)", m_name.c_str());
}

}  // namespace Engine
}  // namespace GenApi

// SwissKnife nodes: formulas in double.
#include "nodes/SwissKnife.h"

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CSwissKnifeNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CFloatBase::ConfigureElement(context, id, child);
}

double CSwissKnifeNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_core.set.EvaluateFloat(m_core.program, nullptr, ignoreCache);
}

void CSwissKnifeNode::SetFloat(double, bool) {
  throw ACCESS_EXCEPTION("Node '%s' is not writable (a formula)", m_name.c_str());
}

}  // namespace Engine
}  // namespace GenApi

// String nodes: a text of their own or a pValue target.
#include "nodes/String.h"

#include <limits>

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CStringNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  if (m_value.Configure(*this, context, id, child, false, true)) return true;
  return CValueNode::ConfigureElement(context, id, child);
}

std::string CStringNode::GetStr(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetString(*this, ignoreCache);
}

void CStringNode::SetStr(const std::string& value, bool verify) {
  CDepthGuard depth(*this);
  m_value.SetString(*this, value, verify);
  ValueChanged();
}

int64_t CStringNode::GetMaxLength() {
  CEntryGuard guard(m_map);
  CNode* target = m_value.Current(*this, false).node;
  if (auto* text = dynamic_cast<IString*>(target)) return text->GetMaxLength();
  return std::numeric_limits<int64_t>::max();
}

}  // namespace Engine
}  // namespace GenApi

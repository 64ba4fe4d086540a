// Category nodes: the features they list.
#include "nodes/Category.h"

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CCategoryNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  if (id == EElement::pFeature) {
    CNode* feature = context.Resolve(*this, child, false);
    m_features.push_back(feature);
    return true;
  }
  return CValueNode::ConfigureElement(context, id, child);
}

void CCategoryNode::GetFeatures(FeatureList_t& Features) const {
  CEntryGuard guard(m_map);
  Features.clear();
  for (CNode* node : m_features) {
    if (auto* value = dynamic_cast<IValue*>(node)) Features.push_back(value);
  }
}

void CCategoryNode::FromString(const gcstring&, bool) {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s': a category has no value", m_name.c_str());
}

}  // namespace Engine
}  // namespace GenApi

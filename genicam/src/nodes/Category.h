#pragma once
// Category: the features it lists (pFeature).
#include <string>
#include <vector>

#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CCategoryNode : public CValueNode, public virtual ICategory {
public:
  CCategoryNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfICategory) {}
  void GetFeatures(FeatureList_t& Features) const override;
  gcstring ToString(bool = false, bool = false) override { return gcstring(); }
  void FromString(const gcstring&, bool = true) override;
  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  const std::vector<CNode*>& Features() const { return m_features; }

private:
  std::vector<CNode*> m_features;
};

}  // namespace Engine
}  // namespace GenApi

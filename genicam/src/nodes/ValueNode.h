#pragma once
// CValueNode: a node with a value, implementing IValue on top of CNode.
#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

class CValueNode : public CNode, public virtual IValue {
public:
  using CNode::CNode;
  INode* GetNode() override { return this; }
  bool IsValueCacheValid() const override;
};

}  // namespace Engine
}  // namespace GenApi

// CValueNode: the IValue part every value node shares.
#include "nodes/ValueNode.h"

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CValueNode::IsValueCacheValid() const {
  CEntryGuard guard(m_map);
  return CacheValid();
}

}  // namespace Engine
}  // namespace GenApi

#pragma once
// Nodes loaded for completeness that carry no value.
#include <string>

#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

// ConfRom, TextDesc, IntKey, AdvFeatureLock, SmartFeature, Node: loaded for completeness, no value.
class CPlainNode : public CNode {
public:
  CPlainNode(CNodeMapImpl& map, std::string name) : CNode(map, std::move(name), intfIBase) {}
};

}  // namespace Engine
}  // namespace GenApi

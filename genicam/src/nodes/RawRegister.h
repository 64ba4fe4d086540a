#pragma once
// Register: raw bytes, shown as hexadecimal text.
#include <string>

#include "nodes/RegisterNode.h"
#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CRawRegisterNode : public CRegisterNode<CValueNode> {
public:
  CRawRegisterNode(CNodeMapImpl& map, std::string name) : CRegisterNode(map, std::move(name), intfIRegister) {}
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;
};

}  // namespace Engine
}  // namespace GenApi

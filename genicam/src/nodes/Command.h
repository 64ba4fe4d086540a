#pragma once
// Command: Execute writes the command value; IsDone is true once the value read back differs from it.
#include <string>

#include "nodes/SourcedNode.h"
#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CCommandNode : public CSourcedNode<CValueNode>, public virtual ICommand {
public:
  CCommandNode(CNodeMapImpl& map, std::string name) : CSourcedNode(map, std::move(name), intfICommand) {}
  void Execute(bool Verify = true) override;
  bool IsDone(bool Verify = true) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  int64_t GetInt(bool verify, bool ignoreCache) override;

private:
  CIntRef m_commandValue;
};

}  // namespace Engine
}  // namespace GenApi

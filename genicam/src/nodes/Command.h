#pragma once
// Command: Execute writes the command value; IsDone is true once the value read back differs from it.
#include <string>

#include "nodes/ValueNode.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

class CCommandNode : public CValueNode, public virtual ICommand {
public:
  CCommandNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfICommand) {}
  void Execute(bool Verify = true) override;
  bool IsDone(bool Verify = true) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  CValueSource& Source() { return m_value; }

private:
  CValueSource m_value;
  CIntRef m_commandValue;
};

}  // namespace Engine
}  // namespace GenApi

#pragma once
// String: a text of its own or a pValue target.
#include <string>

#include "nodes/SourcedNode.h"
#include "nodes/StringBase.h"

namespace GenApi {
namespace Engine {

class CStringNode : public CSourcedNode<CStringBase> {
public:
  CStringNode(CNodeMapImpl& map, std::string name) : CSourcedNode(map, std::move(name), intfIString) {}
  int64_t GetMaxLength() override;

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  std::string GetStr(bool verify, bool ignoreCache) override;
  void SetStr(const std::string& value, bool verify) override;
};

}  // namespace Engine
}  // namespace GenApi

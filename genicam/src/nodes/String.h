#pragma once
// String: a text of its own or a pValue target.
#include <string>

#include "nodes/StringBase.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

class CStringNode : public CStringBase {
public:
  CStringNode(CNodeMapImpl& map, std::string name) : CStringBase(map, std::move(name), intfIString) {}
  int64_t GetMaxLength() override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  std::string GetStr(bool verify, bool ignoreCache) override;
  void SetStr(const std::string& value, bool verify) override;
  CValueSource& Source() { return m_value; }

private:
  CValueSource m_value;
};

}  // namespace Engine
}  // namespace GenApi

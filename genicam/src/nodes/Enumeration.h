#pragma once
// Enumeration: a value chosen among its entries; reads and writes go through its value source.
#include <string>
#include <string_view>
#include <vector>

#include "nodes/EnumEntry.h"
#include "nodes/SourcedNode.h"
#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CEnumerationNode : public CSourcedNode<CValueNode>, public virtual IEnumeration {
public:
  CEnumerationNode(CNodeMapImpl& map, std::string name) : CSourcedNode(map, std::move(name), intfIEnumeration) {}
  void GetSymbolics(StringList_t& Symbolics) override;
  void GetEntries(NodeList_t& Entries) override;
  void SetIntValue(int64_t Value, bool Verify = true) override;
  int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override;
  IEnumEntry* GetEntryByName(const gcstring& Symbolic) override;
  IEnumEntry* GetEntry(int64_t IntValue) override;
  IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  void FinishLoading(CLoadContext& context) override;
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  bool IsNumeric() const override { return true; }
  bool FindEntryValue(std::string_view symbolic, int64_t& value) override;
  void AddEntry(CEnumEntryNode* entry) { m_entries.push_back(entry); }

private:
  CEnumEntryNode* ByValue(int64_t value) const;
  CEnumEntryNode* BySymbolic(std::string_view symbolic) const;
  bool EntryAvailable(CEnumEntryNode* entry);
  std::vector<CEnumEntryNode*> m_entries;
};

}  // namespace Engine
}  // namespace GenApi

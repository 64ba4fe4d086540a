#pragma once
// Enumeration and EnumEntry.
#include <string>
#include <vector>

#include "nodes/Node.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

class CEnumEntryNode : public CValueNode, public virtual IEnumEntry {
public:
  CEnumEntryNode(CNodeMapImpl& map, std::string name, std::string symbolic)
      : CValueNode(map, std::move(name), intfIEnumEntry), m_symbolic(std::move(symbolic)) {}
  int64_t GetValue() override { return m_value; }
  gcstring GetSymbolic() const override { return m_symbolic; }
  double GetNumericValue() override { return m_hasNumericValue ? m_numericValue : static_cast<double>(m_value); }
  bool IsSelfClearing() override { return m_isSelfClearing; }
  gcstring ToString(bool = false, bool = false) override { return m_symbolic; }
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  EAccessMode OwnAccessMode() override { return RO; }
  int64_t GetInt(bool, bool) override { return m_value; }
  bool IsNumeric() const override { return true; }
  const std::string& Symbolic() const { return m_symbolic; }
  int64_t Value() const { return m_value; }

private:
  std::string m_symbolic;
  int64_t m_value = 0;
  double m_numericValue = 0.0;
  bool m_hasNumericValue = false;
  bool m_isSelfClearing = false;
};

class CEnumerationNode : public CValueNode, public virtual IEnumeration {
public:
  CEnumerationNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfIEnumeration) {}
  void GetSymbolics(StringList_t& Symbolics) override;
  void GetEntries(NodeList_t& Entries) override;
  void SetIntValue(int64_t Value, bool Verify = true) override;
  int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override;
  IEnumEntry* GetEntryByName(const gcstring& Symbolic) override;
  IEnumEntry* GetEntry(int64_t IntValue) override;
  IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  bool IsNumeric() const override { return true; }
  bool FindEntryValue(std::string_view symbolic, int64_t& value) override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CEnumerationNode&>(*this)); }
  void AddEntry(CEnumEntryNode* entry) { m_entries.push_back(entry); }

private:
  CEnumEntryNode* ByValue(int64_t value) const;
  CEnumEntryNode* BySymbolic(std::string_view symbolic) const;
  bool EntryAvailable(CEnumEntryNode* entry);
  CValueSource m_value;
  std::vector<CEnumEntryNode*> m_entries;
};

}  // namespace Engine
}  // namespace GenApi

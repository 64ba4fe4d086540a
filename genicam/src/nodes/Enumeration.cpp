// Enumeration nodes: a value chosen among entries, by symbolic name or value.
#include "nodes/Enumeration.h"

#include <cinttypes>

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CEnumerationNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  if (id == EElement::EnumEntry) return true;  // entries are nodes of their own, configured by the loader
  if (m_value.Configure(*this, context, id, child, false)) return true;
  return CValueNode::ConfigureElement(context, id, child);
}

void CEnumerationNode::FinishLoading(CLoadContext& context) {
  // Entry availability changes the enumeration's symbolics, not its value: a notification edge only, so that entries
  // whose availability reads registers selected by this enumeration do not form a reference cycle.
  for (CEnumEntryNode* entry : m_entries) entry->m_dependents.push_back(this);
  CSourcedNode::FinishLoading(context);
}

// When several entries share a value (a description error seen in real files), the last one defined wins, as a
// later definition replaces an earlier one.
CEnumEntryNode* CEnumerationNode::ByValue(int64_t value) const {
  for (auto it = m_entries.rbegin(); it != m_entries.rend(); ++it) {
    if ((*it)->Value() == value) return *it;
  }
  return nullptr;
}

CEnumEntryNode* CEnumerationNode::BySymbolic(std::string_view symbolic) const {
  for (CEnumEntryNode* entry : m_entries) {
    if (entry->Symbolic() == symbolic) return entry;
  }
  return nullptr;
}

bool CEnumerationNode::EntryAvailable(CEnumEntryNode* entry) {
  const EAccessMode mode = entry->ComputeAccessMode();
  return mode != NI && mode != NA;
}

bool CEnumerationNode::FindEntryValue(std::string_view symbolic, int64_t& value) {
  CEnumEntryNode* entry = BySymbolic(symbolic);
  if (entry == nullptr) return false;
  value = entry->Value();
  return true;
}

int64_t CEnumerationNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetInt(*this, ignoreCache);
}

void CEnumerationNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) {
    CEnumEntryNode* entry = ByValue(value);
    if (entry == nullptr) {
      throw OUT_OF_RANGE_EXCEPTION("Node '%s': no entry has the value %" PRId64, m_name.c_str(), value);
    }
    if (!EntryAvailable(entry)) {
      throw ACCESS_EXCEPTION("Node '%s': entry '%s' is not available", m_name.c_str(), entry->Symbolic().c_str());
    }
  }
  m_value.SetInt(*this, value, verify);
  ValueChanged();
}

void CEnumerationNode::GetSymbolics(StringList_t& Symbolics) {
  CEntryGuard guard(m_map);
  Symbolics.clear();
  for (CEnumEntryNode* entry : m_entries) {
    if (EntryAvailable(entry)) Symbolics.push_back(entry->Symbolic());
  }
}

void CEnumerationNode::GetEntries(NodeList_t& Entries) {
  CEntryGuard guard(m_map);
  Entries.assign(m_entries.begin(), m_entries.end());
}

void CEnumerationNode::SetIntValue(int64_t Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(std::to_string(Value));
  SetInt(Value, Verify);
}

int64_t CEnumerationNode::GetIntValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const int64_t value = GetInt(Verify, IgnoreCache);
  if (Verify && ByValue(value) == nullptr) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': the value %" PRId64 " matches no entry", m_name.c_str(), value);
  }
  return value;
}

IEnumEntry* CEnumerationNode::GetEntryByName(const gcstring& Symbolic) {
  CEntryGuard guard(m_map);
  return BySymbolic(Symbolic);
}

IEnumEntry* CEnumerationNode::GetEntry(int64_t IntValue) {
  CEntryGuard guard(m_map);
  return ByValue(IntValue);
}

IEnumEntry* CEnumerationNode::GetCurrentEntry(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  return ByValue(GetIntValue(Verify, IgnoreCache));
}

gcstring CEnumerationNode::ToString(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  const int64_t value = GetIntValue(Verify, IgnoreCache);
  CEnumEntryNode* entry = ByValue(value);
  if (entry == nullptr) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': the value %" PRId64 " matches no entry", m_name.c_str(), value);
  }
  return entry->Symbolic();
}

void CEnumerationNode::FromString(const gcstring& ValueStr, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(ValueStr);
  CEnumEntryNode* entry = BySymbolic(ValueStr);
  if (entry == nullptr) {
    throw INVALID_ARGUMENT_EXCEPTION("Node '%s': no entry is named '%s'", m_name.c_str(), ValueStr.c_str());
  }
  if (Verify && !EntryAvailable(entry)) {
    throw ACCESS_EXCEPTION("Node '%s': entry '%s' is not available", m_name.c_str(), ValueStr.c_str());
  }
  SetInt(entry->Value(), Verify);
}

}  // namespace Engine
}  // namespace GenApi

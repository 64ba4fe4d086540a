// Boolean nodes: an integer value read as OnValue or OffValue.
#include "nodes/Boolean.h"

#include <cctype>
#include <cinttypes>

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CBooleanNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  if (m_value.Configure(*this, context, id, child, false)) return true;
  switch (id) {
  case EElement::OnValue: m_onValue = context.Integer(*this, child); return true;
  case EElement::OffValue: m_offValue = context.Integer(*this, child); return true;
  default: return CValueNode::ConfigureElement(context, id, child);
  }
}

bool CBooleanNode::Read(bool ignoreCache) {
  CDepthGuard depth(*this);
  const int64_t value = m_value.GetInt(*this, ignoreCache);
  if (value == m_onValue) return true;
  if (value == m_offValue) return false;
  throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is neither the on value %" PRId64
                               " nor the off value %" PRId64,
                               m_name.c_str(), value, m_onValue, m_offValue);
}

bool CBooleanNode::GetValue(bool, bool IgnoreCache) const {
  CEntryGuard guard(m_map);
  CBooleanNode& self = const_cast<CBooleanNode&>(*this);
  self.CheckReadable();
  return self.Read(IgnoreCache);
}

void CBooleanNode::SetValue(bool Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(Value ? "true" : "false");
  SetInt(Value ? 1 : 0, Verify);
}

int64_t CBooleanNode::GetInt(bool, bool ignoreCache) { return Read(ignoreCache) ? 1 : 0; }

void CBooleanNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  m_value.SetInt(*this, value != 0 ? m_onValue : m_offValue, verify);
  ValueChanged();
}

gcstring CBooleanNode::ToString(bool Verify, bool IgnoreCache) { return GetValue(Verify, IgnoreCache) ? "1" : "0"; }

void CBooleanNode::FromString(const gcstring& ValueStr, bool Verify) {
  std::string text(TrimSpaces(ValueStr));
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (text == "1" || text == "true") {
    SetValue(true, Verify);
  } else if (text == "0" || text == "false") {
    SetValue(false, Verify);
  } else {
    throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a boolean", m_name.c_str(), ValueStr.c_str());
  }
}

}  // namespace Engine
}  // namespace GenApi

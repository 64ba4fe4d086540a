// Register nodes: raw bytes, shown as hexadecimal text.
#include "nodes/RawRegister.h"

#include "base/NumberParsing.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

gcstring CRawRegisterNode::ToString(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  const int64_t length = GetLength();
  std::vector<uint8_t> bytes(static_cast<size_t>(length));
  Get(bytes.data(), length, Verify, IgnoreCache);
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text = "0x";
  for (uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return gcstring(text);
}

void CRawRegisterNode::FromString(const gcstring& ValueStr, bool Verify) {
  std::string_view text = TrimSpaces(ValueStr);
  if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.remove_prefix(2);
  if (text.size() % 2 != 0) throw INVALID_ARGUMENT_EXCEPTION("Node '%s': odd number of hex digits", m_name.c_str());
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    int64_t value = 0;
    if (!ParseInteger(std::string("0x") + std::string(text.substr(i, 2)), value)) {
      throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not hexadecimal", m_name.c_str(), ValueStr.c_str());
    }
    bytes.push_back(static_cast<uint8_t>(value));
  }
  Set(bytes.data(), static_cast<int64_t>(bytes.size()), Verify);
}

}  // namespace Engine
}  // namespace GenApi

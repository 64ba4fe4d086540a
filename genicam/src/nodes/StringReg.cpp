// StringReg: text in port memory, padded with zero bytes.
#include "nodes/StringReg.h"

#include <cinttypes>
#include <cstring>

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

std::string CStringRegNode::GetStr(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  std::vector<uint8_t> bytes(static_cast<size_t>(length));
  m_core.Read(*this, bytes.data(), length, ignoreCache);
  size_t end = 0;
  while (end < bytes.size() && bytes[end] != 0) ++end;
  return std::string(reinterpret_cast<const char*>(bytes.data()), end);
}

void CStringRegNode::SetStr(const std::string& value, bool) {
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  if (static_cast<int64_t>(value.size()) > length) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': a string of %zu characters does not fit %" PRId64 " bytes", m_name.c_str(),
                                 value.size(), length);
  }
  std::vector<uint8_t> bytes(static_cast<size_t>(length), 0);
  std::memcpy(bytes.data(), value.data(), value.size());
  m_core.Write(*this, bytes.data(), length);
  ValueChanged();
}

int64_t CStringRegNode::GetMaxLength() {
  CEntryGuard guard(m_map);
  CDepthGuard depth(*this);
  return m_core.Length();
}

}  // namespace Engine
}  // namespace GenApi

// CStringBase: public entry points of string-valued nodes.
#include "nodes/StringBase.h"

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

void CStringBase::SetValue(const gcstring& Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable("'" + Value.substr(0, 64) + "'");
  SetStr(Value, Verify);
}

gcstring CStringBase::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  return gcstring(GetStr(Verify, IgnoreCache));
}

}  // namespace Engine
}  // namespace GenApi

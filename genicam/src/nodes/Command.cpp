// Command nodes: Execute writes the command value; IsDone reads until the value differs.
#include "nodes/Command.h"

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CCommandNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  if (m_value.Configure(*this, context, id, child, false)) return true;
  switch (id) {
  case EElement::CommandValue: context.IntRef(*this, child, false, m_commandValue); return true;
  case EElement::pCommandValue: context.IntRef(*this, child, true, m_commandValue); return true;
  default: return CValueNode::ConfigureElement(context, id, child);
  }
}

int64_t CCommandNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetInt(*this, ignoreCache);
}

void CCommandNode::Execute(bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable();
  CDepthGuard depth(*this);
  const int64_t commandValue = m_commandValue.present ? m_commandValue.Get() : 1;
  m_value.SetInt(*this, commandValue, Verify);
  ValueChanged();
}

bool CCommandNode::IsDone(bool) {
  CEntryGuard guard(m_map);
  CDepthGuard depth(*this);
  const EAccessMode mode = m_value.AccessMode(*this);
  if (mode != RO && mode != RW) return true;
  const int64_t commandValue = m_commandValue.present ? m_commandValue.Get() : 1;
  const bool done = m_value.GetInt(*this, true) != commandValue;
  if (done) ValueChanged();
  return done;
}

gcstring CCommandNode::ToString(bool, bool) {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s': a command has no value text", m_name.c_str());
}

void CCommandNode::FromString(const gcstring&, bool) {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s': a command has no value text", m_name.c_str());
}

}  // namespace Engine
}  // namespace GenApi

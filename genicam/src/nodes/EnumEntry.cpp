// EnumEntry nodes: one value of an enumeration.
#include "nodes/EnumEntry.h"

#include <cinttypes>

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CEnumEntryNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::Value: m_value = context.Integer(*this, child); return true;
  case EElement::NumericValue:
    m_numericValue = context.Float(*this, child);
    m_hasNumericValue = true;
    return true;
  case EElement::Symbolic: m_symbolic = std::string(CLoadContext::Text(child)); return true;
  case EElement::IsSelfClearing: m_isSelfClearing = context.YesNo(*this, child); return true;
  default: return CValueNode::ConfigureElement(context, id, child);
  }
}

void CEnumEntryNode::FromString(const gcstring&, bool) {
  throw ACCESS_EXCEPTION("Node '%s': an enumeration entry cannot be written", m_name.c_str());
}

}  // namespace Engine
}  // namespace GenApi

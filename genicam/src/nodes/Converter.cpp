// Converter nodes: the increment of linear converters.
#include "nodes/Converter.h"

#include <cmath>

namespace GenApi {
namespace Engine {

bool CConverterNode::HasFloatInc() {
  if (!m_core.isLinear || !m_core.target->IsNumeric()) return false;
  return m_core.target->IsFloatValued() ? m_core.target->HasFloatInc() : true;
}

double CConverterNode::GetFloatInc() {
  if (!HasFloatInc()) return 0.0;
  const double base = m_core.target->GetFloatMin();
  const double step = m_core.target->IsFloatValued() ? m_core.target->GetFloatInc()
                                                     : static_cast<double>(m_core.target->GetIntInc());
  return std::fabs(From(base + step, false) - From(base, false));
}

}  // namespace Engine
}  // namespace GenApi

#pragma once
// CConverterValueNode<TBase, T>: what Converter (over CFloatBase, in double) and IntConverter (over CIntegerBase, in
// int64_t) share: FormulaFrom maps the target's value TO to the user value, FormulaTo the user value FROM back; the
// limits are the target's limits converted, the smaller one first whatever the slope.
#include <algorithm>
#include <limits>
#include <string>
#include <type_traits>

#include "nodes/ConverterCore.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

template <class TBase, class T>
class CConverterValueNode : public TBase {
public:
  CConverterValueNode(CNodeMapImpl& map, std::string name, EInterfaceType principal)
      : TBase(map, std::move(name), principal), m_core(this, std::is_integral<T>::value) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override {
    if (m_core.Configure(*this, context, id, child)) return true;
    return TBase::ConfigureElement(context, id, child);
  }
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return m_core.target->ComputeAccessMode(); }

protected:
  // The user value of a target value (FormulaFrom).
  T From(T to, bool ignoreCache) {
    const T externals[4] = {T(), to, T(), T()};
    return m_core.set.template Evaluate<T>(m_core.programFrom, externals, ignoreCache);
  }
  T Read(bool ignoreCache) {
    CDepthGuard depth(*this);
    if constexpr (std::is_integral<T>::value) return From(m_core.target->GetInt(false, ignoreCache), ignoreCache);
    else return From(m_core.target->GetFloat(false, ignoreCache), ignoreCache);
  }
  // Writes the value through FormulaTo (the caller has verified it when asked).
  void Write(T value, bool verify) {
    CDepthGuard depth(*this);
    const T externals[4] = {value, T(), T(), T()};
    const T converted = m_core.set.template Evaluate<T>(m_core.programTo, externals, false);
    if constexpr (std::is_integral<T>::value) m_core.target->SetInt(converted, verify);
    else m_core.target->SetFloat(converted, verify);
    this->ValueChanged();
  }
  // A monotonic conversion of [min, max] spans [min(a, b), max(a, b)] whatever its direction.
  T ConvertedLimit(bool upper) {
    if (!m_core.target->IsNumeric()) return upper ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
    T a, b;
    if constexpr (std::is_integral<T>::value) {
      a = From(m_core.target->GetIntMin(), false);
      b = From(m_core.target->GetIntMax(), false);
    } else {
      a = From(m_core.target->GetFloatMin(), false);
      b = From(m_core.target->GetFloatMax(), false);
    }
    return upper ? std::max(a, b) : std::min(a, b);
  }

  CConverterCore m_core;
};

}  // namespace Engine
}  // namespace GenApi

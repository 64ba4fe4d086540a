#pragma once
// CNumberNode<TBase, T>: what Integer (over CIntegerBase, int64_t) and Float (over CFloatBase, double) share: the value
// source, Min/Max/Inc and their p-forms, and limits taken from the node that holds the value when they are absent.
#include <limits>
#include <string>
#include <type_traits>

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"
#include "nodes/SourcedNode.h"

namespace GenApi {
namespace Engine {

template <class TBase, class T>
class CNumberNode : public CSourcedNode<TBase> {
public:
  using CSourcedNode<TBase>::CSourcedNode;
  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override {
    if (this->m_value.Configure(*this, context, id, child, std::is_floating_point<T>::value)) return true;
    if (context.Limits(*this, id, child, m_min, m_max, m_inc)) return true;
    return TBase::ConfigureElement(context, id, child);
  }

protected:
  using TRef = std::conditional_t<std::is_integral<T>::value, CIntRef, CFloatRef>;

  T Read(bool ignoreCache) {
    CDepthGuard depth(*this);
    if constexpr (std::is_integral<T>::value) return this->m_value.GetInt(*this, ignoreCache);
    else return this->m_value.GetFloat(*this, ignoreCache);
  }
  // Writes the value (the caller has verified it when asked).
  void Write(T value, bool verify) {
    CDepthGuard depth(*this);
    if constexpr (std::is_integral<T>::value) this->m_value.SetInt(*this, value, verify);
    else this->m_value.SetFloat(*this, value, verify);
    this->ValueChanged();
  }
  // The node's own Min or Max, else that of the node holding the value, else the whole range.
  T Limit(const TRef& own, bool upper) {
    if (own.present) return own.Get();
    CNode* target = this->m_value.TargetNode();
    if (target == nullptr || !target->IsNumeric()) {
      return upper ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
    }
    if constexpr (std::is_integral<T>::value) return upper ? target->GetIntMax() : target->GetIntMin();
    else return upper ? target->GetFloatMax() : target->GetFloatMin();
  }

  TRef m_min, m_max, m_inc;
};

}  // namespace Engine
}  // namespace GenApi

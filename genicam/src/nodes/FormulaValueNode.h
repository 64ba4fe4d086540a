#pragma once
// CFormulaValueNode<TBase>: what SwissKnife (over CFloatBase) and IntSwissKnife (over CIntegerBase) share: the formula
// and its variables, read-only access, and the refusal of writes.
#include <string>

#include "nodes/NodeMap.h"
#include "nodes/SwissKnifeCore.h"

namespace GenApi {
namespace Engine {

template <class TBase>
class CFormulaValueNode : public TBase {
public:
  CFormulaValueNode(CNodeMapImpl& map, std::string name, EInterfaceType principal, bool integerMode)
      : TBase(map, std::move(name), principal), m_core(this, integerMode) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override {
    if (m_core.Configure(*this, context, id, child)) return true;
    return TBase::ConfigureElement(context, id, child);
  }
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return RO; }

protected:
  // The formula's value in the set's arithmetic (int64_t or double).
  template <class T>
  T Evaluate(bool ignoreCache) {
    CDepthGuard depth(*this);
    return m_core.set.template Evaluate<T>(m_core.program, nullptr, ignoreCache);
  }
  [[noreturn]] void RefuseWrite() const {
    throw ACCESS_EXCEPTION("Node '%s' is not writable (a formula)", this->Name().c_str());
  }

  CSwissKnifeCore m_core;
};

}  // namespace Engine
}  // namespace GenApi

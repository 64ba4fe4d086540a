#pragma once
// CSourcedNode<TBase>: a value node whose value lives in a CValueSource (Integer, Float, Boolean, Command, String,
// Enumeration): its access mode and cache state are those of the source, and it must have one.
#include <string>

#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

template <class TBase>
class CSourcedNode : public TBase {
public:
  using TBase::TBase;
  void FinishLoading(CLoadContext& context) override { m_value.Check(*this, context, CXmlElement()); }
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  bool CacheValid() const override {
    return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CSourcedNode&>(*this));
  }

protected:
  CValueSource m_value;
};

}  // namespace Engine
}  // namespace GenApi

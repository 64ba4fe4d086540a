#pragma once
// CRegisterNode<TBase>: a node backed by port memory. TBase brings the value interface with its plumbing (CValueNode for
// raw registers, CIntegerBase, CFloatBase, CStringBase); this adds IRegister, the register elements and the byte cache.
#include <cstdint>
#include <string>

#include "nodes/RegisterCore.h"

namespace GenApi {
namespace Engine {

template <class TBase>
class CRegisterNode : public TBase, public virtual IRegister {
public:
  CRegisterNode(CNodeMapImpl& map, std::string name, EInterfaceType principal)
      : TBase(map, std::move(name), principal) {}

  // IRegister
  void Set(const uint8_t* pBuffer, int64_t Length, bool = true) override { m_core.SetBytes(*this, pBuffer, Length); }
  void Get(uint8_t* pBuffer, int64_t Length, bool = false, bool IgnoreCache = false) override {
    m_core.GetBytes(*this, pBuffer, Length, IgnoreCache);
  }
  int64_t GetLength() override { return m_core.PublicLength(*this); }
  int64_t GetAddress() override { return m_core.PublicAddress(*this); }

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override {
    if (m_core.Configure(*this, context, id, child)) return true;
    return TBase::ConfigureElement(context, id, child);
  }
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return m_core.AccessMode(); }
  void DropCache() override { m_core.Drop(); }
  bool HasCache() const override { return m_core.Caching() != NoCache; }
  bool CacheValid() const override { return m_core.Valid() && m_core.Caching() != NoCache; }
  ECachingMode GetCachingMode() const override { return m_core.Caching(); }
  bool IsVolatile() const override { return m_core.Caching() == NoCache || TBase::IsVolatile(); }
  CRegisterCore* RegisterCore() override { return &m_core; }

protected:
  CRegisterCore m_core;
};

}  // namespace Engine
}  // namespace GenApi

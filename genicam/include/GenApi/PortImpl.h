#pragma once
// CPortImpl: base class of user ports. Derive, implement GetAccessMode, Read and Write, and connect an instance with
// CNodeMapRef::_Connect(port, "PortNodeName"). Exceptions thrown by Read/Write reach the caller of the feature access.
#include <GenApi/Interfaces.h>

namespace GenApi {

class GENICAM_API CPortImpl : public IPortConstruct, public IPortReplay {
public:
  CPortImpl();
  ~CPortImpl() override;

  // Remembers the Port node this port serves (called by the node map on connection).
  void SetPortImpl(IPort* pPort) override;
  EYesNo GetSwapEndianess() override;
  // Writes every recorded entry to this port, then (when asked) drops every value cached from it.
  void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) override;
  // Drops the cached values of every register read through this port.
  virtual void InvalidateNode();

protected:
  IPort* m_pPortNode;
};

}  // namespace GenApi

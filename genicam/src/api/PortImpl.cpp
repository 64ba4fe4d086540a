// CPortImpl: the base of user ports.
#include <GenApi/PortImpl.h>

namespace GenApi {

CPortImpl::CPortImpl() : m_pPortNode(nullptr) {}
CPortImpl::~CPortImpl() = default;

void CPortImpl::SetPortImpl(IPort* pPort) { m_pPortNode = pPort; }

EYesNo CPortImpl::GetSwapEndianess() { return No; }

void CPortImpl::Replay(IPortWriteList* pPortRecorder, bool Invalidate) {
  if (pPortRecorder != nullptr) pPortRecorder->Replay(this);
  if (Invalidate) InvalidateNode();
}

void CPortImpl::InvalidateNode() {
  if (auto* node = dynamic_cast<INode*>(m_pPortNode)) node->InvalidateNode();
}

}  // namespace GenApi

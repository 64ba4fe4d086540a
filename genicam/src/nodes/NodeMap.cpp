// CNodeMapImpl: node ownership, lookup, connection of ports, change propagation, polling, locking.
#include "nodes/NodeMap.h"

#include <algorithm>

#include "formula/Formula.h"
#include "nodes/Port.h"

namespace GenApi {
namespace Engine {

CNodeMapImpl::CNodeMapImpl(std::string deviceName) : m_deviceName(std::move(deviceName)) {}

CNodeMapImpl::~CNodeMapImpl() {
  std::vector<IMapObserver*> observers;
  {
    CEntryGuard guard(*this);
    observers.swap(m_observers);
  }
  for (IMapObserver* observer : observers) observer->NodeMapDestroyed();
}

void CNodeMapImpl::AddObserver(IMapObserver* observer) {
  CEntryGuard guard(*this);
  m_observers.push_back(observer);
}

void CNodeMapImpl::RemoveObserver(IMapObserver* observer) {
  CEntryGuard guard(*this);
  m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer), m_observers.end());
}

void CNodeMapImpl::Enter() const {
  m_lock.Lock();
  ++m_entryDepth;
}

void CNodeMapImpl::Leave() const {
  if (m_entryDepth == 1 && !m_pendingNotify.empty()) {
    // Still counted as inside: callbacks that use the node map enter and leave at depth 2 and flush nothing.
    FlushNotifications();
  }
  --m_entryDepth;
  m_lock.Unlock();
}

namespace {
struct CPendingCall {
  CNode* node;
  CNodeCallback* callback;
};

// A callback may deregister itself or another one: call only those still registered.
void Call(const CPendingCall& call, ECallbackType type) {
  const auto& registered = call.node->m_callbacks;
  if (std::find(registered.begin(), registered.end(), call.callback) == registered.end()) return;
  try {
    (*call.callback)(type);
  } catch (...) {
    // A failing application callback must not break the access that triggered it.
  }
}
}  // namespace

void CNodeMapImpl::FlushNotifications() const {
  std::vector<CNode*> nodes;
  nodes.swap(m_pendingNotify);
  std::vector<CPendingCall> inside;
  std::vector<CPendingCall> outside;
  for (CNode* node : nodes) {
    node->m_notifyPending = false;
    for (CNodeCallback* callback : node->m_callbacks) {
      (callback->GetCallbackType() == cbPostOutsideLock ? outside : inside).push_back({node, callback});
    }
  }
  for (const CPendingCall& call : inside) Call(call, cbPostInsideLock);
  if (outside.empty()) return;
  // Release the lock for the outside callbacks, then take it back as it was.
  const int depth = m_entryDepth;
  m_entryDepth = 0;
  m_lock.Unlock();
  for (const CPendingCall& call : outside) Call(call, cbPostOutsideLock);
  m_lock.Lock();
  m_entryDepth = depth;
}

void CNodeMapImpl::GetNodes(NodeList_t& Nodes) const {
  CEntryGuard guard(*this);
  Nodes.assign(m_named.begin(), m_named.end());
}

INode* CNodeMapImpl::GetNode(const gcstring& Name) const {
  CEntryGuard guard(*this);
  return Find(Name);
}

CNode* CNodeMapImpl::Find(std::string_view name) const {
  const auto it = m_index.find(name);
  return it == m_index.end() ? nullptr : it->second;
}

bool CNodeMapImpl::AddNode(std::unique_ptr<CNode> node, bool named) {
  CNode* raw = node.get();
  if (named) {
    if (!m_index.emplace(std::string_view(raw->Name()), raw).second) return false;
    m_named.push_back(raw);
  }
  m_all.push_back(std::move(node));
  return true;
}

void CNodeMapImpl::InvalidateNodes() const {
  CEntryGuard guard(*this);
  for (const auto& node : m_all) {
    node->DropCache();
    node->m_accessCacheValid = false;
    if (!node->m_callbacks.empty() && !node->m_notifyPending) {
      node->m_notifyPending = true;
      m_pendingNotify.push_back(node.get());
    }
  }
}

bool CNodeMapImpl::Connect(IPort* pPort, const gcstring& PortName) const {
  CEntryGuard guard(*this);
  auto* port = dynamic_cast<CPortNode*>(Find(PortName));
  if (port == nullptr) return false;
  port->ConnectPort(pPort);
  if (auto* construct = dynamic_cast<IPortConstruct*>(pPort)) construct->SetPortImpl(port);
  const_cast<CNodeMapImpl*>(this)->PropagateChange(port, true);
  return true;
}

bool CNodeMapImpl::Connect(IPort* pPort) const { return Connect(pPort, "Device"); }

void CNodeMapImpl::Poll(int64_t ElapsedTime) {
  CEntryGuard guard(*this);
  for (CNode* node : m_polled) {
    node->m_pollElapsed += ElapsedTime;
    if (node->m_pollElapsed >= node->GetPollingTime()) {
      node->m_pollElapsed = 0;
      PropagateChange(node, true);
    }
  }
}

bool CNodeMapImpl::ParseSwissKnife(const gcstring& Expression) const {
  return CFormulaSet::CheckSyntax(Expression, true);
}

void CNodeMapImpl::GetSchemaVersion(int64_t& Major, int64_t& Minor, int64_t& SubMinor) const {
  Major = m_schemaVersion[0];
  Minor = m_schemaVersion[1];
  SubMinor = m_schemaVersion[2];
}

void CNodeMapImpl::GetDeviceVersion(int64_t& Major, int64_t& Minor, int64_t& SubMinor) const {
  Major = m_deviceVersion[0];
  Minor = m_deviceVersion[1];
  SubMinor = m_deviceVersion[2];
}

void CNodeMapImpl::PropagateChange(CNode* origin, bool dropOrigin) {
  if (++m_epoch == 0) {
    for (const auto& node : m_all) node->m_visitEpoch = 0;
    m_epoch = 1;
  }
  m_queue.clear();
  m_queue.push_back(origin);
  origin->m_visitEpoch = m_epoch;
  auto visit = [this](CNode* node) {
    if (node->m_visitEpoch != m_epoch) {
      node->m_visitEpoch = m_epoch;
      m_queue.push_back(node);
    }
  };
  for (size_t i = 0; i < m_queue.size(); ++i) {
    CNode* node = m_queue[i];
    if (node != origin || dropOrigin) node->DropCache();
    node->m_accessCacheValid = false;
    if (m_callbackCount > 0 && !node->m_callbacks.empty() && !node->m_notifyPending) {
      node->m_notifyPending = true;
      m_pendingNotify.push_back(node);
    }
    for (CNode* dependent : node->m_dependents) visit(dependent);
    for (CNode* invalidated : node->m_invalidates) visit(invalidated);
    if (node->m_pAddressGroup != nullptr) {
      for (CNode* sibling : *node->m_pAddressGroup) visit(sibling);
    }
  }
}

}  // namespace Engine
}  // namespace GenApi

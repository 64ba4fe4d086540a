#pragma once
// CNodeMapImpl: owns the nodes of one description, the name index, the lock and the change propagation.
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <GenApi/INodeMap.h>

#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

class CPortNode;

// Told when the node map goes away (chunk adapters hold a node map they do not own).
class IMapObserver {
public:
  virtual void NodeMapDestroyed() = 0;

protected:
  ~IMapObserver() = default;
};

class CNodeMapImpl : public INodeMap, public IDestroy {
public:
  explicit CNodeMapImpl(std::string deviceName);
  ~CNodeMapImpl() override;

  // INodeMap
  void GetNodes(NodeList_t& Nodes) const override;
  INode* GetNode(const gcstring& Name) const override;
  void InvalidateNodes() const override;
  bool Connect(IPort* pPort, const gcstring& PortName) const override;
  bool Connect(IPort* pPort) const override;
  gcstring GetDeviceName() override { return m_deviceName; }
  void Poll(int64_t ElapsedTime) override;
  CLock& GetLock() const override { return m_lock; }
  uint64_t GetNumNodes() const override { return m_named.size(); }
  bool ParseSwissKnife(const gcstring& Expression) const override;
  gcstring GetModelName() const override { return m_modelName; }
  gcstring GetVendorName() const override { return m_vendorName; }
  EStandardNameSpace GetStandardNameSpace() const override { return m_standardNameSpace; }
  void GetSchemaVersion(int64_t& Major, int64_t& Minor, int64_t& SubMinor) const override;
  void GetDeviceVersion(int64_t& Major, int64_t& Minor, int64_t& SubMinor) const override;

  // IDestroy
  void Destroy() override { delete this; }

  // ---- engine-internal ----
  CNode* Find(std::string_view name) const;
  // Takes ownership; named nodes are entered into the index (false when the name is taken).
  bool AddNode(std::unique_ptr<CNode> node, bool named);
  const std::vector<CNode*>& NamedNodes() const { return m_named; }
  std::vector<std::unique_ptr<CNode>>& AllNodes() { return m_all; }
  std::vector<CPortNode*>& ChunkPorts() { return m_chunkPorts; }
  std::vector<CNode*>& PolledNodes() { return m_polled; }
  void AddObserver(IMapObserver* observer);
  void RemoveObserver(IMapObserver* observer);
  std::vector<std::unique_ptr<std::vector<CNode*>>>& AddressGroups() { return m_addressGroups; }

  // Invalidation and callbacks after a change of `origin` (its own cache is kept unless dropOrigin).
  void PropagateChange(CNode* origin, bool dropOrigin);
  void NoteCallbackRegistered() { ++m_callbackCount; }
  void NoteCallbackRemoved() { --m_callbackCount; }

  // Evaluation depth, guarded against cycles and hostile nesting.
  int& Depth() { return m_depth; }
  // The public entry points lock through this; callbacks registered as "outside lock" run when the outermost entry
  // point leaves.
  void Enter() const;
  void Leave() const;

  std::string m_modelName;
  std::string m_vendorName;
  std::string m_toolTip;
  EStandardNameSpace m_standardNameSpace = None;
  int64_t m_schemaVersion[3] = {0, 0, 0};
  int64_t m_deviceVersion[3] = {0, 0, 0};

private:
  // Fires the callbacks of the nodes collected during the outermost public call (each node once).
  void FlushNotifications() const;

  std::string m_deviceName;
  mutable CLock m_lock;
  std::vector<std::unique_ptr<CNode>> m_all;
  std::vector<CNode*> m_named;
  std::unordered_map<std::string_view, CNode*> m_index;
  std::vector<CPortNode*> m_chunkPorts;
  std::vector<CNode*> m_polled;
  std::vector<IMapObserver*> m_observers;
  std::vector<std::unique_ptr<std::vector<CNode*>>> m_addressGroups;
  uint32_t m_epoch = 0;
  std::vector<CNode*> m_queue;
  int m_depth = 0;
  int m_callbackCount = 0;
  mutable int m_entryDepth = 0;
  mutable std::vector<CNode*> m_pendingNotify;
};

// Locks the node map for one public call.
class CEntryGuard {
public:
  explicit CEntryGuard(const CNodeMapImpl& map) : m_map(map) { m_map.Enter(); }
  ~CEntryGuard() { m_map.Leave(); }
  CEntryGuard(const CEntryGuard&) = delete;
  CEntryGuard& operator=(const CEntryGuard&) = delete;

private:
  const CNodeMapImpl& m_map;
};

// Counts nested evaluations; a chain deeper than the limit is a cycle or a hostile description.
class CDepthGuard {
public:
  static constexpr int kMaxDepth = 200;
  explicit CDepthGuard(const CNode& node);
  ~CDepthGuard() { --m_depth; }
  CDepthGuard(const CDepthGuard&) = delete;
  CDepthGuard& operator=(const CDepthGuard&) = delete;

private:
  int& m_depth;
};

}  // namespace Engine
}  // namespace GenApi

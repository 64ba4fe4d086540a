#pragma once
// CNodeMapRef: the usual owner of a node map. Copies share the same node map; the last copy destroys it.
#include <cstddef>
#include <memory>

#include <GenApi/INodeMap.h>
#include <GenApi/NodeMapFactory.h>

namespace GenApi {

class GENICAM_API CNodeMapRef {
public:
  explicit CNodeMapRef(const gcstring& DeviceName = "Device");
  // Takes ownership of a node map made by CNodeMapFactory::CreateNodeMap.
  CNodeMapRef(INodeMap* pNodeMap, const gcstring& DeviceName = "Device");
  CNodeMapRef(const CNodeMapRef&);
  CNodeMapRef& operator=(const CNodeMapRef&);
  virtual ~CNodeMapRef();

  // Each load builds the node map; loading into a reference that already holds one raises a RuntimeException
  // ("Node map already created").
  void _LoadXMLFromFile(const gcstring& FileName);
  void _LoadXMLFromZIPFile(const gcstring& ZipFileName);
  void _LoadXMLFromZIPData(const void* zipData, size_t zipSize);
  void _LoadXMLFromString(const gcstring& XmlData);
  void _LoadXMLFromFactory(CNodeMapFactory& Factory);
  // Takes ownership of a node map made by CNodeMapFactory::CreateNodeMap (same rule as the loads).
  void _Attach(INodeMap* pNodeMap);
  // Releases this reference's share of the node map.
  void _Destroy();

  gcstring _GetDeviceName() const;
  void _Poll(int64_t ElapsedTime);
  void _GetNodes(NodeList_t& Nodes) const;
  // The node of that name; null when there is none or nothing is loaded.
  INode* _GetNode(const gcstring& Name) const;
  bool _Connect(IPort* pPort, const gcstring& PortName) const;
  bool _Connect(IPort* pPort) const;
  void _InvalidateNodes() const;
  bool _IsEmpty() const { return _Ptr == nullptr; }
  operator INodeMap*() const { return _Ptr; }

  // The node map, null until loaded.
  INodeMap* _Ptr;

private:
  void TakeOver(INodeMap* pNodeMap);
  std::shared_ptr<INodeMap> m_holder;
  gcstring m_deviceName;
};

}  // namespace GenApi

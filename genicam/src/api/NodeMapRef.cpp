// CNodeMapRef: shared ownership of a node map and the load entry points.
#include <GenApi/NodeMapRef.h>

namespace GenApi {

CNodeMapRef::CNodeMapRef(const gcstring& DeviceName) : _Ptr(nullptr), m_deviceName(DeviceName) {}

CNodeMapRef::CNodeMapRef(INodeMap* pNodeMap, const gcstring& DeviceName) : _Ptr(nullptr), m_deviceName(DeviceName) {
  if (pNodeMap != nullptr) TakeOver(pNodeMap);
}

CNodeMapRef::CNodeMapRef(const CNodeMapRef&) = default;
CNodeMapRef& CNodeMapRef::operator=(const CNodeMapRef&) = default;
CNodeMapRef::~CNodeMapRef() = default;

void CNodeMapRef::TakeOver(INodeMap* pNodeMap) {
  if (_Ptr != nullptr) {
    if (auto* destroy = dynamic_cast<IDestroy*>(pNodeMap)) destroy->Destroy();
    throw RUNTIME_EXCEPTION("Node map already created");
  }
  m_holder = std::shared_ptr<INodeMap>(pNodeMap, [](INodeMap* map) {
    if (auto* destroy = dynamic_cast<IDestroy*>(map)) destroy->Destroy();
  });
  _Ptr = pNodeMap;
}

void CNodeMapRef::_LoadXMLFromFile(const gcstring& FileName) {
  if (_Ptr != nullptr) throw RUNTIME_EXCEPTION("Node map already created");
  CNodeMapFactory factory(ContentType_Xml, FileName);
  TakeOver(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromZIPFile(const gcstring& ZipFileName) {
  if (_Ptr != nullptr) throw RUNTIME_EXCEPTION("Node map already created");
  CNodeMapFactory factory(ContentType_ZippedXml, ZipFileName);
  TakeOver(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromZIPData(const void* zipData, size_t zipSize) {
  if (_Ptr != nullptr) throw RUNTIME_EXCEPTION("Node map already created");
  CNodeMapFactory factory(ContentType_ZippedXml, zipData, zipSize);
  TakeOver(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromString(const gcstring& XmlData) {
  if (_Ptr != nullptr) throw RUNTIME_EXCEPTION("Node map already created");
  CNodeMapFactory factory(ContentType_Xml, XmlData.data(), XmlData.size());
  TakeOver(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromFactory(CNodeMapFactory& Factory) {
  if (_Ptr != nullptr) throw RUNTIME_EXCEPTION("Node map already created");
  TakeOver(Factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_Attach(INodeMap* pNodeMap) {
  if (pNodeMap == nullptr) throw INVALID_ARGUMENT_EXCEPTION("Null node map");
  TakeOver(pNodeMap);
}

void CNodeMapRef::_Destroy() {
  m_holder.reset();
  _Ptr = nullptr;
}

gcstring CNodeMapRef::_GetDeviceName() const { return m_deviceName; }

void CNodeMapRef::_Poll(int64_t ElapsedTime) {
  if (_Ptr != nullptr) _Ptr->Poll(ElapsedTime);
}

void CNodeMapRef::_GetNodes(NodeList_t& Nodes) const {
  Nodes.clear();
  if (_Ptr != nullptr) _Ptr->GetNodes(Nodes);
}

INode* CNodeMapRef::_GetNode(const gcstring& Name) const { return _Ptr != nullptr ? _Ptr->GetNode(Name) : nullptr; }

bool CNodeMapRef::_Connect(IPort* pPort, const gcstring& PortName) const {
  return _Ptr != nullptr && _Ptr->Connect(pPort, PortName);
}

bool CNodeMapRef::_Connect(IPort* pPort) const { return _Ptr != nullptr && _Ptr->Connect(pPort); }

void CNodeMapRef::_InvalidateNodes() const {
  if (_Ptr != nullptr) _Ptr->InvalidateNodes();
}

}  // namespace GenApi

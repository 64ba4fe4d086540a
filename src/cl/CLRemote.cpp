#include "cl/CLRemote.h"

#include <GCBase/GCException.h>

namespace TALVIR {

CCLRemote::CCLRemote() = default;

CCLRemote::~CCLRemote() {
  // The node map goes first: it still refers to this port.
  m_nodeMap._Destroy();
  m_pCLPort.reset();
}

int CCLRemote::Open(const char* portId, const char* deviceId) {
  if (m_pCLPort || portId == nullptr || deviceId == nullptr) {
    return -1;
  }
  m_portId = portId;
  m_deviceId = deviceId;
  int result = 0;
  try {
    m_pCLPort = std::make_unique<CLProtocol::CCLPort>();
    m_pCLPort->Connect(m_deviceId, m_portId);
    m_xml = m_pCLPort->GetXML(true);
  } catch (const GenICam::GenericException&) {
    result = -2;
  } catch (const std::exception&) {
    result = -2;
  }
  if (result == 0 && m_xml.empty()) {
    result = -3;
  }
  if (result == 0) {
    try {
      m_nodeMap._LoadXMLFromString(m_xml);
      GenApi::NodeList_t nodes;
      static_cast<GenApi::INodeMap*>(m_nodeMap)->GetNodes(nodes);
      // Every port node of the description is served by this one serial link.
      for (GenApi::INode* node : nodes) {
        if (node->GetPrincipalInterfaceType() == GenApi::intfIPort) {
          m_nodeMap._Connect(this, node->GetName());
        }
      }
    } catch (const GenICam::GenericException&) {
      result = -4;
    } catch (const std::exception&) {
      result = -4;
    }
  }
  if (result != 0) {
    m_pCLPort.reset();
  }
  return result;
}

GenApi::EAccessMode CCLRemote::GetAccessMode() const { return m_pCLPort ? m_pCLPort->GetAccessMode() : GenApi::NA; }

void CCLRemote::Read(void* buffer, int64_t address, int64_t length) {
  if (m_pCLPort) {
    m_pCLPort->Read(buffer, address, length);
  }
}

void CCLRemote::Write(const void* buffer, int64_t address, int64_t length) {
  if (m_pCLPort) {
    m_pCLPort->Write(buffer, address, length);
  }
}

std::string CCLRemote::GetXmlFileName() { return m_deviceId; }

std::string CCLRemote::GetXmlFileExtension() { return "xml"; }

std::string CCLRemote::GetXmlData() { return m_xml; }

GenApi::INodeMap* CCLRemote::GetNodeMap() {
  return m_xml.empty() ? nullptr : static_cast<GenApi::INodeMap*>(m_nodeMap);
}

}  // namespace TALVIR

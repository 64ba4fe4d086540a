#pragma once
// The GenApi port over a Camera Link camera's serial link, and the holder of the camera's node map: it connects a
// CLProtocol port to the camera, downloads the description and serves every port node of it.
#include <talvir/IXml.h>

#include <CLProtocol/CLPort.h>
#include <GenApi/GenApi.h>

#include <memory>
#include <string>

namespace TALVIR {

class CCLRemote final : public GenApi::CPortImpl, public IXml {
public:
  CCLRemote();
  ~CCLRemote() override;
  CCLRemote(const CCLRemote&) = delete;
  CCLRemote& operator=(const CCLRemote&) = delete;

  // Connects, downloads the description and builds the node map. 0 on success; -1 already open or a null argument;
  // -2 connecting or downloading failed; -3 the description is empty; -4 the description does not load. After a
  // failure no link is held (the strings keep what they were given); a node map once loaded cannot be loaded again,
  // so the owner destroys the object after a failure.
  int Open(const char* portId, const char* deviceId);

  // The link's access mode; NA while there is none.
  GenApi::EAccessMode GetAccessMode() const override;
  // Forwarded to the link; while there is none they return at once and touch nothing.
  void Read(void* buffer, int64_t address, int64_t length) override;
  void Write(const void* buffer, int64_t address, int64_t length) override;

  // IXml: the device ID, "xml", the description text, and the node map (null while there is no description).
  std::string GetXmlFileName() override;
  std::string GetXmlFileExtension() override;
  std::string GetXmlData() override;
  GenApi::INodeMap* GetNodeMap() override;

private:
  std::unique_ptr<CLProtocol::CCLPort> m_pCLPort;
  std::string m_xml;
  std::string m_portId;
  std::string m_deviceId;
  GenApi::CNodeMapRef m_nodeMap{"Device"};
};

}  // namespace TALVIR

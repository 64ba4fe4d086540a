#pragma once
// The GenTL device module, with the standard device info of a camera.
#include "Camera.h"
#include "Info.h"
#include "Objects.h"
#include "RemotePort.h"

#include <memory>
#include <mutex>
#include <string>

namespace TalvirSim {

class CDataStream;
class CInterface;

// Standard device info of a camera, shared by IFGetDeviceInfo and DevGetInfo.
void CameraInfo(CSimCamera& camera, GenTL::DEVICE_INFO_CMD command, const SInfoOut& out);

// The GenTL device module. Events registered on it are the camera's (remote-device events, errors such as a loss).
class CDevice : public CBankPort {
public:
  CDevice(std::shared_ptr<CInterface> parent, std::shared_ptr<CSimCamera> camera, GenTL::DEVICE_ACCESS_FLAGS flags);
  void Init();  // registers the remote port's handle; needs shared_from_this
  CInterface* Parent() const { return m_interface.get(); }
  CSimCamera& Camera() { return *m_camera; }
  std::shared_ptr<CSimCamera> CameraPtr() { return m_camera; }
  void GetInfo(GenTL::DEVICE_INFO_CMD command, const SInfoOut& out);
  std::shared_ptr<CRemotePort> RemotePort() { return m_remote; }
  uint32_t NumStreams() const { return 1; }
  std::string StreamId(uint32_t index);
  std::shared_ptr<CDataStream> OpenStream(const std::string& id);
  void StreamClosed();
  void Close();

  void ReadPort(uint64_t address, void* buffer, size_t length) override;
  void WritePort(uint64_t address, const void* buffer, size_t length) override;
  std::string PortId() override { return m_camera->Config().id; }
  std::string PortModuleName() override { return "TLDevice"; }

private:
  std::shared_ptr<CInterface> m_interface;
  std::shared_ptr<CSimCamera> m_camera;
  std::shared_ptr<CRemotePort> m_remote;
  bool m_writable;
  std::mutex m_mutex;
  std::weak_ptr<CDataStream> m_stream;
  bool m_closed = false;
};

}  // namespace TalvirSim

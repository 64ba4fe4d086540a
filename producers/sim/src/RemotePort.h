#pragma once
// The remote device's port: the camera's register file and description.
#include "Camera.h"
#include "Objects.h"

#include <memory>
#include <string>

namespace TalvirSim {

// The remote device's port, handed out by DevGetPort. Events registered on it are the camera's.
class CRemotePort : public CPortModule {
public:
  CRemotePort(std::shared_ptr<CSimCamera> camera, bool writable) : m_camera(std::move(camera)), m_writable(writable) {}
  void ReadPort(uint64_t address, void* buffer, size_t length) override { m_camera->Read(address, buffer, length); }
  void WritePort(uint64_t address, const void* buffer, size_t length) override {
    m_camera->Write(address, buffer, length, m_writable);
  }
  const SDescription& Description() override { return m_camera->Description(); }
  std::string PortId() override { return m_camera->Config().id + "-Port"; }
  std::string PortModuleName() override { return "Device"; }
  std::string PortVendor() override { return m_camera->Config().vendor; }
  std::string PortModel() override { return m_camera->Config().model; }
  std::string PortVersion() override { return m_camera->Config().version; }
  bool PortLittleEndian() override { return false; }
  bool PortWritable() override { return m_writable; }
  CSimCamera& Camera() { return *m_camera; }

private:
  std::shared_ptr<CSimCamera> m_camera;
  bool m_writable;
};

}  // namespace TalvirSim

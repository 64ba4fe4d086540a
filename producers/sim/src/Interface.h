#pragma once
// The GenTL interface module: the cameras one interface shows, and the devices opened on it.
#include "Camera.h"
#include "Info.h"
#include "Objects.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace TalvirSim {

class CDevice;
class CSystem;

class CInterface : public CBankPort, public CEventSource {
public:
  CInterface(std::shared_ptr<CSystem> system, size_t index);
  const std::string& Id() const { return m_id; }
  CSystem* Parent() const { return m_system.get(); }
  void GetInfo(GenTL::INTERFACE_INFO_CMD command, const SInfoOut& out);
  bool UpdateDeviceList(uint64_t timeoutMs);
  uint32_t NumDevices();
  std::string DeviceId(uint32_t index);
  void DeviceInfo(const std::string& id, GenTL::DEVICE_INFO_CMD command, const SInfoOut& out);
  std::shared_ptr<CDevice> OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS flags);
  void DeviceClosed(const std::string& id);
  void Close();

  std::string PortId() override { return m_id; }
  std::string PortModuleName() override { return "TLInterface"; }

private:
  std::shared_ptr<CSimCamera> FindCamera(const std::string& id);
  std::vector<std::shared_ptr<CSimCamera>> Visible();
  std::shared_ptr<CSystem> m_system;
  size_t m_index;
  std::string m_id;
  std::mutex m_mutex;
  std::vector<std::shared_ptr<CSimCamera>> m_visible;
  std::map<std::string, std::weak_ptr<CDevice>> m_open;
};

}  // namespace TalvirSim

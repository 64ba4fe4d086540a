#pragma once
// The GenTL system module: the transport layer with its interfaces.
#include "Info.h"
#include "Objects.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace TalvirSim {

class CInterface;

class CSystem : public CBankPort, public CEventSource {
public:
  CSystem();
  void GetInfo(GenTL::TL_INFO_CMD command, const SInfoOut& out);
  uint32_t NumInterfaces();
  std::string InterfaceId(uint32_t index);
  void InterfaceInfo(const std::string& id, GenTL::INTERFACE_INFO_CMD command, const SInfoOut& out);
  std::shared_ptr<CInterface> OpenInterface(const std::string& id);
  bool UpdateInterfaceList();
  void InterfaceClosed(const std::string& id);
  void CloseAll();

  std::string PortId() override;
  std::string PortModuleName() override { return "TLSystem"; }

private:
  size_t IndexOf(const std::string& id);
  std::mutex m_mutex;
  std::map<std::string, std::weak_ptr<CInterface>> m_open;
};

}  // namespace TalvirSim

#include "System.h"

#include "Interface.h"
#include "Library.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

namespace TalvirSim {

// ---- CSystem ----

CSystem::CSystem() {
  const SConfig& config = Lib().Config();
  m_description = ModuleDescription("TalvirSimSystem", EmbeddedXml("system.xml"));
  m_bank.AddString(0x1000, 256, [](size_t) { return Lib().Config().vendor; });
  m_bank.AddString(0x1100, 256, [](size_t) { return Lib().Config().model; });
  m_bank.AddString(0x1200, 256, [](size_t) { return Lib().Config().id; });
  m_bank.AddString(0x1300, 256, [](size_t) { return Lib().Config().version; });
  m_bank.AddString(0x1400, 256, [](size_t) { return Lib().Config().modulePath; });
  m_bank.AddString(0x1500, 256, [](size_t) { return Lib().Config().model + " (" + Lib().Config().tlType + ")"; });
  m_bank.AddInt(0x0000, 8, [](size_t) { return TransportTypeCode(Lib().Config().tlType, true); });
  m_bank.AddInt(0x0008, 8, [](size_t) { return uint64_t{1}; });
  m_bank.AddInt(0x0010, 8, [](size_t) { return uint64_t{5}; });
  m_bank.AddInt(
      0x0018, 8, [](size_t) { return uint64_t{0}; }, [](size_t, uint64_t) {});
  m_bank.AddStored(0x0020, 8, 0);
  m_bank.AddInt(0x0028, 8, [](size_t) { return static_cast<uint64_t>(Lib().Config().interfaces.size()); });
  m_bank.AddString(
      0x10000, 256, [](size_t index) { return Lib().Config().interfaces.at(index).id; }, config.interfaces.size(),
      0x100);
}

std::string CSystem::PortId() { return Lib().Config().id; }

void CSystem::GetInfo(GenTL::TL_INFO_CMD command, const SInfoOut& out) {
  const SConfig& config = Lib().Config();
  switch (command) {
  case GenTL::TL_INFO_ID: return PutString(out, config.id);
  case GenTL::TL_INFO_VENDOR: return PutString(out, config.vendor);
  case GenTL::TL_INFO_MODEL: return PutString(out, config.model);
  case GenTL::TL_INFO_VERSION: return PutString(out, config.version);
  case GenTL::TL_INFO_TLTYPE: return PutString(out, config.tlType);
  case GenTL::TL_INFO_NAME: return PutString(out, config.moduleName);
  case GenTL::TL_INFO_PATHNAME: return PutString(out, config.modulePath);
  case GenTL::TL_INFO_DISPLAYNAME: return PutString(out, config.model + " (" + config.tlType + ")");
  case GenTL::TL_INFO_CHAR_ENCODING: return PutI32(out, GenTL::TL_CHAR_ENCODING_ASCII);
  case GenTL::TL_INFO_GENTL_VER_MAJOR: return PutU32(out, 1);
  case GenTL::TL_INFO_GENTL_VER_MINOR: return PutU32(out, 5);
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown system info command " + std::to_string(command));
  }
}

uint32_t CSystem::NumInterfaces() { return static_cast<uint32_t>(Lib().Config().interfaces.size()); }

std::string CSystem::InterfaceId(uint32_t index) {
  const auto& interfaces = Lib().Config().interfaces;
  if (index >= interfaces.size()) {
    Fail(GenTL::GC_ERR_INVALID_INDEX,
         "interface index " + std::to_string(index) + " of " + std::to_string(interfaces.size()));
  }
  return interfaces[index].id;
}

size_t CSystem::IndexOf(const std::string& id) {
  const auto& interfaces = Lib().Config().interfaces;
  for (size_t i = 0; i < interfaces.size(); ++i) {
    if (interfaces[i].id == id) {
      return i;
    }
  }
  Fail(GenTL::GC_ERR_INVALID_ID, "no interface '" + id + "'");
}

void CSystem::InterfaceInfo(const std::string& id, GenTL::INTERFACE_INFO_CMD command, const SInfoOut& out) {
  const SInterfaceConfig& iface = Lib().Config().interfaces[IndexOf(id)];
  switch (command) {
  case GenTL::INTERFACE_INFO_ID: return PutString(out, iface.id);
  case GenTL::INTERFACE_INFO_DISPLAYNAME: return PutString(out, iface.displayName);
  case GenTL::INTERFACE_INFO_TLTYPE: return PutString(out, Lib().Config().tlType);
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown interface info command " + std::to_string(command));
  }
}

std::shared_ptr<CInterface> CSystem::OpenInterface(const std::string& id) {
  const size_t index = IndexOf(id);
  std::lock_guard<std::mutex> lock(m_mutex);
  auto it = m_open.find(id);
  if (it != m_open.end() && !it->second.expired()) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "the interface '" + id + "' is already open");
  }
  auto iface = std::make_shared<CInterface>(std::dynamic_pointer_cast<CSystem>(shared_from_this()), index);
  m_open[id] = iface;
  Lib().AddHandle(iface);
  return iface;
}

bool CSystem::UpdateInterfaceList() {
  const uint32_t delay = Lib().Config().interfaceListDelayMs;
  if (delay > 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(delay));
  }
  return false;  // the configured interfaces never change
}

void CSystem::InterfaceClosed(const std::string& id) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_open.erase(id);
}

void CSystem::CloseAll() {
  std::vector<std::shared_ptr<CInterface>> open;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& entry : m_open) {
      if (auto iface = entry.second.lock()) {
        open.push_back(iface);
      }
    }
  }
  for (auto& iface : open) {
    iface->Close();
  }
  UnregisterAll();
  Lib().RemoveHandle(Handle());
  Lib().SystemClosed();
}

}  // namespace TalvirSim

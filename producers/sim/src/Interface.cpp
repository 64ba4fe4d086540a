#include "Interface.h"

#include "Device.h"
#include "Library.h"
#include "System.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

namespace TalvirSim {
namespace {

// The 420-byte GigE device record of command 1001.
std::vector<uint8_t> GevDeviceRecord(const SDeviceConfig& config) {
  std::vector<uint8_t> record(420, 0);
  auto putAddress = [&](size_t at, const std::string& text) {
    // Network byte order: the first number of the dotted text is the first byte, as inet_ntop reads it.
    unsigned int parts[4];
    char extra = 0;
    if (std::sscanf(text.c_str(), "%u.%u.%u.%u%c", &parts[0], &parts[1], &parts[2], &parts[3], &extra) == 4 &&
        parts[0] < 256 && parts[1] < 256 && parts[2] < 256 && parts[3] < 256) {
      for (int i = 0; i < 4; ++i) {
        record[at + i] = static_cast<uint8_t>(parts[i]);
      }
    }
  };
  auto putText = [&](size_t at, size_t field, const std::string& text) {
    std::memcpy(&record[at], text.data(), std::min(text.size(), field - 1));
  };
  putAddress(0, config.ip);
  putText(4, 32, config.vendor);
  putText(36, 32, config.model);
  putText(68, 32, config.version);
  putAddress(100, config.hostIp);
  putAddress(104, config.subnet);
  unsigned int mac[6] = {0, 0, 0, 0, 0, 0};
  if (std::sscanf(config.mac.c_str(), "%x:%x:%x:%x:%x:%x", &mac[0], &mac[1], &mac[2], &mac[3], &mac[4], &mac[5]) == 6) {
    for (int i = 0; i < 6; ++i) {
      record[108 + i] = static_cast<uint8_t>(mac[i]);
    }
  }
  putAddress(116, config.gateway);
  putAddress(120, config.hostIp);
  putText(124, 260, config.interfaceText);
  putText(384, 16, config.serial);
  putText(400, 16, config.userName);
  const uint32_t access = static_cast<uint32_t>(config.accessStatus);
  std::memcpy(&record[416], &access, 4);
  return record;
}

}  // namespace

CInterface::CInterface(std::shared_ptr<CSystem> system, size_t index)
    : m_system(std::move(system)), m_index(index), m_id(Lib().Config().interfaces.at(index).id) {
  m_visible = Visible();
  m_description = ModuleDescription("TalvirSimInterface", EmbeddedXml("interface.xml"));
  const SInterfaceConfig& config = Lib().Config().interfaces.at(index);
  m_bank.AddString(0x1000, 256, [this](size_t) { return m_id; });
  m_bank.AddString(0x1100, 256, [&config](size_t) { return config.displayName; });
  m_bank.AddInt(0x0000, 8, [](size_t) { return TransportTypeCode(Lib().Config().tlType, true); });
  m_bank.AddInt(
      0x0008, 8, [](size_t) { return uint64_t{0}; },
      [this](size_t, uint64_t value) {
        if (value != 0) {
          UpdateDeviceList(0);
        }
      });
  m_bank.AddStored(0x0010, 8, 0);
  m_bank.AddInt(0x0018, 8, [this](size_t) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<uint64_t>(m_visible.size());
  });
  const size_t slots = std::max<size_t>(1, config.devices.size());
  auto cameraAt = [this](size_t slot) -> std::shared_ptr<CSimCamera> {
    std::lock_guard<std::mutex> lock(m_mutex);
    return slot < m_visible.size() ? m_visible[slot] : nullptr;
  };
  m_bank.AddString(
      0x10000, 256,
      [cameraAt](size_t i) {
        auto c = cameraAt(i);
        return c ? c->Config().id : std::string();
      },
      slots, 0x100);
  m_bank.AddString(
      0x20000, 256,
      [cameraAt](size_t i) {
        auto c = cameraAt(i);
        return c ? c->Config().vendor : std::string();
      },
      slots, 0x100);
  m_bank.AddString(
      0x30000, 256,
      [cameraAt](size_t i) {
        auto c = cameraAt(i);
        return c ? c->Config().model : std::string();
      },
      slots, 0x100);
  m_bank.AddString(
      0x40000, 256,
      [cameraAt](size_t i) {
        auto c = cameraAt(i);
        return c ? c->Config().serial : std::string();
      },
      slots, 0x100);
  m_bank.AddInt(
      0x50000, 8,
      [cameraAt](size_t i) {
        auto c = cameraAt(i);
        return c ? static_cast<uint64_t>(c->AccessStatus()) : 0;
      },
      {}, slots, 8);
}

std::vector<std::shared_ptr<CSimCamera>> CInterface::Visible() {
  std::vector<std::shared_ptr<CSimCamera>> visible;
  for (const auto& camera : Lib().Cameras(m_index)) {
    if (!camera->IsLost()) {
      visible.push_back(camera);
    }
  }
  return visible;
}

void CInterface::GetInfo(GenTL::INTERFACE_INFO_CMD command, const SInfoOut& out) {
  m_system->InterfaceInfo(m_id, command, out);
}

bool CInterface::UpdateDeviceList(uint64_t) {
  const uint32_t delay = Lib().Config().interfaces.at(m_index).enumerationDelayMs;
  if (delay > 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(delay));
  }
  auto visible = Visible();
  std::lock_guard<std::mutex> lock(m_mutex);
  const bool changed = visible != m_visible;
  m_visible = visible;
  return changed;
}

uint32_t CInterface::NumDevices() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return static_cast<uint32_t>(m_visible.size());
}

std::string CInterface::DeviceId(uint32_t index) {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (index >= m_visible.size()) {
    Fail(GenTL::GC_ERR_INVALID_INDEX,
         "device index " + std::to_string(index) + " of " + std::to_string(m_visible.size()));
  }
  return m_visible[index]->Config().id;
}

std::shared_ptr<CSimCamera> CInterface::FindCamera(const std::string& id) {
  std::lock_guard<std::mutex> lock(m_mutex);
  for (const auto& camera : m_visible) {
    if (camera->Config().id == id) {
      return camera;
    }
  }
  Fail(GenTL::GC_ERR_INVALID_ID, "no device '" + id + "' on interface '" + m_id + "'");
}

void CameraInfo(CSimCamera& camera, GenTL::DEVICE_INFO_CMD command, const SInfoOut& out) {
  const SDeviceConfig& config = camera.Config();
  switch (command) {
  case GenTL::DEVICE_INFO_ID: return PutString(out, config.id);
  case GenTL::DEVICE_INFO_VENDOR: return PutString(out, config.vendor);
  case GenTL::DEVICE_INFO_MODEL: return PutString(out, config.model);
  case GenTL::DEVICE_INFO_TLTYPE: return PutString(out, Lib().Config().tlType);
  case GenTL::DEVICE_INFO_DISPLAYNAME: return PutString(out, config.displayName);
  case GenTL::DEVICE_INFO_ACCESS_STATUS: return PutI32(out, camera.AccessStatus());
  case GenTL::DEVICE_INFO_USER_DEFINED_NAME: return PutString(out, config.userName);
  case GenTL::DEVICE_INFO_SERIAL_NUMBER: return PutString(out, config.serial);
  case GenTL::DEVICE_INFO_VERSION: return PutString(out, config.version);
  case GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY: return PutU64(out, config.timestampFrequency);
  default: break;
  }
  // A configured answer replaces the flavour's own, so that a test can make this producer mean something else by
  // a producer-specific command, as other makers' producers do.
  auto custom = config.customInfo.find(command);
  if (custom != config.customInfo.end() && custom->second.typed) {
    return PutBytes(out, custom->second.type, custom->second.bytes.data(), custom->second.bytes.size());
  }
  if (command == 1001 && Lib().Config().flavour == EFlavour::GEV) {
    if (config.faults.failDeviceRecord) {
      Fail(GenTL::GC_ERR_IO, "the device record cannot be read (failDeviceRecord)");
    }
    const std::vector<uint8_t> record = GevDeviceRecord(config);
    return PutBytes(out, GenTL::INFO_DATATYPE_BUFFER, record.data(), record.size());
  }
  if (custom != config.customInfo.end()) {
    if (custom->second.numeric) {
      return PutU64(out, custom->second.number);
    }
    return PutString(out, custom->second.text);
  }
  Fail(GenTL::GC_ERR_INVALID_ID, "unknown device info command " + std::to_string(command));
}

void CInterface::DeviceInfo(const std::string& id, GenTL::DEVICE_INFO_CMD command, const SInfoOut& out) {
  CameraInfo(*FindCamera(id), command, out);
}

std::shared_ptr<CDevice> CInterface::OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS flags) {
  std::shared_ptr<CSimCamera> camera = FindCamera(id);
  camera->Open(flags);
  std::shared_ptr<CDevice> device;
  try {
    device = std::make_shared<CDevice>(std::dynamic_pointer_cast<CInterface>(shared_from_this()), camera, flags);
    device->Init();
  } catch (...) {
    camera->Close();
    throw;
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  m_open[id] = device;
  return device;
}

void CInterface::DeviceClosed(const std::string& id) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_open.erase(id);
}

void CInterface::Close() {
  std::vector<std::shared_ptr<CDevice>> open;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& entry : m_open) {
      if (auto device = entry.second.lock()) {
        open.push_back(device);
      }
    }
  }
  for (auto& device : open) {
    device->Close();
  }
  UnregisterAll();
  Lib().RemoveHandle(Handle());
  m_system->InterfaceClosed(m_id);
}

}  // namespace TalvirSim

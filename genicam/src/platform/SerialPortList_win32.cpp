#include "platform/SerialPortList.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <setupapi.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace GenICam {
namespace Platform {
namespace {

// The device class of serial and parallel ports.
const GUID kPortsClass = {0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

// "COM" followed by a number: serial ports (the class also holds printer ports, "LPT1").
bool IsComName(const std::string& name) {
  if (name.size() < 4 || _strnicmp(name.c_str(), "COM", 3) != 0) {
    return false;
  }
  return std::all_of(name.begin() + 3, name.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

unsigned long PortNumber(const std::string& name) { return std::strtoul(name.c_str() + 3, nullptr, 10); }

// The port name ("COM3") that the device's own registry key holds.
std::string PortNameOf(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
  if (key == INVALID_HANDLE_VALUE || key == nullptr) {
    return {};
  }
  char name[256] = {};
  DWORD size = sizeof name - 1;
  DWORD type = 0;
  const LONG status = RegQueryValueExA(key, "PortName", nullptr, &type, reinterpret_cast<LPBYTE>(name), &size);
  RegCloseKey(key);
  if (status != ERROR_SUCCESS || type != REG_SZ) {
    return {};
  }
  return std::string(name, strnlen(name, sizeof name));
}

std::string TextProperty(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property) {
  char text[1024] = {};
  if (!SetupDiGetDeviceRegistryPropertyA(devices, &device, property, nullptr, reinterpret_cast<PBYTE>(text),
                                         sizeof text - 1, nullptr)) {
    return {};
  }
  return std::string(text, strnlen(text, sizeof text));
}

}  // namespace

std::vector<SSerialPortInfo> ListSystemSerialPorts() {
  std::vector<SSerialPortInfo> ports;
  // Present devices only: a port that is listed can be opened now.
  HDEVINFO devices = SetupDiGetClassDevsA(&kPortsClass, nullptr, nullptr, DIGCF_PRESENT);
  if (devices == nullptr || devices == INVALID_HANDLE_VALUE) {
    return ports;
  }
  for (DWORD index = 0;; ++index) {
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    if (!SetupDiEnumDeviceInfo(devices, index, &device)) {
      break;
    }
    const std::string name = PortNameOf(devices, device);
    if (!IsComName(name)) {
      continue;
    }
    std::string description = TextProperty(devices, device, SPDRP_FRIENDLYNAME);
    if (description.empty()) {
      description = TextProperty(devices, device, SPDRP_DEVICEDESC);
    }
    ports.push_back({name, description});
  }
  SetupDiDestroyDeviceInfoList(devices);
  // By number, so that COM2 comes before COM10.
  std::sort(ports.begin(), ports.end(), [](const SSerialPortInfo& a, const SSerialPortInfo& b) {
    return PortNumber(a.path) != PortNumber(b.path) ? PortNumber(a.path) < PortNumber(b.path) : a.path < b.path;
  });
  return ports;
}

bool IsTerminalDevice(const std::string& path) {
  // A serial device is one the system knows by that name in its device namespace ("COM3", "\\.\COM3").
  std::string name = path;
  if (name.rfind("\\\\.\\", 0) == 0) {
    name = name.substr(4);
  }
  if (name.empty() || name.find_first_of("\\/") != std::string::npos) {
    return false;
  }
  char target[1024] = {};
  return QueryDosDeviceA(name.c_str(), target, sizeof target) != 0;
}

}  // namespace Platform
}  // namespace GenICam

#include "platform/SerialFriendlyNames.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <setupapi.h>

#include <cstring>

namespace TALVIR::Platform {
namespace {

// The device class of serial and parallel ports.
const GUID kPortsClass = {0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

}  // namespace

std::vector<std::string> ListSerialPortFriendlyNames() {
  std::vector<std::string> names;
  // Flags 0: ports that are not present now are listed too (an adapter unplugged for the moment keeps its name).
  HDEVINFO devices = SetupDiGetClassDevsA(&kPortsClass, nullptr, nullptr, 0);
  // Only a null list counts as failure; the invalid-handle value makes the enumeration below find nothing, and
  // destroying it is then refused harmlessly.
  if (devices == nullptr) {
    return names;
  }
  for (DWORD index = 0;; ++index) {
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    if (!SetupDiEnumDeviceInfo(devices, index, &device)) {
      break;
    }
    char text[1024];
    std::memset(text, 0, sizeof text);
    if (!SetupDiGetDeviceRegistryPropertyA(devices, &device, SPDRP_FRIENDLYNAME, nullptr, reinterpret_cast<PBYTE>(text),
                                           sizeof text, nullptr)) {
      continue;
    }
    // A name that fills the whole buffer has no terminating zero: it ends where the buffer does.
    names.emplace_back(text, strnlen(text, sizeof text));
  }
  SetupDiDestroyDeviceInfoList(devices);
  return names;
}

}  // namespace TALVIR::Platform

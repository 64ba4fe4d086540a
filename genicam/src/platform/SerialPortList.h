#pragma once
// The PC's own serial ports as the system lists them.
#include <string>
#include <vector>

namespace GenICam {
namespace Platform {

struct SSerialPortInfo {
  std::string path;         // device file (/dev/ttyUSB0) or port name (COM3)
  std::string description;  // what the system says about it (adapter product name, or the device name)
};

// The ports that exist now: /dev/ttyS*, /dev/ttyUSB* and /dev/ttyACM* sorted by path on Linux, the COM ports of
// the Ports device class sorted by number on Windows.
std::vector<SSerialPortInfo> ListSystemSerialPorts();

// Whether `path` names a terminal device (used for pseudo-terminals named in settings); on Windows, whether the
// system knows a device of that name ("COM3").
bool IsTerminalDevice(const std::string& path);

}  // namespace Platform
}  // namespace GenICam

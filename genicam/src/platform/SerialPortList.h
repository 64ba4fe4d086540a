#pragma once
// The PC's own serial ports as the system lists them.
#include <string>
#include <vector>

namespace GenICam {
namespace Platform {

struct SSerialPortInfo {
  std::string path;         // device file, for example /dev/ttyUSB0
  std::string description;  // what the system says about it (adapter product name, or the device name)
};

// The ports /dev/ttyS*, /dev/ttyUSB* and /dev/ttyACM* that exist now, sorted by path.
std::vector<SSerialPortInfo> ListSystemSerialPorts();

// Whether `path` names an openable terminal device (used for pseudo-terminals named in settings).
bool IsTerminalDevice(const std::string& path);

}  // namespace Platform
}  // namespace GenICam

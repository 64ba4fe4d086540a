#include "platform/SerialFriendlyNames.h"

#include <libserialport.h>

#include <algorithm>
#include <cstring>

namespace TALVIR::Platform {

std::vector<std::string> ListSerialPortFriendlyNames() {
  std::vector<std::pair<std::string, std::string>> ports;
  sp_port** list = nullptr;
  if (sp_list_ports(&list) != SP_OK || list == nullptr) {
    return {};
  }
  for (size_t i = 0; list[i] != nullptr; ++i) {
    const char* name = sp_get_port_name(list[i]);
    if (name == nullptr) {
      continue;
    }
    const bool pcPort = std::strncmp(name, "/dev/ttyS", 9) == 0 || std::strncmp(name, "/dev/ttyUSB", 11) == 0 ||
                        std::strncmp(name, "/dev/ttyACM", 11) == 0;
    if (!pcPort) {
      continue;
    }
    const char* description = sp_get_port_description(list[i]);
    ports.emplace_back(name, description != nullptr && description[0] != '\0' ? description : name);
  }
  sp_free_port_list(list);
  std::sort(ports.begin(), ports.end());
  std::vector<std::string> names;
  for (const auto& port : ports) {
    names.push_back(port.second + " (" + port.first + ")");
  }
  return names;
}

}  // namespace TALVIR::Platform

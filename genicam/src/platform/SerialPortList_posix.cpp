#include "platform/SerialPortList.h"

#include <libserialport.h>

#include <sys/stat.h>

#include <algorithm>

namespace GenICam {
namespace Platform {
namespace {

bool IsPcSerialName(const std::string& path) {
  static const char* const kPrefixes[] = {"/dev/ttyS", "/dev/ttyUSB", "/dev/ttyACM"};
  for (const char* prefix : kPrefixes) {
    const std::string text = prefix;
    if (path.size() > text.size() && path.compare(0, text.size(), text) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::vector<SSerialPortInfo> ListSystemSerialPorts() {
  std::vector<SSerialPortInfo> ports;
  sp_port** list = nullptr;
  if (sp_list_ports(&list) != SP_OK || list == nullptr) {
    return ports;
  }
  for (size_t i = 0; list[i] != nullptr; ++i) {
    const char* name = sp_get_port_name(list[i]);
    if (name == nullptr || !IsPcSerialName(name)) {
      continue;
    }
    const char* description = sp_get_port_description(list[i]);
    ports.push_back({name, description != nullptr ? description : ""});
  }
  sp_free_port_list(list);
  std::sort(ports.begin(), ports.end(),
            [](const SSerialPortInfo& a, const SSerialPortInfo& b) { return a.path < b.path; });
  return ports;
}

bool IsTerminalDevice(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISCHR(info.st_mode);
}

}  // namespace Platform
}  // namespace GenICam

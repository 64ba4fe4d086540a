#include "platform/Network.h"

#include <arpa/inet.h>

#include <cstring>

namespace TALVIR::Platform {

bool ParseIPv4(const std::string& text, uint32_t& address) {
  in_addr parsed{};
  if (inet_pton(AF_INET, text.c_str(), &parsed) != 1) {
    return false;
  }
  std::memcpy(&address, &parsed.s_addr, sizeof address);
  return true;
}

std::string FormatIPv4(uint32_t address) {
  in_addr value{};
  std::memcpy(&value.s_addr, &address, sizeof address);
  char text[INET_ADDRSTRLEN] = {};
  if (inet_ntop(AF_INET, &value, text, sizeof text) == nullptr) {
    return {};
  }
  return text;
}

}  // namespace TALVIR::Platform

#include "platform/Network.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <winsock2.h>
#include <ws2tcpip.h>

#include <cstring>

namespace TALVIR::Platform {
namespace {

// Exactly four decimal numbers of one to three digits separated by dots, without leading zeros. Windows' own
// parser is more lenient in places than the Unix one; this check makes both platforms accept the same texts.
bool IsStrictDottedQuad(const std::string& text) {
  int parts = 0;
  size_t position = 0;
  while (parts < 4) {
    const size_t start = position;
    unsigned value = 0;
    while (position < text.size() && text[position] >= '0' && text[position] <= '9' && position - start < 3) {
      value = value * 10 + static_cast<unsigned>(text[position] - '0');
      ++position;
    }
    const size_t digits = position - start;
    if (digits == 0 || value > 255 || (digits > 1 && text[start] == '0')) {
      return false;
    }
    ++parts;
    if (parts < 4) {
      if (position >= text.size() || text[position] != '.') {
        return false;
      }
      ++position;
    }
  }
  return position == text.size();
}

}  // namespace

bool ParseIPv4(const std::string& text, uint32_t& address) {
  if (!IsStrictDottedQuad(text)) {
    return false;
  }
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

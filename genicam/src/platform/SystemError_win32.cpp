#include "platform/SystemError.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace GenICam {
namespace Platform {

unsigned long LastSystemError() { return GetLastError(); }

std::string SystemErrorText(unsigned long code) {
  char text[512] = {};
  DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, sizeof text, nullptr);
  // The system ends its texts with a full stop and a line break.
  while (length > 0 && (text[length - 1] == '\r' || text[length - 1] == '\n' || text[length - 1] == ' ')) {
    --length;
  }
  if (length == 0) {
    return "error " + std::to_string(code);
  }
  return std::string(text, length);
}

}  // namespace Platform
}  // namespace GenICam

#include "platform/Environment.h"

#include <stdlib.h>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// windows.h turns SetEnvironmentVariable into a macro for its ANSI or wide function; ours has the same name.
#undef SetEnvironmentVariable

namespace GenICam {
namespace Platform {

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  // The process environment itself, which also sees what other modules of the process set.
  std::string value(256, '\0');
  for (;;) {
    ::SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableA(name.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (length == 0) {
      // Zero is both "not set" and "set to the empty text"; only the error code tells them apart.
      if (GetLastError() == ERROR_ENVVAR_NOT_FOUND) {
        return std::nullopt;
      }
      return std::string();
    }
    if (length < value.size()) {
      value.resize(length);
      return value;
    }
    // Too small: the length returned counts the terminating zero.
    value.assign(length, '\0');
  }
}

void SetEnvironmentVariable(const std::string& name, const std::string& value) {
  // The C runtime's copy and the process environment both change (an empty value removes the variable), so that
  // getenv and GetEnvironmentVariableA agree afterwards.
  _putenv_s(name.c_str(), value.c_str());
}

// Only ';': ':' belongs to drive letters here ("C:\drivers").
const char* PathListSeparators() { return ";"; }

}  // namespace Platform
}  // namespace GenICam

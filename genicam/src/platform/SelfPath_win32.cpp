#include "platform/SelfPath.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <vector>

namespace GenICam {
namespace Platform {

std::string OwnModulePath() {
  HMODULE module = nullptr;
  // Any address inside this module identifies it; the function itself is the simplest such address. The module
  // is only looked at, so no reference is taken.
  if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCSTR>(&OwnModulePath), &module)) {
    return {};
  }
  // The classic limit of 260 characters first; a longer path gets a larger buffer.
  std::vector<char> buffer(MAX_PATH, '\0');
  for (;;) {
    const DWORD length = GetModuleFileNameA(module, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0) {
      return {};
    }
    if (length < buffer.size()) {
      return std::string(buffer.data(), length);
    }
    if (buffer.size() >= 32768) {
      return {};
    }
    buffer.assign(buffer.size() * 2, '\0');
  }
}

std::string OwnModuleDirectory() {
  // The loader gives paths with backslashes: the directory is everything up to and including the last one.
  const std::string path = OwnModulePath();
  const size_t separator = path.find_last_of(kPathSeparator);
  if (separator == std::string::npos) {
    return {};
  }
  return path.substr(0, separator + 1);
}

}  // namespace Platform
}  // namespace GenICam

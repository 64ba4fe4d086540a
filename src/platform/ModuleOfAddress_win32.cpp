#include "platform/ModuleOfAddress.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <vector>

namespace TALVIR::Platform {

std::string ModulePathOf(const void* address) {
  HMODULE module = nullptr;
  // UNCHANGED_REFCOUNT: the module is only looked at, so no reference is taken that would have to be given back.
  if (address == nullptr ||
      !GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          static_cast<LPCSTR>(address), &module)) {
    return {};
  }
  // The classic limit of 260 characters first; a longer path (a long install folder) gets a larger buffer.
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

bool KeepModuleLoaded(const void* address) {
  HMODULE module = nullptr;
  return address != nullptr &&
         GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                            static_cast<LPCSTR>(address), &module) != FALSE;
}

}  // namespace TALVIR::Platform

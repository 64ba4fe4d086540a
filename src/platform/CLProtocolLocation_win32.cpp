#include "platform/CLProtocolLocation.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <vector>

namespace TALVIR::Platform {

const char* CLProtocolPlatformFolder() { return "Win64_x64"; }

bool IsFoundBySystemSearch(const std::string& relativePath) {
  const int length = MultiByteToWideChar(CP_ACP, 0, relativePath.c_str(), -1, nullptr, 0);
  if (length <= 0) {
    return false;
  }
  std::vector<wchar_t> wide(static_cast<size_t>(length), L'\0');
  if (MultiByteToWideChar(CP_ACP, 0, relativePath.c_str(), -1, wide.data(), length) <= 0) {
    return false;
  }
  // Only whether the search finds the file matters; where it found it does not.
  wchar_t found[MAX_PATH] = {};
  return SearchPathW(nullptr, wide.data(), nullptr, MAX_PATH, found, nullptr) != 0;
}

}  // namespace TALVIR::Platform

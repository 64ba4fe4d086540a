#include "platform/SelfPath.h"

#include <dlfcn.h>

namespace GenICam {
namespace Platform {

std::string OwnModulePath() {
  Dl_info info{};
  // Any address inside this module identifies it; the function itself is the simplest such address.
  if (dladdr(reinterpret_cast<void*>(&OwnModulePath), &info) == 0 || info.dli_fname == nullptr) {
    return {};
  }
  return info.dli_fname;
}

std::string OwnModuleDirectory() {
  const std::string path = OwnModulePath();
  const size_t separator = path.find_last_of(kPathSeparator);
  if (separator == std::string::npos) {
    return {};
  }
  return path.substr(0, separator + 1);
}

}  // namespace Platform
}  // namespace GenICam

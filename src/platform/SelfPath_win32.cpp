#include "platform/SelfPath.h"

#include "platform/ModuleOfAddress.h"

namespace TALVIR::Platform {

std::string OwnModulePath() {
  // Any address inside this module identifies it; the function itself is the simplest such address.
  return ModulePathOf(reinterpret_cast<const void*>(&OwnModulePath));
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

}  // namespace TALVIR::Platform

#include "platform/ModuleOfAddress.h"

#include <dlfcn.h>

namespace TALVIR::Platform {

std::string ModulePathOf(const void* address) {
  Dl_info info{};
  if (address == nullptr || dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
    return {};
  }
  return info.dli_fname;
}

bool KeepModuleLoaded(const void* address) {
  const std::string path = ModulePathOf(address);
  if (path.empty()) {
    return false;
  }
  // NOLOAD only finds the module already mapped; NODELETE stays with it after this extra reference is given back.
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
  if (handle == nullptr) {
    return false;
  }
  dlclose(handle);
  return true;
}

}  // namespace TALVIR::Platform

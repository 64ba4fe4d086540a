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

}  // namespace TALVIR::Platform

#include "platform/DynamicModule.h"

#include <dlfcn.h>

namespace GenICam {
namespace Platform {
namespace {

thread_local std::string t_lastError;

} // namespace

ModuleHandle LoadModule(const std::string& path) {
  if (path.empty()) {
    t_lastError = "empty module path";
    return nullptr;
  }
  // RTLD_LOCAL keeps the modules apart: every serial library and every protocol driver exports the same C names.
  ModuleHandle handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* text = dlerror();
    t_lastError = text != nullptr ? text : "dlopen failed";
  } else {
    t_lastError.clear();
  }
  return handle;
}

void* FindSymbol(ModuleHandle module, const char* symbolName) {
  if (module == nullptr || symbolName == nullptr) {
    return nullptr;
  }
  return dlsym(module, symbolName);
}

void FreeModule(ModuleHandle module) {
  if (module != nullptr) {
    dlclose(module);
  }
}

std::string LastModuleError() {
  return t_lastError;
}

} // namespace Platform
} // namespace GenICam

#include "platform/DynamicModule.h"

#include <dlfcn.h>

#include <mutex>

namespace GenICam {
namespace Platform {
namespace {

// Process-wide rather than per thread: this code is also linked into modules loaded at run time, where
// thread-local data is dynamic TLS, which the sanitizers' leak scan mishandles.
std::mutex g_errorLock;
std::string g_lastError;

void SetLastError(const std::string& text) {
  const std::lock_guard<std::mutex> guard(g_errorLock);
  g_lastError = text;
}

}  // namespace

ModuleHandle LoadModule(const std::string& path) {
  if (path.empty()) {
    SetLastError("empty module path");
    return nullptr;
  }
  // RTLD_LOCAL keeps the modules apart: every serial library and every protocol driver exports the same C names.
  ModuleHandle handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* text = dlerror();
    SetLastError(text != nullptr ? text : "dlopen failed");
  } else {
    SetLastError(std::string());
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
  const std::lock_guard<std::mutex> guard(g_errorLock);
  return g_lastError;
}

}  // namespace Platform
}  // namespace GenICam

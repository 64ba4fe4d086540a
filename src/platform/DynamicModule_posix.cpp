#include "platform/DynamicModule.h"

#include "platform/SelfPath.h"
#include "platform/ThreadErrorTable.h"

#include <dlfcn.h>

#include <cctype>
#include <string>

namespace TALVIR::Platform {
namespace {

CThreadErrorTable& LastErrors() {
  static CThreadErrorTable errors;
  return errors;
}

bool HasFolder(const std::string& name) { return name.find(kPathSeparator) != std::string::npos; }

bool EndsWithIgnoringCase(const std::string& text, const std::string& suffix) {
  if (text.size() < suffix.size()) {
    return false;
  }
  for (size_t i = 0; i < suffix.size(); ++i) {
    const char a = text[text.size() - suffix.size() + i];
    const char b = suffix[i];
    if (std::tolower(static_cast<unsigned char>(a)) != std::tolower(static_cast<unsigned char>(b))) {
      return false;
    }
  }
  return true;
}

ModuleHandle OpenAndRecord(const std::string& path) {
  // RTLD_LOCAL keeps each producer's GenTL symbols apart: every producer exports the same C names.
  ModuleHandle handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* text = dlerror();
    LastErrors().Set(text != nullptr ? text : "dlopen failed");
  } else {
    LastErrors().Set({});
  }
  return handle;
}

}  // namespace

std::string NativeModuleName(const std::string& windowsName) {
  if (!EndsWithIgnoringCase(windowsName, ".dll")) {
    return windowsName;
  }
  const size_t slash = windowsName.find_last_of(kPathSeparator);
  const size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
  const std::string stem = windowsName.substr(nameStart, windowsName.size() - nameStart - 4);
  return windowsName.substr(0, nameStart) + "lib" + stem + ".so";
}

ModuleHandle LoadModule(const std::string& nameOrPath) {
  if (nameOrPath.empty()) {
    LastErrors().Set("empty module name");
    return nullptr;
  }
  const std::string native = NativeModuleName(nameOrPath);
  if (HasFolder(native)) {
    return OpenAndRecord(native);
  }
  const std::string besideUs = OwnModuleDirectory() + native;
  if (ModuleHandle handle = OpenAndRecord(besideUs)) {
    return handle;
  }
  // dlopen searches the system paths only for names without a slash.
  return OpenAndRecord(native);
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

ModuleHandle FindLoadedModule(const std::string& name) {
  if (name.empty()) {
    return nullptr;
  }
  return dlopen(NativeModuleName(name).c_str(), RTLD_NOW | RTLD_NOLOAD);
}

std::string LastModuleError() { return LastErrors().Get(); }

}  // namespace TALVIR::Platform

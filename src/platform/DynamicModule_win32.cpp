#include "platform/DynamicModule.h"

#include "platform/SelfPath.h"
#include "platform/SystemError.h"
#include "platform/ThreadErrorTable.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// windows.h turns FreeModule into a macro for FreeLibrary; ours is a function of the same name.
#undef FreeModule

#include <cstring>
#include <string>

namespace TALVIR::Platform {
namespace {

CThreadErrorTable& LastErrors() {
  static CThreadErrorTable errors;
  return errors;
}

// Both separators name folders on Windows; a drive prefix such as "C:x.dll" counts as a folder too.
bool HasFolder(const std::string& name) { return name.find_first_of("\\/:") != std::string::npos; }

std::string WithBackslashes(std::string path) {
  for (char& c : path) {
    if (c == '/') {
      c = '\\';
    }
  }
  return path;
}

// A full path: a drive ("C:\\...") or a network share ("\\\\server\\...").
bool IsAbsolute(const std::string& path) {
  return (path.size() >= 3 && path[1] == ':' && path[2] == '\\') || path.rfind("\\\\", 0) == 0;
}

// A module given by its full path finds the modules it depends on in its own folder first (a producer's folder
// carries its own helper DLLs); a name or a relative path gets the loader's usual search.
HMODULE LoadFrom(const std::string& path) {
  return IsAbsolute(path) ? LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)
                          : LoadLibraryA(path.c_str());
}

ModuleHandle OpenAndRecord(const std::string& path) {
  // No message box for a missing drive or an unreadable file: the caller reports the failure itself.
  DWORD previousMode = 0;
  const BOOL modeSet = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
  HMODULE handle = LoadFrom(path);
  const DWORD error = handle == nullptr ? GetLastError() : ERROR_SUCCESS;
  if (modeSet) {
    SetThreadErrorMode(previousMode, nullptr);
  }
  if (handle == nullptr) {
    LastErrors().Set(path + ": " + SystemErrorText(error));
  } else {
    LastErrors().Set({});
  }
  return reinterpret_cast<ModuleHandle>(handle);
}

}  // namespace

std::string NativeModuleName(const std::string& windowsName) {
  // Windows module names are this platform's names already.
  return windowsName;
}

ModuleHandle LoadModule(const std::string& nameOrPath) {
  if (nameOrPath.empty()) {
    LastErrors().Set("empty module name");
    return nullptr;
  }
  if (HasFolder(nameOrPath)) {
    return OpenAndRecord(WithBackslashes(nameOrPath));
  }
  const std::string besideUs = OwnModuleDirectory() + nameOrPath;
  if (ModuleHandle handle = OpenAndRecord(besideUs)) {
    return handle;
  }
  // The system loader's own search order for a bare name.
  return OpenAndRecord(nameOrPath);
}

void* FindSymbol(ModuleHandle module, const char* symbolName) {
  if (module == nullptr || symbolName == nullptr) {
    return nullptr;
  }
  const FARPROC address = GetProcAddress(static_cast<HMODULE>(module), symbolName);
  // A function address handed on as a plain address; callers cast it back to the function type they expect.
  void* result = nullptr;
  static_assert(sizeof result == sizeof address, "function and data addresses have one size on this platform");
  std::memcpy(&result, &address, sizeof result);
  return result;
}

void FreeModule(ModuleHandle module) {
  if (module != nullptr) {
    FreeLibrary(static_cast<HMODULE>(module));
  }
}

ModuleHandle FindLoadedModule(const std::string& name) {
  if (name.empty()) {
    return nullptr;
  }
  // Flags 0: the module's reference count goes up, as the caller gives it back with FreeModule.
  HMODULE handle = nullptr;
  if (!GetModuleHandleExA(0, name.c_str(), &handle)) {
    return nullptr;
  }
  return reinterpret_cast<ModuleHandle>(handle);
}

std::string LastModuleError() { return LastErrors().Get(); }

}  // namespace TALVIR::Platform

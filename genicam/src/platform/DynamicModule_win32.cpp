#include "platform/DynamicModule.h"

#include "platform/SystemError.h"

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
#include <mutex>

namespace GenICam {
namespace Platform {
namespace {

// Process-wide rather than per thread: this code is also linked into modules loaded at run time, where
// thread-local data of a module that is unloaded again is easily left behind.
std::mutex g_errorLock;
std::string g_lastError;

void RecordError(const std::string& text) {
  const std::lock_guard<std::mutex> guard(g_errorLock);
  g_lastError = text;
}

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

}  // namespace

ModuleHandle LoadModule(const std::string& path) {
  if (path.empty()) {
    RecordError("empty module path");
    return nullptr;
  }
  const std::string windowsPath = WithBackslashes(path);
  // No message box for a missing drive or an unreadable file: the caller reports the failure itself.
  DWORD previousMode = 0;
  const BOOL modeSet = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
  HMODULE handle = LoadFrom(windowsPath);
  const DWORD error = handle == nullptr ? GetLastError() : ERROR_SUCCESS;
  if (modeSet) {
    SetThreadErrorMode(previousMode, nullptr);
  }
  RecordError(handle == nullptr ? windowsPath + ": " + SystemErrorText(error) : std::string());
  return reinterpret_cast<ModuleHandle>(handle);
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

std::string LastModuleError() {
  const std::lock_guard<std::mutex> guard(g_errorLock);
  return g_lastError;
}

}  // namespace Platform
}  // namespace GenICam

#pragma once
// Loading shared modules (producers, helper libraries) at run time.
// DynamicModule_posix.cpp serves Linux, DynamicModule_win32.cpp Windows.
#include <string>

namespace TALVIR::Platform {

using ModuleHandle = void*;

// Maps a Windows module name to this platform's: on Linux "X.dll" becomes "libX.so"; any other name (".cti"
// producers among them) is returned unchanged. Only the file-name part is rewritten, a leading folder is kept. On
// Windows every name is returned unchanged.
std::string NativeModuleName(const std::string& windowsName);

// Loads a module. A name with a folder separator is loaded from exactly that path. A bare name is looked for
// first in the folder of our own library, then through the system loader's search. Returns null on failure;
// LastModuleError() then says why.
ModuleHandle LoadModule(const std::string& nameOrPath);

// A module that is already loaded in the process under this name (a bare file name such as "libX.so" or "X.dll",
// mapped by NativeModuleName), with one more reference taken (give it back with FreeModule); null when it is not
// loaded. Never loads anything.
ModuleHandle FindLoadedModule(const std::string& name);

// The address of an exported symbol, or null.
void* FindSymbol(ModuleHandle module, const char* symbolName);

// Releases a module loaded by LoadModule. A null handle is ignored.
void FreeModule(ModuleHandle module);

// The loader's text for the last failure on this thread (empty when there is none).
std::string LastModuleError();

// Owns one loaded module and frees it on destruction.
class CDynamicModule {
public:
  CDynamicModule() = default;
  explicit CDynamicModule(const std::string& nameOrPath) : m_handle(LoadModule(nameOrPath)) {}
  ~CDynamicModule() { FreeModule(m_handle); }
  CDynamicModule(const CDynamicModule&) = delete;
  CDynamicModule& operator=(const CDynamicModule&) = delete;
  CDynamicModule(CDynamicModule&& other) noexcept : m_handle(other.Release()) {}
  CDynamicModule& operator=(CDynamicModule&& other) noexcept {
    if (this != &other) {
      FreeModule(m_handle);
      m_handle = other.Release();
    }
    return *this;
  }

  bool IsLoaded() const { return m_handle != nullptr; }
  ModuleHandle Handle() const { return m_handle; }
  ModuleHandle Release() {
    ModuleHandle handle = m_handle;
    m_handle = nullptr;
    return handle;
  }

  // The symbol cast to the function-pointer type the caller expects, or null.
  template <typename TFunction>
  TFunction Symbol(const char* symbolName) const {
    return reinterpret_cast<TFunction>(FindSymbol(m_handle, symbolName));
  }

private:
  ModuleHandle m_handle = nullptr;
};

}  // namespace TALVIR::Platform

#pragma once
// Loading shared modules (serial libraries, protocol drivers) at run time.
// DynamicModule_posix.cpp serves Linux, DynamicModule_win32.cpp Windows.
#include <string>

namespace GenICam {
namespace Platform {

using ModuleHandle = void*;

// Loads the module at exactly this path. Returns null on failure; LastModuleError() then says why.
ModuleHandle LoadModule(const std::string& path);

// The address of an exported symbol, or null (also for a null module or name).
void* FindSymbol(ModuleHandle module, const char* symbolName);

// Releases a module loaded by LoadModule. A null handle is ignored.
void FreeModule(ModuleHandle module);

// The loader's text for the last load in the process that failed (empty after a load that succeeded).
std::string LastModuleError();

// Owns one loaded module and frees it on destruction.
class CDynamicModule {
public:
  CDynamicModule() = default;
  explicit CDynamicModule(const std::string& path) : m_handle(LoadModule(path)) {}
  ~CDynamicModule() { FreeModule(m_handle); }
  CDynamicModule(const CDynamicModule&) = delete;
  CDynamicModule& operator=(const CDynamicModule&) = delete;

  bool IsLoaded() const { return m_handle != nullptr; }

  // The symbol cast to the function-pointer type the caller expects, or null.
  template <typename TFunction>
  TFunction Symbol(const char* symbolName) const {
    return reinterpret_cast<TFunction>(FindSymbol(m_handle, symbolName));
  }

private:
  ModuleHandle m_handle = nullptr;
};

}  // namespace Platform
}  // namespace GenICam

#include "platform/DynamicModule.h"

#include "platform/SelfPath.h"

#include <dlfcn.h>

#include <algorithm>
#include <cctype>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace TALVIR::Platform {
namespace {

// The last loader failure of each thread. A table rather than thread-local storage: a library with thread-local
// data that is loaded and unloaded many times (as applications and tests do with this one) leaves stale entries in
// every thread's dynamic TLS, which leak checkers then trip over. Threads that never fail have no entry; the table
// keeps the newest entries only.
class CLastErrors {
public:
  void Set(std::string text) {
    std::lock_guard<std::mutex> lock(m_mutex);
    const std::thread::id self = std::this_thread::get_id();
    m_errors.erase(
        std::remove_if(m_errors.begin(), m_errors.end(), [&](const auto& entry) { return entry.first == self; }),
        m_errors.end());
    if (text.empty()) {
      return;
    }
    if (m_errors.size() >= kMaxThreads) {
      m_errors.erase(m_errors.begin());
    }
    m_errors.emplace_back(self, std::move(text));
  }
  std::string Get() {
    std::lock_guard<std::mutex> lock(m_mutex);
    const std::thread::id self = std::this_thread::get_id();
    for (const auto& entry : m_errors) {
      if (entry.first == self) {
        return entry.second;
      }
    }
    return {};
  }

private:
  static constexpr size_t kMaxThreads = 64;
  std::mutex m_mutex;
  std::vector<std::pair<std::thread::id, std::string>> m_errors;
};

CLastErrors& LastErrors() {
  static CLastErrors errors;
  return errors;
}

bool HasFolder(const std::string& name) {
  return name.find('/') != std::string::npos;
}

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

} // namespace

std::string NativeModuleName(const std::string& windowsName) {
  if (!EndsWithIgnoringCase(windowsName, ".dll")) {
    return windowsName;
  }
  const size_t slash = windowsName.find_last_of('/');
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

std::string LastModuleError() {
  return LastErrors().Get();
}

} // namespace TALVIR::Platform

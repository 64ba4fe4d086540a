#pragma once
// The last loader failure of each thread, for the module loaders of every platform.
#include <algorithm>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace TALVIR::Platform {

// A table rather than thread-local storage: a library with thread-local data that is loaded and unloaded many times
// (as applications and tests do with this one) leaves stale entries in every thread's dynamic TLS, which leak
// checkers then trip over. Threads that never fail have no entry; the table keeps the newest entries only.
class CThreadErrorTable {
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

}  // namespace TALVIR::Platform

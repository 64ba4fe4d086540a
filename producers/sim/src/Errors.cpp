#include "Errors.h"

#include <mutex>
#include <thread>
#include <unordered_map>

namespace TalvirSim {
namespace {

struct SLastError {
  GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
  std::string text = "no error";
};

// Kept per thread in a table rather than in thread_local storage: a module with thread-local objects cannot be
// unloaded cleanly (the loader either pins it or leaves threads pointing at its freed TLS block), and consumers
// load and unload producers freely. Each flavour file is a separate copy of the module with its own table.
class CErrorTable {
public:
  void Set(GenTL::GC_ERROR code, const std::string& text) {
    std::lock_guard<std::mutex> lock(m_mutex);
    SLastError& entry = m_errors[std::this_thread::get_id()];
    entry.code = code;
    entry.text = text;
  }
  SLastError Get() {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_errors.find(std::this_thread::get_id());
    return it == m_errors.end() ? SLastError{} : it->second;
  }

private:
  std::mutex m_mutex;
  std::unordered_map<std::thread::id, SLastError> m_errors;
};

CErrorTable& Table() {
  static CErrorTable table;
  return table;
}

}  // namespace

void SetLastError(GenTL::GC_ERROR code, const std::string& text) { Table().Set(code, text); }

GenTL::GC_ERROR LastErrorCode() { return Table().Get().code; }

std::string LastErrorText() { return Table().Get().text; }

}  // namespace TalvirSim

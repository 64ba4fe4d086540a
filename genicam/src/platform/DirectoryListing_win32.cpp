#include "platform/DirectoryListing.h"

#include <io.h>

#include <algorithm>

namespace GenICam {
namespace Platform {
namespace {

// Closes a search handle of the C runtime when the listing ends, however it ends.
class CFindHandle {
public:
  explicit CFindHandle(intptr_t handle) : m_handle(handle) {}
  ~CFindHandle() {
    if (IsValid()) {
      _findclose(m_handle);
    }
  }
  CFindHandle(const CFindHandle&) = delete;
  CFindHandle& operator=(const CFindHandle&) = delete;
  bool IsValid() const { return m_handle != -1; }
  intptr_t Get() const { return m_handle; }

private:
  intptr_t m_handle;
};

}  // namespace

std::vector<std::string> ListFiles(const std::string& directory, const std::string& prefix, const std::string& suffix) {
  std::vector<std::string> names;
  std::string pattern = directory;
  if (!pattern.empty() && pattern.back() != '\\' && pattern.back() != '/' && pattern.back() != ':') {
    pattern += '\\';
  }
  pattern += prefix + "*" + suffix;
  _finddata64i32_t entry{};
  CFindHandle search(_findfirst64i32(pattern.c_str(), &entry));
  if (!search.IsValid()) {
    return names;
  }
  do {
    // The wildcard ignores case and also matches longer endings through the short 8.3 names: compare exactly.
    const std::string name = entry.name;
    if ((entry.attrib & _A_SUBDIR) != 0 || name.size() < prefix.size() + suffix.size() ||
        name.compare(0, prefix.size(), prefix) != 0 ||
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0) {
      continue;
    }
    names.push_back(name);
  } while (_findnext64i32(search.Get(), &entry) == 0);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace Platform
}  // namespace GenICam

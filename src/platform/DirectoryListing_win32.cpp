#include "platform/DirectoryListing.h"

#include <io.h>


namespace TALVIR::Platform {
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

std::vector<std::string> ListFilesWithExtension(const std::string& directory, const std::string& extension) {
  std::vector<std::string> names;
  std::string pattern = directory;
  if (!pattern.empty() && pattern.back() != '\\' && pattern.back() != '/' && pattern.back() != ':') {
    pattern += '\\';
  }
  pattern += "*." + extension;
  _finddata64i32_t entry{};
  CFindHandle search(_findfirst64i32(pattern.c_str(), &entry));
  if (!search.IsValid()) {
    return names;
  }
  do {
    // The wildcard also matches longer extensions (through the short 8.3 names), and folders named like files.
    const std::string name = entry.name;
    if ((entry.attrib & _A_SUBDIR) != 0 || !HasExactExtension(name, extension)) {
      continue;
    }
    names.push_back(name);
  } while (_findnext64i32(search.Get(), &entry) == 0);
  return names;
}

}  // namespace TALVIR::Platform

#include "platform/FileStatus.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <vector>

namespace TALVIR::Platform {
namespace {

// Closes a file handle when it goes out of scope.
class CHandle {
public:
  explicit CHandle(HANDLE handle) : m_handle(handle) {}
  ~CHandle() {
    if (IsValid()) {
      CloseHandle(m_handle);
    }
  }
  CHandle(const CHandle&) = delete;
  CHandle& operator=(const CHandle&) = delete;
  bool IsValid() const { return m_handle != INVALID_HANDLE_VALUE && m_handle != nullptr; }
  HANDLE Get() const { return m_handle; }

private:
  HANDLE m_handle;
};

// The final path drops the "\\?\" (or "\\?\UNC\") prefix the system puts before it, so that it reads as the usual
// drive or network path.
std::string WithoutLongPathPrefix(const std::string& path) {
  if (path.rfind("\\\\?\\UNC\\", 0) == 0) {
    return "\\\\" + path.substr(8);
  }
  if (path.rfind("\\\\?\\", 0) == 0) {
    return path.substr(4);
  }
  return path;
}

std::optional<std::string> FullPath(const std::string& path) {
  const DWORD needed = GetFullPathNameA(path.c_str(), 0, nullptr, nullptr);
  if (needed == 0) {
    return std::nullopt;
  }
  std::vector<char> buffer(needed + 1, '\0');
  const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(buffer.size()), buffer.data(), nullptr);
  if (length == 0 || length >= buffer.size()) {
    return std::nullopt;
  }
  return std::string(buffer.data(), length);
}

}  // namespace

bool PathExists(const std::string& path) {
  return !path.empty() && GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<std::string> CanonicalPath(const std::string& path) {
  if (!PathExists(path)) {
    return std::nullopt;
  }
  // Opening the file (or folder: backup semantics) lets the system resolve links and the real case of each name.
  CHandle file(CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (file.IsValid()) {
    std::vector<char> buffer(MAX_PATH, '\0');
    for (;;) {
      const DWORD length = GetFinalPathNameByHandleA(file.Get(), buffer.data(), static_cast<DWORD>(buffer.size()),
                                                     FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
      if (length == 0) {
        break;
      }
      if (length < buffer.size()) {
        return WithoutLongPathPrefix(std::string(buffer.data(), length));
      }
      buffer.assign(length + 1, '\0');
    }
  }
  // A file the system will not open for its final name still has a full path with "." and ".." resolved.
  return FullPath(path);
}

}  // namespace TALVIR::Platform

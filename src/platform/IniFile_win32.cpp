#include "platform/IniFile.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <cstdio>
#include <cstring>

namespace TALVIR::Platform {
namespace {

// The system's INI reader takes a name without a folder as a file of the Windows folder: give it the full path.
std::string FullPath(const std::string& path) {
  const DWORD needed = GetFullPathNameA(path.c_str(), 0, nullptr, nullptr);
  if (needed == 0) {
    return path;
  }
  std::vector<char> buffer(needed + 1, '\0');
  const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(buffer.size()), buffer.data(), nullptr);
  if (length == 0 || length >= buffer.size()) {
    return path;
  }
  return std::string(buffer.data(), length);
}

// GetPrivateProfileStringA into a buffer that grows until the answer fits. With a null key the answer is the list
// of the section's key names, each ending with a zero; `listTerminators` is then 2 (the list ends with two zeros).
std::string ReadProfile(const std::string& path, const std::string& section, const char* key, DWORD listTerminators) {
  std::vector<char> buffer(1024, '\0');
  for (;;) {
    const DWORD length = GetPrivateProfileStringA(section.c_str(), key, "", buffer.data(),
                                                  static_cast<DWORD>(buffer.size()), path.c_str());
    // A full buffer is reported as its size less the terminators: the answer may have been cut.
    if (length + listTerminators < buffer.size() || buffer.size() >= (1u << 24)) {
      return std::string(buffer.data(), length);
    }
    buffer.assign(buffer.size() * 4, '\0');
  }
}

}  // namespace

CIniFile::CIniFile(std::string path) : m_path(std::move(path)) {
  // The system's reader treats a missing file as an empty one: whether the file is there is asked first.
  std::FILE* file = nullptr;
  if (fopen_s(&file, m_path.c_str(), "rb") != 0 || file == nullptr) {
    return;
  }
  std::fclose(file);
  m_path = FullPath(m_path);
  m_loaded = true;
}

std::optional<std::string> CIniFile::Value(const std::string& section, const std::string& key) const {
  if (!m_loaded) {
    return std::nullopt;
  }
  // An absent key and an empty value both read as "": the section's list of key names tells them apart.
  const std::string names = ReadProfile(m_path, section, nullptr, 2);
  bool present = false;
  for (size_t start = 0; start < names.size() && !present;) {
    const size_t end = names.find('\0', start);
    const std::string name = names.substr(start, end == std::string::npos ? std::string::npos : end - start);
    present = _stricmp(name.c_str(), key.c_str()) == 0;
    start = end == std::string::npos ? names.size() : end + 1;
  }
  if (!present) {
    return std::nullopt;
  }
  return ReadProfile(m_path, section, key.c_str(), 1);
}

}  // namespace TALVIR::Platform

#pragma once
// Reads a whole file into memory; description files are at most a few megabytes.
#include <fstream>
#include <string>

namespace TALVIR::Tools {
inline bool ReadFileBytes(const std::string& path, std::string& bytes) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) return false;
  const std::streamoff size = in.tellg();
  if (size < 0) return false;
  bytes.assign(static_cast<size_t>(size), '\0');
  in.seekg(0);
  return static_cast<bool>(in.read(bytes.data(), size));
}
}  // namespace TALVIR::Tools

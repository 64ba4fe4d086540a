#include "platform/FileIO.h"

#include <cstdio>
#include <memory>

namespace TALVIR::Platform {
namespace {
struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
}  // namespace

std::optional<std::vector<char>> ReadWholeFile(const std::string& path) {
  std::FILE* opened = nullptr;
  if (fopen_s(&opened, path.c_str(), "rb") != 0 || opened == nullptr) {
    return std::nullopt;
  }
  std::unique_ptr<std::FILE, FileCloser> file(opened);
  std::vector<char> content;
  char chunk[64 * 1024];
  // Read until end of file rather than trusting a size from the directory: the file may grow meanwhile.
  for (;;) {
    const size_t got = std::fread(chunk, 1, sizeof chunk, file.get());
    content.insert(content.end(), chunk, chunk + got);
    if (got < sizeof chunk) {
      break;
    }
  }
  if (std::ferror(file.get()) != 0) {
    return std::nullopt;
  }
  return content;
}

}  // namespace TALVIR::Platform

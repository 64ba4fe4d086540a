#include "platform/FileIO.h"

#include <memory>

namespace TALVIR::Platform {
namespace {
struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
}  // namespace

std::optional<std::vector<char>> ReadWholeFile(const std::string& path) {
  std::unique_ptr<std::FILE, FileCloser> file(OpenFileForReading(path));
  if (!file) {
    return std::nullopt;
  }
  std::vector<char> content;
  char chunk[64 * 1024];
  // Read until end of file rather than trusting a size from the directory: the file may be a pipe or grow meanwhile.
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

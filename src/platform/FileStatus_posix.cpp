#include "platform/FileStatus.h"

#include <sys/stat.h>

#include <climits>
#include <cstdlib>
#include <memory>

namespace TALVIR::Platform {

bool PathExists(const std::string& path) {
  struct stat status {};
  return !path.empty() && ::stat(path.c_str(), &status) == 0;
}

std::optional<std::string> CanonicalPath(const std::string& path) {
  if (path.empty()) {
    return std::nullopt;
  }
  // realpath with a null buffer allocates one of the right size.
  std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
  if (!resolved) {
    return std::nullopt;
  }
  return std::string(resolved.get());
}

}  // namespace TALVIR::Platform

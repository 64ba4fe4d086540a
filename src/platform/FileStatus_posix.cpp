#include "platform/FileStatus.h"

#include <sys/stat.h>

namespace TALVIR::Platform {

bool PathExists(const std::string& path) {
  struct stat status {};
  return !path.empty() && ::stat(path.c_str(), &status) == 0;
}

} // namespace TALVIR::Platform

#include "platform/Environment.h"

namespace TALVIR::Platform {

std::vector<std::string> SplitPathList(const std::string& value) {
  std::vector<std::string> folders;
  size_t start = 0;
  while (start <= value.size()) {
    size_t end = value.find(PathListSeparator(), start);
    if (end == std::string::npos) {
      end = value.size();
    }
    if (end > start) {
      folders.push_back(value.substr(start, end - start));
    }
    start = end + 1;
  }
  return folders;
}

}  // namespace TALVIR::Platform

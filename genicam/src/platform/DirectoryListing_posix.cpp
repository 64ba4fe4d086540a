#include "platform/DirectoryListing.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>

namespace GenICam {
namespace Platform {

std::vector<std::string> ListFiles(const std::string& directory, const std::string& prefix, const std::string& suffix) {
  std::vector<std::string> names;
  DIR* folder = opendir(directory.c_str());
  if (folder == nullptr) {
    return names;
  }
  while (const dirent* entry = readdir(folder)) {
    const std::string name = entry->d_name;
    if (name.size() < prefix.size() + suffix.size() || name.compare(0, prefix.size(), prefix) != 0 ||
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0) {
      continue;
    }
    struct stat info {};
    const std::string path = directory + "/" + name;
    if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) {
      names.push_back(name);
    }
  }
  closedir(folder);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace Platform
}  // namespace GenICam

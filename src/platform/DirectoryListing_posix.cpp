#include "platform/DirectoryListing.h"

#include <dirent.h>
#include <sys/stat.h>

#include <memory>

namespace TALVIR::Platform {
namespace {

bool IsDirectory(const std::string& directory, const dirent& entry) {
  if (entry.d_type == DT_DIR) {
    return true;
  }
  if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) {
    return false;
  }
  // Some file systems do not fill d_type, and a link may point at a folder: ask stat.
  struct stat status {};
  const std::string path = directory + "/" + entry.d_name;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

struct DirCloser {
  void operator()(DIR* dir) const { closedir(dir); }
};

}  // namespace

std::vector<std::string> ListFilesWithExtension(const std::string& directory, const std::string& extension) {
  std::vector<std::string> names;
  const std::string folder = directory.empty() ? std::string(".") : directory;
  std::unique_ptr<DIR, DirCloser> dir(opendir(folder.c_str()));
  if (!dir) {
    return names;
  }
  while (const dirent* entry = readdir(dir.get())) {
    const std::string name = entry->d_name;
    if (!HasExactExtension(name, extension) || IsDirectory(folder, *entry)) {
      continue;
    }
    names.push_back(name);
  }
  return names;
}

}  // namespace TALVIR::Platform

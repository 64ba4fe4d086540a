#pragma once
// Asking the file system about a path without opening it.
#include <string>

namespace TALVIR::Platform {

// Whether something (file or folder) exists at `path`; a relative path counts from the current directory.
bool PathExists(const std::string& path);

} // namespace TALVIR::Platform

#pragma once
// Asking the file system about a path without opening it.
#include <optional>
#include <string>

namespace TALVIR::Platform {

// Whether something (file or folder) exists at `path`; a relative path counts from the current directory.
bool PathExists(const std::string& path);

// The absolute path of `path` with every link, "." and ".." resolved; nothing when it does not exist. Two paths
// name the same file exactly when their canonical paths are equal.
std::optional<std::string> CanonicalPath(const std::string& path);

}  // namespace TALVIR::Platform

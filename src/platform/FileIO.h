#pragma once
// Reading whole files.
#include <optional>
#include <string>
#include <vector>

namespace TALVIR::Platform {

// The whole content of a file, or nothing when it cannot be opened or read.
std::optional<std::vector<char>> ReadWholeFile(const std::string& path);

}  // namespace TALVIR::Platform

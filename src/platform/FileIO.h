#pragma once
// Reading whole files.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace TALVIR::Platform {

// The whole content of a file, or nothing when it cannot be opened or read.
std::optional<std::vector<char>> ReadWholeFile(const std::string& path);

// Opens a file for reading in binary mode with the platform's own call; null when it cannot be opened. The caller
// closes it with std::fclose.
std::FILE* OpenFileForReading(const std::string& path);

}  // namespace TALVIR::Platform

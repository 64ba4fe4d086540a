#pragma once
// Finding files in a folder.
#include <string>
#include <vector>

namespace GenICam {
namespace Platform {

// Names (not paths) of the regular files (or links to them) in `directory` that start with `prefix` and end with
// `suffix`, both compared exactly, sorted by name. A missing or unreadable folder gives an empty list.
std::vector<std::string> ListFiles(const std::string& directory, const std::string& prefix, const std::string& suffix);

}  // namespace Platform
}  // namespace GenICam

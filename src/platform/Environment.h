#pragma once
// Reading the process environment.
#include <optional>
#include <string>
#include <vector>

namespace TALVIR::Platform {

// The value of an environment variable, or nothing when it is not set.
std::optional<std::string> EnvironmentVariable(const std::string& name);

// The separator between the folders of a search-path variable such as GENICAM_GENTL64_PATH: ':' on Unix, ';' on
// Windows.
char PathListSeparator();

// The folders of a search-path variable's value, in order, empty entries left out.
std::vector<std::string> SplitPathList(const std::string& value);

}  // namespace TALVIR::Platform

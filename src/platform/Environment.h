#pragma once
// Reading the process environment.
#include <optional>
#include <string>

namespace TALVIR::Platform {

// The value of an environment variable, or nothing when it is not set.
std::optional<std::string> EnvironmentVariable(const std::string& name);

} // namespace TALVIR::Platform

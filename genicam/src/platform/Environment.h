#pragma once
// Reading the process environment.
#include <optional>
#include <string>
#include <vector>

namespace GenICam {
namespace Platform {

// The value of an environment variable, or nothing when it is not set.
std::optional<std::string> EnvironmentVariable(const std::string& name);

// Sets (or, with an empty value, removes) an environment variable of this process. Only for set-up before other
// threads read the environment (tests, tools).
void SetEnvironmentVariable(const std::string& name, const std::string& value);

// The non-empty entries of a folder list held in an environment variable (entries separated by the platform's
// list separator: ':' on Linux, where ';' is accepted as well so that one setting can serve both platforms; only ';'
// on Windows, where ':' follows drive letters). Empty when unset.
std::vector<std::string> EnvironmentPathList(const std::string& name);

// The characters that separate the entries of such a list on this platform.
const char* PathListSeparators();

}  // namespace Platform
}  // namespace GenICam

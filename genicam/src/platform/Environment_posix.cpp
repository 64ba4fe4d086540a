#include "platform/Environment.h"

#include <cstdlib>

namespace GenICam {
namespace Platform {

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) {
    return std::nullopt;
  }
  return std::string(value);
}

void SetEnvironmentVariable(const std::string& name, const std::string& value) {
  if (value.empty()) {
    unsetenv(name.c_str());
  } else {
    setenv(name.c_str(), value.c_str(), 1);
  }
}

// ':' as on every Unix, ';' as well so that one setting can serve both platforms.
const char* PathListSeparators() { return ":;"; }

}  // namespace Platform
}  // namespace GenICam

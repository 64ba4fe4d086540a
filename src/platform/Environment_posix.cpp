#include "platform/Environment.h"

#include <cstdlib>

namespace TALVIR::Platform {

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) {
    return std::nullopt;
  }
  return std::string(value);
}

char PathListSeparator() { return ':'; }

}  // namespace TALVIR::Platform

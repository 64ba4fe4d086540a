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

std::vector<std::string> EnvironmentPathList(const std::string& name) {
  std::vector<std::string> entries;
  const std::optional<std::string> value = EnvironmentVariable(name);
  if (!value) {
    return entries;
  }
  std::string current;
  for (const char c : *value) {
    if (c == ':' || c == ';') {
      if (!current.empty()) {
        entries.push_back(current);
      }
      current.clear();
    } else {
      current += c;
    }
  }
  if (!current.empty()) {
    entries.push_back(current);
  }
  return entries;
}

}  // namespace Platform
}  // namespace GenICam

#include "platform/Environment.h"

#include <cstring>

namespace GenICam {
namespace Platform {

std::vector<std::string> EnvironmentPathList(const std::string& name) {
  std::vector<std::string> entries;
  const std::optional<std::string> value = EnvironmentVariable(name);
  if (!value) {
    return entries;
  }
  const char* separators = PathListSeparators();
  std::string current;
  for (const char c : *value) {
    if (std::strchr(separators, c) != nullptr) {
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

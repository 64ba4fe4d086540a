#include "platform/DirectoryListing.h"

#include <cctype>

namespace TALVIR::Platform {
namespace {

bool EqualIgnoringCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool HasExactExtension(const std::string& name, const std::string& extension) {
  const size_t dot = name.find_last_of('.');
  if (dot == std::string::npos || name.size() - dot != 4) {
    return false;
  }
  return EqualIgnoringCase(name.substr(dot + 1), extension);
}

}  // namespace TALVIR::Platform

#include "platform/SystemError.h"

#include <cerrno>
#include <system_error>

namespace TALVIR::Platform {

unsigned long LastSystemError() { return static_cast<unsigned long>(errno); }

std::string SystemErrorText(unsigned long code) {
  // The generic category's message is thread-safe, unlike strerror.
  const std::string text = std::generic_category().message(static_cast<int>(code));
  return text.empty() ? "error " + std::to_string(code) : text;
}

}  // namespace TALVIR::Platform

#pragma once
// The operating system's own words for its error codes, for messages that say why a system call failed.
#include <string>

namespace TALVIR::Platform {

// The code of the calling thread's last failed system call (errno on Linux, GetLastError() on Windows).
unsigned long LastSystemError();

// The system's text for `code`, without a trailing line break; "error <code>" when the system has none.
std::string SystemErrorText(unsigned long code);

}  // namespace TALVIR::Platform

#pragma once
// Setting and removing environment variables of the test process, on either platform.
#include <stdlib.h>

#include <string>

namespace TALVIR::Testing {

inline bool SetTestVariable(const std::string& name, const std::string& value) {
#ifdef _WIN32
  // The C runtime cannot hold an empty value (it would remove the variable); tests that need one do not run there.
  return _putenv_s(name.c_str(), value.c_str()) == 0;
#else
  return setenv(name.c_str(), value.c_str(), 1) == 0;
#endif
}

inline void UnsetTestVariable(const std::string& name) {
#ifdef _WIN32
  _putenv_s(name.c_str(), "");
#else
  unsetenv(name.c_str());
#endif
}

}  // namespace TALVIR::Testing

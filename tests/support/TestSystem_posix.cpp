// The test system on Linux and other POSIX systems.
#include "support/TestSystem.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace TALVIR::Testing {

void SetEnvironmentValue(const std::string& name, const std::string& value) {
  if (setenv(name.c_str(), value.c_str(), 1) != 0) {
    throw std::runtime_error("cannot set the environment variable " + name);
  }
}

std::optional<std::string> EnvironmentValue(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) {
    return std::nullopt;
  }
  return std::string(value);
}

void UnsetEnvironmentValue(const std::string& name) { unsetenv(name.c_str()); }

std::filesystem::path ThisProgramPath() { return std::filesystem::read_symlink("/proc/self/exe"); }

SProgramRun RunProgram(const std::string& commandLine) {
  SProgramRun run;
  FILE* pipe = popen(commandLine.c_str(), "r");
  if (pipe == nullptr) {
    return run;
  }
  char chunk[4096];
  size_t count = 0;
  while ((count = std::fread(chunk, 1, sizeof chunk, pipe)) > 0) {
    run.output.append(chunk, count);
  }
  const int status = pclose(pipe);
  run.status = (status != -1 && WIFEXITED(status)) ? WEXITSTATUS(status) : -1;
  return run;
}

}  // namespace TALVIR::Testing

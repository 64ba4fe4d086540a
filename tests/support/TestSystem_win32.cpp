// The test system on Windows.
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "support/TestSystem.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace TALVIR::Testing {

// The C run-time keeps its own copy of the environment, which getenv reads; _putenv_s updates it and the process's
// environment block together, so that both the library's reads and programs started later see the change.
void SetEnvironmentValue(const std::string& name, const std::string& value) {
  if (_putenv_s(name.c_str(), value.c_str()) != 0) {
    throw std::runtime_error("cannot set the environment variable " + name);
  }
  // _putenv_s with an empty value removes the variable; an empty value is a value, so it is set again directly.
  if (value.empty() && !SetEnvironmentVariableA(name.c_str(), "")) {
    throw std::runtime_error("cannot set the environment variable " + name + " to an empty value");
  }
}

std::optional<std::string> EnvironmentValue(const std::string& name) {
  if (name.empty()) {
    return std::nullopt;
  }
  SetLastError(ERROR_SUCCESS);
  const DWORD size = GetEnvironmentVariableA(name.c_str(), nullptr, 0);
  if (size == 0) {
    if (GetLastError() == ERROR_ENVVAR_NOT_FOUND) {
      return std::nullopt;
    }
    return std::string();
  }
  std::vector<char> value(size);
  const DWORD length = GetEnvironmentVariableA(name.c_str(), value.data(), size);
  return std::string(value.data(), length);
}

void UnsetEnvironmentValue(const std::string& name) {
  _putenv_s(name.c_str(), "");
  SetEnvironmentVariableA(name.c_str(), nullptr);
}

std::filesystem::path ThisProgramPath() {
  std::vector<wchar_t> path(MAX_PATH);
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) {
      return {};
    }
    if (length < path.size()) {
      return std::filesystem::path(std::wstring(path.data(), length));
    }
    path.resize(path.size() * 2);
  }
}

SProgramRun RunProgram(const std::string& commandLine) {
  SProgramRun run;
  FILE* pipe = _popen(commandLine.c_str(), "rb");
  if (pipe == nullptr) {
    return run;
  }
  char chunk[4096];
  size_t count = 0;
  while ((count = std::fread(chunk, 1, sizeof chunk, pipe)) > 0) {
    run.output.append(chunk, count);
  }
  run.status = _pclose(pipe);
  return run;
}

}  // namespace TALVIR::Testing

#pragma once
// Sets an environment variable (or removes it) for the life of the object and puts back what was there before.
#include <optional>
#include <string>

namespace TALVIR::Testing {

class CScopedEnvironmentVariable {
public:
  // Sets `name` to `value`; with no value the variable is removed.
  CScopedEnvironmentVariable(std::string name, const std::optional<std::string>& value);
  ~CScopedEnvironmentVariable();
  CScopedEnvironmentVariable(const CScopedEnvironmentVariable&) = delete;
  CScopedEnvironmentVariable& operator=(const CScopedEnvironmentVariable&) = delete;

  // Changes the value again; the value from before the object was made is still the one put back.
  void Set(const std::optional<std::string>& value) const;

private:
  std::string m_name;
  std::optional<std::string> m_previous;
};

}  // namespace TALVIR::Testing

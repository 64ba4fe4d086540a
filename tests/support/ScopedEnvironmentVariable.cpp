#include "support/ScopedEnvironmentVariable.h"

#include "support/TestSystem.h"

#include <utility>

namespace TALVIR::Testing {

CScopedEnvironmentVariable::CScopedEnvironmentVariable(std::string name, const std::optional<std::string>& value)
    : m_name(std::move(name)), m_previous(EnvironmentValue(m_name)) {
  Set(value);
}

CScopedEnvironmentVariable::~CScopedEnvironmentVariable() {
  try {
    Set(m_previous);
  } catch (...) {
    // A destructor must not throw; a variable that cannot be put back leaves the test's value in place.
  }
}

void CScopedEnvironmentVariable::Set(const std::optional<std::string>& value) const {
  if (value.has_value()) {
    SetEnvironmentValue(m_name, *value);
  } else {
    UnsetEnvironmentValue(m_name);
  }
}

}  // namespace TALVIR::Testing

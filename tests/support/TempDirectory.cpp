#include "support/TempDirectory.h"

#include "support/TestSystem.h"

#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace TALVIR::Testing {

CTempDirectory::CTempDirectory() {
  const std::filesystem::path root = std::filesystem::temp_directory_path();
  // A random name, and a new one whenever the name is taken: create_directory says whether it made the folder, so
  // two programs running at once never share one.
  std::random_device device;
  std::mt19937_64 names(device());
  for (int attempt = 0; attempt < 100; ++attempt) {
    const std::filesystem::path candidate = root / ("talvir-test-" + std::to_string(names()));
    std::error_code error;
    if (std::filesystem::create_directory(candidate, error)) {
      m_path = candidate;
      return;
    }
  }
  throw std::runtime_error("cannot make a temporary folder under " + root.string());
}

CTempDirectory::~CTempDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string CTempDirectory::Directory() const { return m_path.string() + kPathSeparator; }

std::filesystem::path CTempDirectory::WriteFile(const std::string& name, const std::string& content) const {
  const std::filesystem::path file = m_path / name;
  std::ofstream(file, std::ios::binary) << content;
  return file;
}

}  // namespace TALVIR::Testing

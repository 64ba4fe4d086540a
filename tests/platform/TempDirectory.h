#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end of the test.
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace TALVIR::Testing {

class CTempDirectory {
public:
  CTempDirectory() {
    // A random name, created only if it does not exist yet: two tests (or two test programs) never share a folder.
    std::random_device seed;
    std::mt19937_64 random(seed());
    const std::filesystem::path base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100; ++attempt) {
      const std::filesystem::path candidate = base / ("talvir-test-" + std::to_string(random() % 1000000000000ULL));
      std::error_code error;
      if (std::filesystem::create_directory(candidate, error) && !error) {
        m_path = candidate;
        return;
      }
    }
    throw std::runtime_error("cannot create a temporary folder in " + base.string());
  }
  ~CTempDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  CTempDirectory(const CTempDirectory&) = delete;
  CTempDirectory& operator=(const CTempDirectory&) = delete;

  const std::filesystem::path& Path() const { return m_path; }

  std::filesystem::path WriteFile(const std::string& name, const std::string& content) const {
    const std::filesystem::path file = m_path / name;
    std::ofstream(file, std::ios::binary) << content;
    return file;
  }

private:
  std::filesystem::path m_path;
};

}  // namespace TALVIR::Testing

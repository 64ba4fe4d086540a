#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end of the test.
#include <filesystem>
#include <fstream>
#include <string>

#include <stdlib.h>

namespace TALVIR::Testing {

class CTempDirectory {
public:
  CTempDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "talvir-test-XXXXXX").string();
    m_path = mkdtemp(pattern.data());
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

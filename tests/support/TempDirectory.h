#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end of the test.
#include <filesystem>
#include <string>

namespace TALVIR::Testing {

class CTempDirectory {
public:
  // Throws std::runtime_error when no folder can be made.
  CTempDirectory();
  ~CTempDirectory();
  CTempDirectory(const CTempDirectory&) = delete;
  CTempDirectory& operator=(const CTempDirectory&) = delete;

  const std::filesystem::path& Path() const { return m_path; }

  // The folder as a string with this platform's separator appended, as the library builds folder names.
  std::string Directory() const;

  // Writes `content` byte for byte into the file `name` of the folder and returns its path.
  std::filesystem::path WriteFile(const std::string& name, const std::string& content) const;

private:
  std::filesystem::path m_path;
};

}  // namespace TALVIR::Testing

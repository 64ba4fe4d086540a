#pragma once
// Reading settings from an INI file: "[section]" lines and "key=value" lines, section and key names compared
// ignoring case, values without the blanks around them.
#include <optional>
#include <string>
#include <vector>

namespace TALVIR::Platform {

class CIniFile {
public:
  // Reads the file at `path`. A file that does not exist, cannot be read or (on Linux) is not valid INI text
  // leaves the object not loaded. Windows' own INI reader accepts any text.
  explicit CIniFile(std::string path);

  // Whether the file was opened and parsed.
  bool IsLoaded() const { return m_loaded; }

  // The value of `key` in `section`; nothing when the file was not loaded or does not have the key. Where the key
  // appears more than once, the first occurrence counts. A key written without any value ("key=") reads as "".
  std::optional<std::string> Value(const std::string& section, const std::string& key) const;

private:
  struct SEntry {
    std::string section;
    std::string key;
    std::string value;
  };

  std::string m_path;  // Windows asks the system for each key, by this path
  bool m_loaded = false;
  std::vector<SEntry> m_entries;  // Linux parses the whole file up front
};

}  // namespace TALVIR::Platform

#include "front/DiscoveryConfig.h"

#include "platform/FileIO.h"

#include <ini.h>

#include <mutex>
#include <strings.h>

namespace TALVIR {
namespace {

struct CConfigValue {
  bool found = false;
  std::string ctiNames;
};

int OnIniEntry(void* user, const char* section, const char* name, const char* value) {
  auto* result = static_cast<CConfigValue*>(user);
  // The first occurrence wins, as with the usual INI readers.
  if (!result->found && strcasecmp(section, "User") == 0 && strcasecmp(name, "CtiNames") == 0) {
    result->found = true;
    result->ctiNames = value != nullptr ? value : "";
  }
  return 1;
}

// The INI reader keeps its options in process-wide variables. Ours need: no inline comments (';' separates names
// here, it must not start a comment after a blank), no continuation lines, and lines of any length (the default
// line buffer of 200 bytes would cut a long producer list). The options are set for our parse only and restored.
class CIniOptionsForConfig {
public:
  CIniOptionsForConfig()
      : m_lock(Mutex()), m_inlineComments(ini_allow_inline_comments), m_multiline(ini_allow_multiline),
        m_useStack(ini_use_stack), m_realloc(ini_allow_realloc), m_maxLine(ini_max_line) {
    ini_allow_inline_comments = false;
    ini_allow_multiline = false;
    ini_use_stack = false;
    ini_allow_realloc = true;
    ini_max_line = 1 << 20;
  }
  ~CIniOptionsForConfig() {
    ini_allow_inline_comments = m_inlineComments;
    ini_allow_multiline = m_multiline;
    ini_use_stack = m_useStack;
    ini_allow_realloc = m_realloc;
    ini_max_line = m_maxLine;
  }
  CIniOptionsForConfig(const CIniOptionsForConfig&) = delete;
  CIniOptionsForConfig& operator=(const CIniOptionsForConfig&) = delete;

private:
  static std::mutex& Mutex() {
    static std::mutex mutex;
    return mutex;
  }
  std::lock_guard<std::mutex> m_lock;
  bool m_inlineComments;
  bool m_multiline;
  bool m_useStack;
  bool m_realloc;
  int m_maxLine;
};

} // namespace

std::list<std::string> SplitProducerNames(const std::string& value) {
  std::list<std::string> names;
  size_t start = 0;
  for (size_t separator = value.find(';'); separator != std::string::npos; separator = value.find(';', start)) {
    names.push_back(value.substr(start, separator - start));
    start = separator + 1;
  }
  names.push_back(value.substr(start));
  return names;
}

std::optional<std::list<std::string>> ParseDiscoveryConfig(const std::string& text) {
  CConfigValue value;
  int status = 0;
  {
    CIniOptionsForConfig options;
    status = ini_parse_string(text.c_str(), OnIniEntry, &value);
  }
  if (status != 0) {
    return std::nullopt;
  }
  return SplitProducerNames(value.ctiNames);
}

std::optional<std::list<std::string>> ReadDiscoveryConfig(const std::string& path) {
  const std::optional<std::vector<char>> content = Platform::ReadWholeFile(path);
  if (!content) {
    return std::nullopt;
  }
  return ParseDiscoveryConfig(std::string(content->begin(), content->end()));
}

} // namespace TALVIR

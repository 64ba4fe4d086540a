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
  bool skipFound = false;
  bool skipEmptyInterfaces = false;
  bool searchFound = false;
  bool searchGenTLPath = false;
};

int OnIniEntry(void* user, const char* section, const char* name, const char* value) {
  auto* result = static_cast<CConfigValue*>(user);
  if (strcasecmp(section, "User") != 0) {
    return 1;
  }
  const std::string text = value != nullptr ? value : "";
  // The first occurrence of each key wins, as with the usual INI readers.
  if (!result->found && strcasecmp(name, "CtiNames") == 0) {
    result->found = true;
    result->ctiNames = text;
  } else if (!result->skipFound && strcasecmp(name, "SkipEmptyInterfaces") == 0) {
    result->skipFound = true;
    result->skipEmptyInterfaces = ParseConfigSwitch(text);
  } else if (!result->searchFound && strcasecmp(name, "SearchGenTLPath") == 0) {
    result->searchFound = true;
    result->searchGenTLPath = ParseConfigSwitch(text);
  }
  return 1;
}

// The INI reader keeps its options in process-wide variables, which an application using the same reader may have
// changed. Every option that affects parsing is therefore set for our parse only and restored afterwards. Ours
// need: no inline comments (';' separates names here, it must not start a comment after a blank), no continuation
// lines, lines of any length (the default line buffer of 200 bytes would cut a long producer list), and otherwise
// the reader's usual rules: a leading UTF-8 byte order mark is skipped, lines starting with ';' or '#' are
// comments, and a line without '=' or ':' makes the text invalid.
class CIniOptionsForConfig {
public:
  CIniOptionsForConfig()
      : m_lock(Mutex()), m_inlineComments(ini_allow_inline_comments), m_multiline(ini_allow_multiline),
        m_useStack(ini_use_stack), m_realloc(ini_allow_realloc), m_maxLine(ini_max_line),
        m_initialAlloc(ini_initial_alloc), m_bom(ini_allow_bom), m_commentPrefixes(ini_start_comment_prefixes),
        m_noValue(ini_allow_no_value), m_stopOnFirstError(ini_stop_on_first_error) {
    static char commentPrefixes[] = ";#";
    ini_allow_inline_comments = false;
    ini_allow_multiline = false;
    ini_use_stack = false;
    ini_allow_realloc = true;
    ini_max_line = 1 << 20;
    ini_initial_alloc = 256;
    ini_allow_bom = true;
    ini_start_comment_prefixes = commentPrefixes;
    ini_allow_no_value = false;
    ini_stop_on_first_error = false;
  }
  ~CIniOptionsForConfig() {
    ini_allow_inline_comments = m_inlineComments;
    ini_allow_multiline = m_multiline;
    ini_use_stack = m_useStack;
    ini_allow_realloc = m_realloc;
    ini_max_line = m_maxLine;
    ini_initial_alloc = m_initialAlloc;
    ini_allow_bom = m_bom;
    ini_start_comment_prefixes = m_commentPrefixes;
    ini_allow_no_value = m_noValue;
    ini_stop_on_first_error = m_stopOnFirstError;
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
  int m_initialAlloc;
  bool m_bom;
  char* m_commentPrefixes;
  bool m_noValue;
  bool m_stopOnFirstError;
};

}  // namespace

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

bool ParseConfigSwitch(const std::string& value) {
  for (const char* yes : {"1", "true", "yes", "on"}) {
    if (strcasecmp(value.c_str(), yes) == 0) {
      return true;
    }
  }
  return false;
}

std::optional<CDiscoveryConfig> ParseDiscoveryConfigText(const std::string& text) {
  CConfigValue value;
  int status = 0;
  {
    CIniOptionsForConfig options;
    status = ini_parse_string(text.c_str(), OnIniEntry, &value);
  }
  if (status != 0) {
    return std::nullopt;
  }
  CDiscoveryConfig config;
  config.ctiNames = SplitProducerNames(value.ctiNames);
  config.ctiNamesGiven = value.found;
  config.skipEmptyInterfaces = value.skipEmptyInterfaces;
  config.searchGenTLPath = value.searchGenTLPath;
  config.switchesGiven = value.skipFound || value.searchFound;
  return config;
}

std::optional<std::list<std::string>> ParseDiscoveryConfig(const std::string& text) {
  std::optional<CDiscoveryConfig> config = ParseDiscoveryConfigText(text);
  if (!config) {
    return std::nullopt;
  }
  return std::move(config->ctiNames);
}

std::optional<CDiscoveryConfig> ReadDiscoveryConfig(const std::string& path) {
  const std::optional<std::vector<char>> content = Platform::ReadWholeFile(path);
  if (!content) {
    return std::nullopt;
  }
  return ParseDiscoveryConfigText(std::string(content->begin(), content->end()));
}

}  // namespace TALVIR

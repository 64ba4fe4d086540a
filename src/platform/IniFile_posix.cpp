#include "platform/IniFile.h"

#include "platform/FileIO.h"

#include <ini.h>
#include <strings.h>

#include <mutex>

namespace TALVIR::Platform {
namespace {

// The INI reader keeps its options in process-wide variables, which an application using the same reader may have
// changed. Every option that affects parsing is therefore set for our parse only and restored afterwards. Ours
// need: no inline comments (';' separates names in our settings, it must not start a comment after a blank), no
// continuation lines, lines of any length (the default line buffer of 200 bytes would cut a long producer list),
// and otherwise the reader's usual rules: a leading UTF-8 byte order mark is skipped, lines starting with ';' or
// '#' are comments, and a line without '=' or ':' makes the text invalid.
class CIniOptionsForUs {
public:
  CIniOptionsForUs()
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
  ~CIniOptionsForUs() {
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
  CIniOptionsForUs(const CIniOptionsForUs&) = delete;
  CIniOptionsForUs& operator=(const CIniOptionsForUs&) = delete;

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

using Entries = std::vector<std::pair<std::pair<std::string, std::string>, std::string>>;

int OnIniEntry(void* user, const char* section, const char* name, const char* value) {
  static_cast<Entries*>(user)->push_back({{section, name}, value != nullptr ? value : ""});
  return 1;
}

}  // namespace

CIniFile::CIniFile(std::string path) : m_path(std::move(path)) {
  const std::optional<std::vector<char>> content = ReadWholeFile(m_path);
  if (!content) {
    return;
  }
  const std::string text(content->begin(), content->end());
  Entries entries;
  int status = 0;
  {
    CIniOptionsForUs options;
    status = ini_parse_string(text.c_str(), OnIniEntry, &entries);
  }
  if (status != 0) {
    return;
  }
  m_loaded = true;
  for (auto& entry : entries) {
    m_entries.push_back({std::move(entry.first.first), std::move(entry.first.second), std::move(entry.second)});
  }
}

std::optional<std::string> CIniFile::Value(const std::string& section, const std::string& key) const {
  for (const SEntry& entry : m_entries) {
    if (strcasecmp(entry.section.c_str(), section.c_str()) == 0 && strcasecmp(entry.key.c_str(), key.c_str()) == 0) {
      return entry.value;
    }
  }
  return std::nullopt;
}

}  // namespace TALVIR::Platform

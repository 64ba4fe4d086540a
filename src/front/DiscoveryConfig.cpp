#include "front/DiscoveryConfig.h"

#include "platform/IniFile.h"

#include <cctype>

namespace TALVIR {
namespace {

bool EqualIgnoringCase(const std::string& a, const char* b) {
  size_t i = 0;
  for (; i < a.size() && b[i] != '\0'; ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return i == a.size() && b[i] == '\0';
}

constexpr const char* kSection = "User";

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
    if (EqualIgnoringCase(value, yes)) {
      return true;
    }
  }
  return false;
}

std::optional<CDiscoveryConfig> ReadDiscoveryConfig(const std::string& path) {
  const Platform::CIniFile file(path);
  if (!file.IsLoaded()) {
    return std::nullopt;
  }
  const std::optional<std::string> ctiNames = file.Value(kSection, "CtiNames");
  const std::optional<std::string> skip = file.Value(kSection, "SkipEmptyInterfaces");
  const std::optional<std::string> search = file.Value(kSection, "SearchGenTLPath");
  CDiscoveryConfig config;
  // An absent key reads as the empty value, which gives one empty name.
  config.ctiNames = SplitProducerNames(ctiNames.value_or(std::string()));
  config.ctiNamesGiven = ctiNames.has_value();
  config.skipEmptyInterfaces = skip && ParseConfigSwitch(*skip);
  config.searchGenTLPath = search && ParseConfigSwitch(*search);
  config.switchesGiven = skip.has_value() || search.has_value();
  return config;
}

}  // namespace TALVIR

#pragma once
// The discovery configuration: which producer files to use, read from an INI file beside the library.
#include <list>
#include <optional>
#include <string>

namespace TALVIR {

// File name of the configuration, beside the library.
constexpr const char* kDiscoveryConfigFileName = "DiscoveryCfg.ini";

// Everything the configuration file says; keys of the section "User", compared ignoring case.
struct CDiscoveryConfig {
  // "CtiNames": the producer names, split by SplitProducerNames (an absent key gives one empty name).
  std::list<std::string> ctiNames;
  bool ctiNamesGiven = false;
  // "SkipEmptyInterfaces": interfaces without devices are skipped instead of failing their producer's enumeration.
  bool skipEmptyInterfaces = false;
  // "SearchGenTLPath": producers are also looked for in the folders of GENICAM_GENTL64_PATH.
  bool searchGenTLPath = false;
  // Whether the file sets either switch (whatever its value).
  bool switchesGiven = false;
};

// An INI switch: "1", "true", "yes" and "on" in any case are true; anything else is false.
bool ParseConfigSwitch(const std::string& value);

// Splits the configured value at every ';'. Pieces are kept as they stand (no trimming), empty ones included, and
// the rest after the last ';' is always appended, even when empty: "" gives one empty name, "a;" gives "a" and "".
std::list<std::string> SplitProducerNames(const std::string& value);

// Every setting of the INI file at `path` (section "User"; section and key names compared ignoring case, the first
// of two entries counting); nothing when it cannot be read or parsed.
std::optional<CDiscoveryConfig> ReadDiscoveryConfig(const std::string& path);

}  // namespace TALVIR

#pragma once
// The discovery configuration: which producer files to use, read from an INI file beside the library.
#include <list>
#include <optional>
#include <string>

namespace TALVIR {

// File name of the configuration, beside the library.
constexpr const char* kDiscoveryConfigFileName = "DiscoveryCfg.ini";

// Splits the configured value at every ';'. Pieces are kept as they stand (no trimming), empty ones included, and
// the rest after the last ';' is always appended, even when empty: "" gives one empty name, "a;" gives "a" and "".
std::list<std::string> SplitProducerNames(const std::string& value);

// The producer names configured in INI text (section "User", key "CtiNames", both compared ignoring case; an absent
// key reads as the empty value); nothing when the text is not valid INI.
std::optional<std::list<std::string>> ParseDiscoveryConfig(const std::string& text);

// The same for the file at `path`; nothing when it cannot be read or parsed.
std::optional<std::list<std::string>> ReadDiscoveryConfig(const std::string& path);

} // namespace TALVIR

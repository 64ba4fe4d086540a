#pragma once
// A description file served from a module's register space through a local: URL.
#include <cstdint>
#include <string>
#include <vector>

namespace TalvirSim {

struct SDescription {
  std::string fileName;    // "TalvirSimSystem.xml" or ".zip"
  std::vector<char> data;  // XML text, or the ZIP archive
  uint64_t address = 0;    // where data starts in the module's register space
  std::string scheme = "local:";
  uint32_t schemaMajor = 1;
  uint32_t schemaMinor = 1;
  uint32_t fileMajor = 1;
  uint32_t fileMinor = 0;
  uint32_t fileSubMinor = 0;

  std::string Url() const;
  bool Covers(uint64_t start, size_t length) const;
};

// Where the system, interface, device and data stream modules serve their own description.
constexpr uint64_t kModuleDescriptionAddress = 0x10000000;

// Builds a description from XML text, zipping it when asked.
SDescription MakeDescription(const std::string& baseName, const std::string& xml, uint64_t address, bool zipped,
                             const std::string& scheme);

// A module's own description: XML at kModuleDescriptionAddress, served through a local: URL.
SDescription ModuleDescription(const std::string& baseName, const std::string& xml);

// The embedded description texts (see xml/ and the build's embedding step).
const std::string& EmbeddedXml(const std::string& name);

// Removes every stretch from `begin` to `end` (markers included), or only the markers when `keep` is true.
std::string SelectSection(std::string text, const std::string& begin, const std::string& end, bool keep);

// Replaces every occurrence of `marker` in `text`.
std::string ReplaceMarker(std::string text, const std::string& marker, const std::string& replacement);

}  // namespace TalvirSim

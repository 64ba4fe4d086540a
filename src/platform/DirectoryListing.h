#pragma once
// Finding files in a folder by extension.
#include <string>
#include <vector>

namespace TALVIR::Platform {

// Names (not paths) of the regular files in `directory` whose extension equals `extension` ignoring case
// (for example "cti"), in the order the file system lists them. Sub-folders are skipped, and so is any name
// whose last dot does not start an extension of exactly three characters: a Windows-style "*.cti" wildcard also
// matches "x.ctix", which is not a producer. An unreadable or missing folder gives an empty list.
std::vector<std::string> ListFilesWithExtension(const std::string& directory, const std::string& extension);

// The name rule of ListFilesWithExtension, the same on every platform: the last dot starts an extension of exactly
// three characters that equals `extension` ignoring case.
bool HasExactExtension(const std::string& name, const std::string& extension);

}  // namespace TALVIR::Platform

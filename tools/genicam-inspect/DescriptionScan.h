#pragma once
// Which element each named feature of a description file comes from. The node map does not expose element names, and
// the dump reports them, so the description is scanned once more, cheaply, for the names of value-carrying elements.
#include "FeatureDump.h"

#include <map>
#include <string>

namespace TALVIR::Tools {
// Feature name -> element name, for every element with a value interface directly under the root, inside Group
// elements (any depth) and StructEntry elements of StructReg. Throws std::runtime_error on malformed XML.
std::map<std::string, std::string> ScanValueElements(const std::string& xml);

// The first file of a ZIP archive held in memory (STORE or DEFLATE). Throws std::runtime_error on corrupt data.
std::string FirstFileOfZip(const std::string& zipBytes);

// True when the bytes start with the ZIP local-file signature.
bool LooksLikeZip(const std::string& bytes);
}  // namespace TALVIR::Tools

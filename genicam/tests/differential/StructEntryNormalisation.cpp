#include "StructEntryNormalisation.h"

#include <pugixml.hpp>

#include <sstream>

namespace TALVIR::Tools {
namespace {
const char* const kSharedElements[] = {"pIsImplemented", "pIsAvailable", "pIsLocked"};

size_t Normalise(pugi::xml_node parent) {
  size_t changed = 0;
  for (pugi::xml_node child : parent.children()) {
    if (child.type() != pugi::node_element) continue;
    const std::string element = child.name();
    if (element == "Group") changed += Normalise(child);
    if (element != "StructReg") continue;
    for (pugi::xml_node entry : child.children("StructEntry")) {
      bool touched = false;
      for (const char* shared : kSharedElements) {
        const pugi::xml_node source = child.child(shared);
        if (source && !entry.child(shared)) {
          entry.prepend_copy(source);
          touched = true;
        }
      }
      changed += touched ? 1 : 0;
    }
  }
  return changed;
}
}  // namespace

std::string CopyStructRegAccessElementsToEntries(const std::string& xml, size_t* changedEntries) {
  pugi::xml_document document;
  if (!document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_declaration)) return xml;
  const size_t changed = Normalise(document.document_element());
  if (changedEntries != nullptr) *changedEntries = changed;
  if (changed == 0) return xml;
  std::ostringstream out;
  document.save(out, "", pugi::format_raw);
  return out.str();
}
}  // namespace TALVIR::Tools

// The saved-settings functions of GenApi/Persistence.h.
#include <GenApi/Persistence.h>

#include "persistence/FeatureReader.h"
#include "persistence/FeatureWriter.h"

namespace GenApi {

gcstring SaveFeatures(INodeMap& nodeMap, EFeatureSelection selection, std::vector<SFeatureIssue>* skipped) {
  CFeatureWriter writer(nodeMap, selection);
  gcstring text = writer.Write();
  if (skipped != nullptr) {
    *skipped = writer.Skipped();
  }
  return text;
}

CFeatureLoadResult LoadFeatures(INodeMap& nodeMap, const gcstring& text) { return CFeatureReader(nodeMap).Load(text); }

gcstring EscapeFeatureValue(const gcstring& value) {
  std::string text;
  text.reserve(value.size());
  for (char c : value) {
    switch (c) {
    case '\\': text += "\\\\"; break;
    case '\t': text += "\\t"; break;
    case '\n': text += "\\n"; break;
    case '\r': text += "\\r"; break;
    default: text += c; break;
    }
  }
  return gcstring(text);
}

bool UnescapeFeatureValue(const gcstring& text, gcstring& value) {
  std::string out;
  out.reserve(text.size());
  for (size_t index = 0; index < text.size(); ++index) {
    if (text[index] != '\\') {
      out += text[index];
      continue;
    }
    if (++index == text.size()) {
      return false;
    }
    switch (text[index]) {
    case '\\': out += '\\'; break;
    case 't': out += '\t'; break;
    case 'n': out += '\n'; break;
    case 'r': out += '\r'; break;
    default: return false;
    }
  }
  value = gcstring(out);
  return true;
}

}  // namespace GenApi

#pragma once
// Reads settings text (see GenApi/Persistence.h) and sets each named feature of a node map.
#include <vector>

#include <GenApi/Persistence.h>

namespace GenApi {

class CFeatureReader {
public:
  explicit CFeatureReader(INodeMap& nodeMap);
  // Parses the text and sets its features in passes (see LoadFeatures); lines that do not parse are failures too.
  CFeatureLoadResult Load(const gcstring& text);

private:
  struct SLine {
    size_t Number;
    gcstring Name;
    gcstring Value;    // unescaped
    gcstring Written;  // as in the text
  };
  // Splits the text into lines to set; malformed lines go to `failures`.
  std::vector<SLine> Parse(const gcstring& text, std::vector<SFeatureIssue>& failures) const;
  // Sets every line once; returns the failures of this pass.
  std::vector<SFeatureIssue> Pass(const std::vector<SLine>& lines, size_t& applied);
  // Sets one line; returns why it could not be set, empty on success.
  gcstring Set(const SLine& line);

  INodeMap& m_nodeMap;
};

}  // namespace GenApi

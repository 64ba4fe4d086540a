#pragma once
// Walks a node map and writes its settings as "Name<TAB>Value" lines (see GenApi/Persistence.h for the format).
#include <set>
#include <string>
#include <vector>

#include <GenApi/Persistence.h>
#include <GenApi/Pointer.h>

namespace GenApi {

class CFeatureWriter {
public:
  CFeatureWriter(INodeMap& nodeMap, EFeatureSelection selection);
  // Writes every setting once; the node map's selectors are back at their values when this returns.
  gcstring Write();
  const std::vector<SFeatureIssue>& Skipped() const { return m_skipped; }

private:
  // Writes the node's line, or the block of the selector it belongs to when that is not written yet.
  void WriteNode(INode* node, std::string& out);
  // Features in the order of the category tree from Root, then every other node of the map.
  std::vector<INode*> OrderedNodes() const;
  void CollectCategory(INode* node, std::set<INode*>& seen, std::vector<INode*>& out) const;
  bool IsSetting(INode* node) const;
  static bool IsUsableSelector(INode* node);
  // The outermost usable selector that (transitively) selects the node; null when none does.
  static INode* OutermostSelector(INode* node);
  static std::vector<gcstring> SelectorValues(INode* selector);
  // Appends the selector's block: for each of its values, its line and those of what it selects; then its own value.
  void WriteSelector(INode* selector, std::string& out);
  void WriteSelected(INode* selector, std::string& out);
  // Puts a selector back to the value it had before its block was written.
  void Restore(INode* selector, const gcstring& original, int64_t originalNumber);
  // Appends "Name<TAB>Value" for a setting; a read that fails is noted in m_skipped.
  void WriteValue(INode* node, std::string& out);

  INodeMap& m_nodeMap;
  EFeatureSelection m_selection;
  std::set<INode*> m_written;             // selectors whose block is written, features written at the top level
  std::vector<INode*> m_activeSelectors;  // selectors being iterated, outermost first (guards against cycles)
  std::vector<SFeatureIssue> m_skipped;
};

}  // namespace GenApi

#pragma once
// What the differential test needs to know about a description file beyond the dumps: for every named node, the
// element it comes from, which elements it has, what it references, and whether its value depends (directly or
// through the nodes it references) on a construct the comparison engine is documented to handle differently.
#include <map>
#include <set>
#include <string>

namespace TALVIR::Tools {
class CDescriptionFacts {
public:
  // Properties a node can have itself; DependsOn() also finds them on the nodes it references.
  enum EFlag {
    CLikeOperators,                 // a formula using "==", "!=" or logical "!"
    EventOrChunkPort,               // a Port with an EventID, ChunkID or pChunkID
    BooleanVariable,                // a formula variable (pVariable) that is a Boolean node
    FunctionNamedVariable,          // a formula variable, constant or expression named like a function ("EXP")
    FloatFunctionInIntegerFormula,  // an IntSwissKnife / IntConverter formula calling ABS, SQRT, ... (float-only)
    FlagCount
  };

  // Throws std::runtime_error on malformed XML.
  explicit CDescriptionFacts(const std::string& xml);
  CDescriptionFacts() = default;

  bool HasElement(const std::string& node, const std::string& element) const;
  // Text of a direct child element (for a StructEntry, also of its StructReg); empty when absent.
  std::string ElementText(const std::string& node, const std::string& element) const;
  // The element a node comes from ("Integer", ...); empty for unknown names.
  std::string ElementOf(const std::string& node) const;
  bool DependsOn(const std::string& node, EFlag flag) const;
  // Every pVariable and the pValue of the node are integer-valued nodes (Integer, IntReg, IntSwissKnife, ...).
  bool InputsAreIntegers(const std::string& node) const;
  // The formula inputs of a node (pVariable targets and pValue) and every node it references.
  std::set<std::string> Inputs(const std::string& node) const;
  const std::set<std::string>& References(const std::string& node) const;

  bool DependsOnCLikeOperators(const std::string& node) const { return DependsOn(node, CLikeOperators); }
  bool DependsOnEventOrChunkPort(const std::string& node) const { return DependsOn(node, EventOrChunkPort); }

private:
  struct SNode {
    std::string element;
    std::map<std::string, std::string> texts;  // direct child element -> its text (first occurrence)
    std::set<std::string> references;          // node names it refers to (p-elements, anywhere below it)
    std::set<std::string> variables;           // pVariable targets
    std::set<std::string> variableNames;       // Name attributes of pVariable, Constant and Expression
    std::string formulas;                      // every formula text, concatenated
    bool flags[FlagCount] = {};
  };
  bool Depends(const std::string& node, EFlag flag, std::map<std::string, int>& state) const;

  std::map<std::string, SNode> m_Nodes;
  mutable std::map<std::string, bool> m_Memo[FlagCount];
};
}  // namespace TALVIR::Tools

#pragma once
// What the differential test needs to know about a description file beyond the dumps: for every named node, the
// element it comes from, which elements it has, and whether its value depends (directly or through the nodes it
// references) on a construct the comparison engine is documented to handle differently.
#include <map>
#include <set>
#include <string>

namespace TALVIR::Tools
{
class CDescriptionFacts
{
public:
    // Throws std::runtime_error on malformed XML.
    explicit CDescriptionFacts(const std::string& xml);
    CDescriptionFacts() = default;

    bool HasElement(const std::string& node, const std::string& element) const;
    // The node or a node it references (transitively) has a formula using "==", "!=" or logical "!".
    bool DependsOnCLikeOperators(const std::string& node) const;
    // The node or a node it references (transitively) reads through a Port with an EventID or a ChunkID.
    bool DependsOnEventOrChunkPort(const std::string& node) const;

private:
    struct SNode
    {
        std::set<std::string> elements;   // names of its direct child elements
        std::set<std::string> references; // node names it refers to (p-elements, anywhere below it)
        bool cLikeOperators = false;
        bool eventOrChunkPort = false;
    };
    bool Depends(const std::string& node, bool SNode::*flag, std::map<std::string, int>& state) const;

    std::map<std::string, SNode> m_Nodes;
    mutable std::map<std::string, bool> m_CLikeMemo;
    mutable std::map<std::string, bool> m_PortMemo;
};
} // namespace TALVIR::Tools

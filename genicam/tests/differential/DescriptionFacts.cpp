#include "DescriptionFacts.h"

#include <pugixml.hpp>

#include <cstring>
#include <stdexcept>

namespace TALVIR::Tools
{
namespace
{
bool IsFormulaElement(const char* element)
{
    return std::strcmp(element, "Formula") == 0 || std::strcmp(element, "FormulaTo") == 0 ||
           std::strcmp(element, "FormulaFrom") == 0 || std::strcmp(element, "Expression") == 0;
}

// "==", "!=" or a logical "!": every '!' is one of them.
bool HasCLikeOperator(const std::string& formula)
{
    return formula.find("==") != std::string::npos || formula.find('!') != std::string::npos;
}

// Collects the references and formula facts of one element and of everything below it (EnumEntry, embedded
// IntSwissKnife, ...).
template <typename TNode>
void CollectElement(const pugi::xml_node& element, TNode& node)
{
    const char* name = element.name();
    if (name[0] == 'p' && name[1] >= 'A' && name[1] <= 'Z')
    {
        const std::string target = element.text().get();
        if (!target.empty())
            node.references.insert(target);
    }
    else if (IsFormulaElement(name) && HasCLikeOperator(element.text().get()))
        node.cLikeOperators = true;
    for (const pugi::xml_node& child : element.children())
        if (child.type() == pugi::node_element)
            CollectElement(child, node);
}
} // namespace

CDescriptionFacts::CDescriptionFacts(const std::string& xml)
{
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(xml.data(), xml.size());
    if (!parsed)
        throw std::runtime_error(std::string("XML error: ") + parsed.description());

    // Walks the root, Group elements and StructReg entries; a StructEntry shares its StructReg's elements.
    struct SWalker
    {
        std::map<std::string, SNode>& nodes;
        void Walk(const pugi::xml_node& parent, const SNode* inherited)
        {
            for (const pugi::xml_node& child : parent.children())
            {
                if (child.type() != pugi::node_element)
                    continue;
                const std::string element = child.name();
                if (element == "Group")
                {
                    Walk(child, nullptr);
                    continue;
                }
                if (element == "StructReg")
                {
                    SNode shared;
                    for (const pugi::xml_node& part : child.children())
                        if (part.type() == pugi::node_element && std::strcmp(part.name(), "StructEntry") != 0)
                        {
                            shared.elements.insert(part.name());
                            CollectElement(part, shared);
                        }
                    Walk(child, &shared);
                    continue;
                }
                const std::string name = child.attribute("Name").value();
                if (name.empty())
                    continue;
                SNode node = inherited != nullptr ? *inherited : SNode{};
                for (const pugi::xml_node& part : child.children())
                    if (part.type() == pugi::node_element)
                    {
                        node.elements.insert(part.name());
                        CollectElement(part, node);
                    }
                if (element == "Port")
                    node.eventOrChunkPort = node.elements.count("EventID") != 0 || node.elements.count("ChunkID") != 0 ||
                                            node.elements.count("pChunkID") != 0;
                nodes[name] = std::move(node);
            }
        }
    };
    SWalker{m_Nodes}.Walk(document.document_element(), nullptr);
}

bool CDescriptionFacts::HasElement(const std::string& node, const std::string& element) const
{
    const auto it = m_Nodes.find(node);
    return it != m_Nodes.end() && it->second.elements.count(element) != 0;
}

// Depth-first search with a three-state mark (0 unseen, 1 on the path, 2 done) so that reference cycles terminate.
bool CDescriptionFacts::Depends(const std::string& node, bool SNode::*flag, std::map<std::string, int>& state) const
{
    const auto it = m_Nodes.find(node);
    if (it == m_Nodes.end())
        return false;
    int& mark = state[node];
    if (mark != 0)
        return false;
    mark = 1;
    bool result = it->second.*flag;
    for (const std::string& reference : it->second.references)
        if (!result && Depends(reference, flag, state))
            result = true;
    state[node] = 2;
    return result;
}

bool CDescriptionFacts::DependsOnCLikeOperators(const std::string& node) const
{
    const auto memo = m_CLikeMemo.find(node);
    if (memo != m_CLikeMemo.end())
        return memo->second;
    std::map<std::string, int> state;
    return m_CLikeMemo[node] = Depends(node, &SNode::cLikeOperators, state);
}

bool CDescriptionFacts::DependsOnEventOrChunkPort(const std::string& node) const
{
    const auto memo = m_PortMemo.find(node);
    if (memo != m_PortMemo.end())
        return memo->second;
    std::map<std::string, int> state;
    return m_PortMemo[node] = Depends(node, &SNode::eventOrChunkPort, state);
}
} // namespace TALVIR::Tools

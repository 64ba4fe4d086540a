#include "DescriptionFacts.h"

#include <pugixml.hpp>

#include <cctype>
#include <cstring>
#include <stdexcept>

namespace TALVIR::Tools {
namespace {
const char* const kFunctionNames[] = {"SGN",  "NEG",   "ATAN",  "COS",  "SIN",   "TAN",  "ABS",  "EXP", "LN", "LG",
                                      "SQRT", "TRUNC", "FLOOR", "CEIL", "ROUND", "ASIN", "ACOS", "E",   "PI"};
const char* const kFloatOnlyFunctions[] = {"ATAN", "COS",   "SIN",   "TAN",  "ABS",   "EXP",  "LN",  "LG",
                                           "SQRT", "TRUNC", "FLOOR", "CEIL", "ROUND", "ASIN", "ACOS"};

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// A call of the function: its name, not preceded by an identifier character, followed by optional blanks and "(".
bool CallsFunction(const std::string& formula, const std::string& function) {
  const std::string text = Upper(formula);
  for (size_t at = text.find(function); at != std::string::npos; at = text.find(function, at + 1)) {
    if (at > 0 && (std::isalnum(static_cast<unsigned char>(text[at - 1])) || text[at - 1] == '_')) continue;
    size_t next = at + function.size();
    while (next < text.size() && std::isspace(static_cast<unsigned char>(text[next]))) ++next;
    if (next < text.size() && text[next] == '(') return true;
  }
  return false;
}

bool IsFormulaElement(const char* element) {
  return std::strcmp(element, "Formula") == 0 || std::strcmp(element, "FormulaTo") == 0 ||
         std::strcmp(element, "FormulaFrom") == 0 || std::strcmp(element, "Expression") == 0;
}

// "==", "!=" or a logical "!": every '!' is one of them.
bool HasCLikeOperator(const std::string& formula) {
  return formula.find("==") != std::string::npos || formula.find('!') != std::string::npos;
}

// Collects the references and formula facts of one element and of everything below it (EnumEntry, embedded
// IntSwissKnife, ...).
template <typename TNode>
void CollectElement(const pugi::xml_node& element, TNode& node, bool cLike[]) {
  const char* name = element.name();
  if (name[0] == 'p' && name[1] >= 'A' && name[1] <= 'Z') {
    const std::string target = element.text().get();
    if (!target.empty()) {
      node.references.insert(target);
      if (std::strcmp(name, "pVariable") == 0) node.variables.insert(target);
    }
  } else if (IsFormulaElement(name)) {
    node.formulas += std::string(element.text().get()) + "\n";
    if (HasCLikeOperator(element.text().get())) *cLike = true;
  }
  if (std::strcmp(name, "pVariable") == 0 || std::strcmp(name, "Constant") == 0 || std::strcmp(name, "Expression") == 0)
    node.variableNames.insert(element.attribute("Name").value());
  for (const pugi::xml_node& child : element.children())
    if (child.type() == pugi::node_element) CollectElement(child, node, cLike);
}
}  // namespace

CDescriptionFacts::CDescriptionFacts(const std::string& xml) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(xml.data(), xml.size());
  if (!parsed) throw std::runtime_error(std::string("XML error: ") + parsed.description());

  // Walks the root, Group elements and StructReg entries; a StructEntry shares its StructReg's elements.
  struct SWalker {
    std::map<std::string, SNode>& nodes;
    void AddParts(const pugi::xml_node& from, SNode& node, bool skipEntries) {
      for (const pugi::xml_node& part : from.children()) {
        if (part.type() != pugi::node_element || (skipEntries && std::strcmp(part.name(), "StructEntry") == 0))
          continue;
        node.texts.emplace(part.name(), part.text().get());
        CollectElement(part, node, &node.flags[CLikeOperators]);
      }
    }
    void Walk(const pugi::xml_node& parent, const SNode* shared) {
      for (const pugi::xml_node& child : parent.children()) {
        if (child.type() != pugi::node_element) continue;
        const std::string element = child.name();
        if (shared != nullptr && element != "StructEntry") continue;
        if (element == "Group") {
          Walk(child, nullptr);
          continue;
        }
        if (element == "StructReg") {
          SNode common;
          AddParts(child, common, true);
          Walk(child, &common);
          continue;
        }
        const std::string name = child.attribute("Name").value();
        if (name.empty()) continue;
        SNode node;
        AddParts(child, node, false);
        if (shared != nullptr) {
          for (const auto& text : shared->texts) node.texts.insert(text);
          node.references.insert(shared->references.begin(), shared->references.end());
          node.flags[CLikeOperators] = node.flags[CLikeOperators] || shared->flags[CLikeOperators];
        }
        node.element = element;
        if (element == "Port")
          node.flags[EventOrChunkPort] = node.texts.count("EventID") != 0 || node.texts.count("ChunkID") != 0 ||
                                         node.texts.count("pChunkID") != 0;
        nodes[name] = std::move(node);
      }
    }
  };
  SWalker{m_Nodes}.Walk(document.document_element(), nullptr);

  for (auto& entry : m_Nodes) {
    SNode& node = entry.second;
    for (const std::string& variable : node.variables)
      if (ElementOf(variable) == "Boolean") node.flags[BooleanVariable] = true;
    for (const std::string& variableName : node.variableNames)
      for (const char* function : kFunctionNames)
        if (Upper(variableName) == function) node.flags[FunctionNamedVariable] = true;
    if (node.element == "IntSwissKnife" || node.element == "IntConverter")
      for (const char* function : kFloatOnlyFunctions)
        if (CallsFunction(node.formulas, function)) node.flags[FloatFunctionInIntegerFormula] = true;
  }
}

bool CDescriptionFacts::HasElement(const std::string& node, const std::string& element) const {
  const auto it = m_Nodes.find(node);
  return it != m_Nodes.end() && it->second.texts.count(element) != 0;
}

std::string CDescriptionFacts::ElementText(const std::string& node, const std::string& element) const {
  const auto it = m_Nodes.find(node);
  if (it == m_Nodes.end()) return {};
  const auto text = it->second.texts.find(element);
  return text == it->second.texts.end() ? std::string() : text->second;
}

std::string CDescriptionFacts::ElementOf(const std::string& node) const {
  const auto it = m_Nodes.find(node);
  return it == m_Nodes.end() ? std::string() : it->second.element;
}

// Depth-first search with a three-state mark (0 unseen, 1 on the path, 2 done) so that reference cycles terminate.
bool CDescriptionFacts::Depends(const std::string& node, EFlag flag, std::map<std::string, int>& state) const {
  const auto it = m_Nodes.find(node);
  if (it == m_Nodes.end()) return false;
  int& mark = state[node];
  if (mark != 0) return false;
  mark = 1;
  bool result = it->second.flags[flag];
  for (const std::string& reference : it->second.references)
    if (!result && Depends(reference, flag, state)) result = true;
  state[node] = 2;
  return result;
}

bool CDescriptionFacts::InputsAreIntegers(const std::string& node) const {
  const auto it = m_Nodes.find(node);
  if (it == m_Nodes.end()) return false;
  auto isInteger = [this](const std::string& name) {
    const std::string element = ElementOf(name);
    return element == "Integer" || element == "IntReg" || element == "MaskedIntReg" || element == "StructEntry" ||
           element == "IntSwissKnife" || element == "IntConverter";
  };
  for (const std::string& variable : it->second.variables)
    if (!isInteger(variable)) return false;
  const std::string target = ElementText(node, "pValue");
  return target.empty() || isInteger(target);
}

std::set<std::string> CDescriptionFacts::Inputs(const std::string& node) const {
  std::set<std::string> inputs;
  const auto it = m_Nodes.find(node);
  if (it == m_Nodes.end()) return inputs;
  inputs = it->second.variables;
  const std::string target = ElementText(node, "pValue");
  if (!target.empty()) inputs.insert(target);
  return inputs;
}

const std::set<std::string>& CDescriptionFacts::References(const std::string& node) const {
  static const std::set<std::string> kNone;
  const auto it = m_Nodes.find(node);
  return it == m_Nodes.end() ? kNone : it->second.references;
}

bool CDescriptionFacts::DependsOn(const std::string& node, EFlag flag) const {
  const auto memo = m_Memo[flag].find(node);
  if (memo != m_Memo[flag].end()) return memo->second;
  std::map<std::string, int> state;
  return m_Memo[flag][node] = Depends(node, flag, state);
}
}  // namespace TALVIR::Tools

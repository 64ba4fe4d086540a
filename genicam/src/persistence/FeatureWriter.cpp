#include "persistence/FeatureWriter.h"

#include <algorithm>

#include <GCBase/GCException.h>

namespace GenApi {
namespace {

// Integer selectors with more values than this (a whole address range, say) keep only their current value.
constexpr int64_t kMaxSelectorValues = 4096;

// The engine's message for its own exceptions; what() for those of a user port.
gcstring Describe(const std::exception& error) {
  if (const auto* genicam = dynamic_cast<const GenICam::GenericException*>(&error)) {
    return gcstring(genicam->GetDescription());
  }
  return gcstring(error.what());
}

bool HasValueInterface(INode* node) {
  switch (node->GetPrincipalInterfaceType()) {
  case intfIInteger:
  case intfIFloat:
  case intfIBoolean:
  case intfIEnumeration:
  case intfIString:
  case intfIRegister: return true;
  default: return false;
  }
}

bool SelectsSomething(INode* node) {
  CSelectorPtr selector(node);
  if (!selector.IsValid() || !selector->IsSelector()) {
    return false;
  }
  FeatureList_t selected;
  selector->GetSelectedFeatures(selected);
  return !selected.empty();
}

}  // namespace

CFeatureWriter::CFeatureWriter(INodeMap& nodeMap, EFeatureSelection selection)
    : m_nodeMap(nodeMap), m_selection(selection) {}

gcstring CFeatureWriter::Write() {
  CAutoLock lock(m_nodeMap.GetLock());
  std::string out = "# Settings of " + std::string(m_nodeMap.GetVendorName()) + " " +
                    std::string(m_nodeMap.GetModelName()) + ": one feature per line, name<TAB>value\n";
  for (INode* node : OrderedNodes()) {
    try {
      WriteNode(node, out);
    } catch (const std::exception& error) {
      m_skipped.push_back({0, node->GetName(), gcstring(), Describe(error)});
    }
  }
  return gcstring(out);
}

void CFeatureWriter::WriteNode(INode* node, std::string& out) {
  if (INode* outer = OutermostSelector(node)) {
    if (m_written.insert(outer).second) {
      WriteSelector(outer, out);
    }
    return;
  }
  if (IsUsableSelector(node) && SelectsSomething(node)) {
    if (m_written.insert(node).second) {
      WriteSelector(node, out);
    }
    return;
  }
  if (IsSetting(node) && m_written.insert(node).second) {
    WriteValue(node, out);
  }
}

std::vector<INode*> CFeatureWriter::OrderedNodes() const {
  std::vector<INode*> ordered;
  std::set<INode*> seen;
  if (INode* root = m_nodeMap.GetNode("Root")) {
    seen.insert(root);
    CollectCategory(root, seen, ordered);
  }
  NodeList_t all;
  m_nodeMap.GetNodes(all);
  std::vector<INode*> rest;
  for (INode* node : all) {
    if (seen.count(node) == 0) {
      rest.push_back(node);
    }
  }
  std::sort(rest.begin(), rest.end(), [](INode* a, INode* b) { return a->GetName() < b->GetName(); });
  ordered.insert(ordered.end(), rest.begin(), rest.end());
  return ordered;
}

void CFeatureWriter::CollectCategory(INode* node, std::set<INode*>& seen, std::vector<INode*>& out) const {
  CCategoryPtr category(node);
  if (!category.IsValid()) {
    return;
  }
  FeatureList_t features;
  category->GetFeatures(features);
  for (IValue* feature : features) {
    INode* child = feature;
    if (child == nullptr || !seen.insert(child).second) {
      continue;
    }
    out.push_back(child);
    CollectCategory(child, seen, out);
  }
}

bool CFeatureWriter::IsSetting(INode* node) const {
  try {
    if (!HasValueInterface(node) || !IsReadable(node) || !IsWritable(node)) {
      return false;
    }
    return m_selection == fsStreamable ? node->IsStreamable() : node->IsFeature();
  } catch (const std::exception&) {
    return false;  // an access mode that cannot be determined (a port that is not there): not a setting now
  }
}

bool CFeatureWriter::IsUsableSelector(INode* node) {
  const EInterfaceType type = node->GetPrincipalInterfaceType();
  if (type != intfIInteger && type != intfIEnumeration && type != intfIBoolean) {
    return false;
  }
  try {
    CSelectorPtr selector(node);
    return selector.IsValid() && selector->IsSelector() && IsReadable(node) && IsWritable(node);
  } catch (const std::exception&) {
    return false;
  }
}

INode* CFeatureWriter::OutermostSelector(INode* node) {
  INode* outermost = nullptr;
  std::set<INode*> visited{node};
  INode* current = node;
  for (;;) {
    CSelectorPtr selected(current);
    if (!selected.IsValid()) {
      break;
    }
    FeatureList_t selecting;
    selected->GetSelectingFeatures(selecting);
    INode* next = nullptr;
    for (IValue* candidate : selecting) {
      INode* selector = candidate;
      if (selector != nullptr && visited.count(selector) == 0 && IsUsableSelector(selector)) {
        next = selector;
        break;
      }
    }
    if (next == nullptr) {
      break;
    }
    visited.insert(next);
    outermost = next;
    current = next;
  }
  return outermost;
}

std::vector<gcstring> CFeatureWriter::SelectorValues(INode* selector) {
  std::vector<gcstring> values;
  if (CEnumerationPtr enumeration{selector}) {
    StringList_t symbolics;
    enumeration->GetSymbolics(symbolics);
    values.assign(symbolics.begin(), symbolics.end());
    return values;
  }
  if (CIntegerPtr integer{selector}) {
    const int64_t min = integer->GetMin();
    const int64_t max = integer->GetMax();
    const int64_t inc = integer->GetInc() > 0 ? integer->GetInc() : 1;
    if (max >= min && (static_cast<uint64_t>(max) - static_cast<uint64_t>(min)) / static_cast<uint64_t>(inc) <
                          static_cast<uint64_t>(kMaxSelectorValues)) {
      for (int64_t value = min;; value += inc) {
        values.push_back(gcstring(std::to_string(value)));
        if (max - value < inc) {
          break;
        }
      }
      return values;
    }
  }
  if (CBooleanPtr{selector}) {
    return {gcstring("0"), gcstring("1")};
  }
  values.push_back(CValuePtr(selector)->ToString());
  return values;
}

void CFeatureWriter::WriteSelector(INode* selector, std::string& out) {
  if (std::find(m_activeSelectors.begin(), m_activeSelectors.end(), selector) != m_activeSelectors.end()) {
    return;
  }
  CValuePtr value(selector);
  gcstring original;
  int64_t originalNumber = 0;
  std::vector<gcstring> values;
  try {
    original = value->ToString();
    if (CEnumerationPtr enumeration{selector}) {
      originalNumber = enumeration->GetIntValue();
    } else if (CIntegerPtr integer{selector}) {
      originalNumber = integer->GetValue();
    }
    values = SelectorValues(selector);
  } catch (const std::exception& error) {
    m_skipped.push_back({0, selector->GetName(), gcstring(), Describe(error)});
    return;
  }
  m_activeSelectors.push_back(selector);
  std::string block;
  bool selectsSettings = false;
  for (const gcstring& each : values) {
    try {
      value->FromString(each);
    } catch (const std::exception&) {
      continue;  // a value the selector lists but refuses now (it depends on another setting): nothing to keep
    }
    std::string body;
    try {
      WriteSelected(selector, body);
    } catch (const std::exception& error) {
      m_skipped.push_back({0, selector->GetName(), each, Describe(error)});
      continue;
    }
    selectsSettings = selectsSettings || !body.empty();
    block += std::string(selector->GetName()) + '\t' + std::string(EscapeFeatureValue(each)) + '\n' + body;
  }
  Restore(selector, original, originalNumber);
  m_activeSelectors.pop_back();
  if (selectsSettings) {
    out += block;
  }
  if (selectsSettings || IsSetting(selector)) {
    out += std::string(selector->GetName()) + '\t' + std::string(EscapeFeatureValue(original)) + '\n';
  }
}

void CFeatureWriter::Restore(INode* selector, const gcstring& original, int64_t originalNumber) {
  try {
    CValuePtr(selector)->FromString(original);
    return;
  } catch (const std::exception&) {
    // The value found may be one the selector no longer offers (an entry that became unavailable while iterating):
    // put the number back without verification, as it was before saving.
  }
  try {
    if (CEnumerationPtr enumeration{selector}) {
      enumeration->SetIntValue(originalNumber, false);
    } else if (CIntegerPtr integer{selector}) {
      integer->SetValue(originalNumber, false);
    } else {
      CValuePtr(selector)->FromString(original, false);
    }
  } catch (const std::exception& error) {
    m_skipped.push_back({0, selector->GetName(), original, Describe(error)});
  }
}

void CFeatureWriter::WriteSelected(INode* selector, std::string& out) {
  FeatureList_t selected;
  CSelectorPtr(selector)->GetSelectedFeatures(selected);
  std::set<INode*> siblings;
  for (IValue* feature : selected) {
    siblings.insert(static_cast<INode*>(feature));
  }
  for (IValue* feature : selected) {
    INode* node = feature;
    // A feature that another selector of this group also selects is written inside that selector's block.
    FeatureList_t selecting;
    CSelectorPtr(node)->GetSelectingFeatures(selecting);
    const bool deeper = std::any_of(selecting.begin(), selecting.end(), [&](IValue* other) {
      INode* otherNode = other;
      return otherNode != selector && siblings.count(otherNode) != 0 && IsUsableSelector(otherNode);
    });
    if (deeper) {
      continue;
    }
    if (IsUsableSelector(node) && SelectsSomething(node)) {
      WriteSelector(node, out);
    } else if (IsSetting(node)) {
      WriteValue(node, out);
    }
  }
}

void CFeatureWriter::WriteValue(INode* node, std::string& out) {
  try {
    const gcstring text = CValuePtr(node)->ToString();
    out += std::string(node->GetName()) + '\t' + std::string(EscapeFeatureValue(text)) + '\n';
  } catch (const std::exception& error) {
    m_skipped.push_back({0, node->GetName(), gcstring(), Describe(error)});
  }
}

}  // namespace GenApi

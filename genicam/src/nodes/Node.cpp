// CNode: common node elements, access-mode rules, callbacks and the default (failing) evaluation interface.
#include "nodes/Node.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

int64_t CIntRef::Get(bool ignoreCache) const {
  if (node != nullptr) return node->GetInt(false, ignoreCache);
  return constant;
}

double CFloatRef::Get(bool ignoreCache) const {
  if (node != nullptr) return node->GetFloat(false, ignoreCache);
  return constant;
}

CDepthGuard::CDepthGuard(const CNode& node) : m_depth(node.Map().Depth()) {
  if (++m_depth > kMaxDepth) {
    --m_depth;
    throw RUNTIME_EXCEPTION("Node '%s': references nested too deeply (a reference cycle?)", node.Name().c_str());
  }
}

CNode::CNode(CNodeMapImpl& map, std::string name, EInterfaceType principal)
    : m_map(map), m_name(std::move(name)), m_principal(principal) {}

CNode::~CNode() {
  for (CNodeCallback* callback : m_callbacks) callback->Destroy();
}

gcstring CNode::GetName(bool FullQualified) const {
  if (FullQualified) return gcstring(m_map.GetDeviceName() + "::" + m_name);
  return gcstring(m_name);
}

gcstring CNode::GetDisplayName() const {
  return m_texts && !m_texts->displayName.empty() ? gcstring(m_texts->displayName) : gcstring(m_name);
}

CNode::CTexts& CNode::Texts() {
  if (!m_texts) m_texts = std::make_unique<CTexts>();
  return *m_texts;
}
gcstring CNode::GetDeviceName() const { return m_map.GetDeviceName(); }

// Invalidating a feature also drops the cached registers its value is read from, so that the next read reaches the
// device, and everything that depends on them.
void CNode::InvalidateNode() {
  CEntryGuard guard(m_map);
  std::vector<CNode*> registers;
  std::vector<CNode*> stack{this};
  std::unordered_set<const CNode*> seen;
  while (!stack.empty()) {
    CNode* node = stack.back();
    stack.pop_back();
    if (!seen.insert(node).second) continue;
    if (node != this && node->HasCache()) {
      registers.push_back(node);
      continue;
    }
    for (CNode* child : node->m_readingChildren) stack.push_back(child);
  }
  for (CNode* reg : registers) m_map.PropagateChange(reg, true);
  m_map.PropagateChange(this, true);
}

bool CNode::IsCachable() const {
  CEntryGuard guard(m_map);
  return HasCache();
}

ECachingMode CNode::GetCachingMode() const { return NoCache; }

namespace {
// The link lists hold every node once (RemoveDuplicateLinks ran after loading).
void AppendUnique(NodeList_t& list, const std::vector<CNode*>& nodes) {
  list.insert(list.end(), nodes.begin(), nodes.end());
}

void RemoveDuplicates(std::vector<CNode*>& nodes) {
  if (nodes.size() < 2) return;
  std::unordered_set<const CNode*> seen;
  seen.reserve(nodes.size() * 2);
  nodes.erase(std::remove_if(nodes.begin(), nodes.end(), [&](const CNode* node) { return !seen.insert(node).second; }),
              nodes.end());
  nodes.shrink_to_fit();
}
}  // namespace

void CNode::RemoveDuplicateLinks() {
  RemoveDuplicates(m_readingChildren);
  RemoveDuplicates(m_writingChildren);
  RemoveDuplicates(m_dependents);
  RemoveDuplicates(m_invalidators);
  RemoveDuplicates(m_invalidates);
  RemoveDuplicates(m_selected);
  RemoveDuplicates(m_selecting);
}

void CNode::GetChildren(NodeList_t& Children, ELinkType LinkType) const {
  CEntryGuard guard(m_map);
  Children.clear();
  switch (LinkType) {
  case ctReadingChildren: AppendUnique(Children, m_readingChildren); break;
  case ctWritingChildren: AppendUnique(Children, m_writingChildren); break;
  case ctInvalidatingChildren: AppendUnique(Children, m_invalidators); break;
  case ctDependingNodes: AppendUnique(Children, m_dependents); break;
  case ctValueChangingChildren: AppendUnique(Children, m_writingChildren); break;
  case ctTerminalNodes: {
    // The registers a node's value comes from (where reading children end at a port).
    std::vector<const CNode*> stack{this};
    std::unordered_set<const CNode*> seen;
    while (!stack.empty()) {
      const CNode* node = stack.back();
      stack.pop_back();
      if (!seen.insert(node).second) continue;
      if (dynamic_cast<const IRegister*>(node) != nullptr) {
        Children.push_back(const_cast<CNode*>(node));
        continue;
      }
      for (CNode* child : node->m_readingChildren) stack.push_back(child);
    }
    break;
  }
  case ctParentNodes: AppendUnique(Children, m_dependents); break;
  }
}

void CNode::GetParents(NodeList_t& Parents, ELinkType LinkType) const {
  CEntryGuard guard(m_map);
  Parents.clear();
  if (LinkType == ctInvalidatingChildren) {
    AppendUnique(Parents, m_invalidates);
  } else {
    AppendUnique(Parents, m_dependents);
  }
}

CallbackHandleType CNode::RegisterCallback(CNodeCallback* pCallback) {
  if (pCallback == nullptr) throw INVALID_ARGUMENT_EXCEPTION("Node '%s': null callback", m_name.c_str());
  CEntryGuard guard(m_map);
  m_callbacks.push_back(pCallback);
  m_map.NoteCallbackRegistered();
  return reinterpret_cast<CallbackHandleType>(pCallback);
}

bool CNode::DeregisterCallback(CallbackHandleType hCallback) {
  CEntryGuard guard(m_map);
  for (auto it = m_callbacks.begin(); it != m_callbacks.end(); ++it) {
    if (reinterpret_cast<CallbackHandleType>(*it) == hCallback) {
      CNodeCallback* callback = *it;
      m_callbacks.erase(it);
      m_map.NoteCallbackRemoved();
      callback->Destroy();
      return true;
    }
  }
  return false;
}

INodeMap* CNode::GetNodeMap() const { return &m_map; }

void CNode::GetPropertyNames(gcstring_vector& PropertyNames) const {
  PropertyNames.clear();
  PropertyNames.push_back("Name");
  PropertyNames.push_back("Visibility");
  if (!m_texts) return;
  if (!m_texts->toolTip.empty()) PropertyNames.push_back("ToolTip");
  if (!m_texts->description.empty()) PropertyNames.push_back("Description");
  if (!m_texts->displayName.empty()) PropertyNames.push_back("DisplayName");
  if (!m_texts->eventID.empty()) PropertyNames.push_back("EventID");
}

bool CNode::GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr) const {
  AttributeStr.clear();
  if (PropertyName == "Name") {
    ValueStr = m_name;
  } else if (PropertyName == "ToolTip" && m_texts && !m_texts->toolTip.empty()) {
    ValueStr = m_texts->toolTip;
  } else if (PropertyName == "Description" && m_texts && !m_texts->description.empty()) {
    ValueStr = m_texts->description;
  } else if (PropertyName == "DisplayName" && m_texts && !m_texts->displayName.empty()) {
    ValueStr = m_texts->displayName;
  } else if (PropertyName == "EventID" && m_texts && !m_texts->eventID.empty()) {
    ValueStr = m_texts->eventID;
  } else if (PropertyName == "Visibility") {
    static const char* const kNames[] = {"Beginner", "Expert", "Guru", "Invisible"};
    ValueStr = m_visibility <= Invisible ? kNames[m_visibility] : "Undefined";
  } else {
    return false;
  }
  return true;
}

void CNode::ImposeAccessMode(EAccessMode AccessMode) {
  CEntryGuard guard(m_map);
  m_userImposedAccess = AccessMode;
  m_map.PropagateChange(this, false);
}

void CNode::ImposeVisibility(EVisibility Visibility) {
  CEntryGuard guard(m_map);
  if (Visibility > m_visibility && Visibility <= Invisible) m_visibility = Visibility;
}

EAccessMode CNode::GetAccessMode() const {
  CEntryGuard guard(m_map);
  return const_cast<CNode*>(this)->ComputeAccessMode();
}

EAccessMode CNode::ComputeAccessMode() {
  if (m_accessCacheValid) return m_accessCache;
  const EAccessMode mode = ComputeAccessModeUncached();
  if (m_accessCacheable) {
    m_accessCache = mode;
    m_accessCacheValid = true;
  }
  return mode;
}

namespace {
enum class ECondition { False, True, Unreadable };

// A pIsImplemented, pIsAvailable or pIsLocked condition. One that cannot be read right now (it reads a chunk port
// without chunk data, a port not connected) is reported as such: asking whether a node can be used must not fail for
// a state that is normal between images.
ECondition ReadCondition(CNode& condition) {
  try {
    return condition.GetInt(false, false) != 0 ? ECondition::True : ECondition::False;
  } catch (const GenICam::AccessException&) {
    return ECondition::Unreadable;
  }
}
}  // namespace

EAccessMode CNode::ComputeAccessModeUncached() {
  CDepthGuard depth(*this);
  if (m_pIsImplemented != nullptr) {
    const ECondition implemented = ReadCondition(*m_pIsImplemented);
    if (implemented == ECondition::False) return NI;
    if (implemented == ECondition::Unreadable) return NA;
  }
  if (m_pIsAvailable != nullptr && ReadCondition(*m_pIsAvailable) != ECondition::True) return NA;
  EAccessMode mode = OwnAccessMode();
  if (mode == NI || mode == NA) return mode;
  // A lock that cannot be read is not held.
  if (m_pIsLocked != nullptr && (mode == RW || mode == WO) && ReadCondition(*m_pIsLocked) == ECondition::True) {
    mode = mode == RW ? RO : NA;
  }
  mode = Combine(mode, m_imposedAccess);
  return Combine(mode, m_userImposedAccess);
}

void CNode::GetSelectedFeatures(FeatureList_t& Features) const {
  CEntryGuard guard(m_map);
  Features.clear();
  for (CNode* node : m_selected) {
    if (auto* value = dynamic_cast<IValue*>(node)) Features.push_back(value);
  }
}

void CNode::GetSelectingFeatures(FeatureList_t& Features) const {
  CEntryGuard guard(m_map);
  Features.clear();
  for (CNode* node : m_selecting) {
    if (auto* value = dynamic_cast<IValue*>(node)) Features.push_back(value);
  }
}

void CNode::ThrowNoInterface(const char* what) const {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s' has no %s", m_name.c_str(), what);
}

int64_t CNode::GetInt(bool, bool) { ThrowNoInterface("integer value"); }
double CNode::GetFloat(bool verify, bool ignoreCache) { return static_cast<double>(GetInt(verify, ignoreCache)); }
void CNode::SetInt(int64_t, bool) { ThrowNoInterface("writable integer value"); }
void CNode::SetFloat(double value, bool verify) {
  if (std::isnan(value)) throw INVALID_ARGUMENT_EXCEPTION("Node '%s': value is not a number", m_name.c_str());
  const double rounded = std::round(value);
  if (rounded >= 9223372036854775807.0 || rounded < -9223372036854775808.0) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %g does not fit a 64-bit integer", m_name.c_str(), value);
  }
  SetInt(static_cast<int64_t>(rounded), verify);
}
std::string CNode::GetStr(bool, bool) { ThrowNoInterface("string value"); }
void CNode::SetStr(const std::string&, bool) { ThrowNoInterface("writable string value"); }
int64_t CNode::GetIntMin() { return std::numeric_limits<int64_t>::min(); }
int64_t CNode::GetIntMax() { return std::numeric_limits<int64_t>::max(); }
int64_t CNode::GetIntInc() { return 1; }
double CNode::GetFloatMin() { return static_cast<double>(GetIntMin()); }
double CNode::GetFloatMax() { return static_cast<double>(GetIntMax()); }
double CNode::GetFloatInc() { return static_cast<double>(GetIntInc()); }

void CNode::CheckReadable() {
  const EAccessMode mode = ComputeAccessMode();
  if (mode != RO && mode != RW) {
    throw ACCESS_EXCEPTION("Node '%s' is not readable (access mode %s)", m_name.c_str(), AccessModeName(mode));
  }
}

void CNode::CheckWritable() {
  const EAccessMode mode = ComputeAccessMode();
  if (mode != WO && mode != RW) {
    throw ACCESS_EXCEPTION("Node '%s' is not writable (access mode %s)", m_name.c_str(), AccessModeName(mode));
  }
}

void CNode::CheckWritable(const std::string& valueText) {
  const EAccessMode mode = ComputeAccessMode();
  if (mode != WO && mode != RW) {
    throw ACCESS_EXCEPTION("Node '%s' is not writable (access mode %s): value %s not written", m_name.c_str(),
                           AccessModeName(mode), valueText.c_str());
  }
}

void CNode::ValueChanged() { m_map.PropagateChange(this, false); }

void CNode::Configure(CLoadContext& context, const CXmlElement& element) {
  if (element.Attribute("NameSpace") == "Standard") m_nameSpace = Standard;
  for (CXmlElement child = element.FirstChild(); child; child = child.NextSibling()) {
    const EElement id = ElementOf(child.Name());
    if (id == EElement::Unknown || id == EElement::Extension) continue;
    ConfigureElement(context, id, child);
  }
}

bool CNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::ToolTip: Texts().toolTip = std::string(CLoadContext::Text(child)); return true;
  case EElement::Description: Texts().description = std::string(CLoadContext::Text(child)); return true;
  case EElement::DisplayName: Texts().displayName = std::string(CLoadContext::Text(child)); return true;
  case EElement::DocuURL: Texts().docuURL = std::string(CLoadContext::Text(child)); return true;
  case EElement::EventID: Texts().eventID = std::string(CLoadContext::Text(child)); return true;
  case EElement::IsDeprecated: m_isDeprecated = context.YesNo(*this, child); return true;
  case EElement::Streamable: m_streamable = context.YesNo(*this, child); return true;
  case EElement::Visibility: {
    const std::string_view text = CLoadContext::Text(child);
    if (text == "Beginner") m_visibility = Beginner;
    else if (text == "Expert") m_visibility = Expert;
    else if (text == "Guru") m_visibility = Guru;
    else if (text == "Invisible") m_visibility = Invisible;
    else context.Fail(this, child, "unknown visibility");
    return true;
  }
  case EElement::ImposedAccessMode: {
    const std::string_view text = CLoadContext::Text(child);
    if (text == "RW") m_imposedAccess = RW;
    else if (text == "RO") m_imposedAccess = RO;
    else if (text == "WO") m_imposedAccess = WO;
    else if (text == "NA") m_imposedAccess = NA;
    else if (text == "NI") m_imposedAccess = NI;
    else context.Fail(this, child, "unknown access mode");
    return true;
  }
  case EElement::pIsImplemented: m_pIsImplemented = context.Resolve(*this, child); return true;
  case EElement::pIsAvailable: m_pIsAvailable = context.Resolve(*this, child); return true;
  case EElement::pIsLocked: m_pIsLocked = context.Resolve(*this, child); return true;
  case EElement::pError: m_pError = context.Resolve(*this, child, false); return true;
  case EElement::pAlias: m_pAlias = context.Resolve(*this, child, false); return true;
  case EElement::pCastAlias: m_pCastAlias = context.Resolve(*this, child, false); return true;
  case EElement::pBlockPolling: context.Resolve(*this, child, false); return true;
  // Repeated entries are removed once loading is done (RemoveDuplicateLinks).
  case EElement::pInvalidator: {
    CNode* invalidator = context.Resolve(*this, child, false);
    m_invalidators.push_back(invalidator);
    invalidator->m_invalidates.push_back(this);
    return true;
  }
  case EElement::pSelected: {
    CNode* selected = context.Resolve(*this, child, false);
    m_selected.push_back(selected);
    selected->m_selecting.push_back(this);
    // A selector change changes what the selected feature shows.
    m_dependents.push_back(selected);
    return true;
  }
  case EElement::PollingTime: m_pollingTime = context.Integer(*this, child); return true;
  default: return false;
  }
}

void CNode::FinishLoading(CLoadContext&) {}

}  // namespace Engine
}  // namespace GenApi

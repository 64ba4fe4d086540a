// Element identifiers and the helpers nodes use while reading their elements.
#include "nodes/LoadContext.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

#include <GCBase/GCException.h>

#include "base/NumberParsing.h"
#include "nodes/IntSwissKnife.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

EElement ElementOf(std::string_view name) {
  static const std::unordered_map<std::string_view, EElement> kElements = [] {
    std::unordered_map<std::string_view, EElement> elements;
#define GENICAM_ELEMENT(Name) elements.emplace(#Name, EElement::Name)
    GENICAM_ELEMENT(Extension);
    GENICAM_ELEMENT(ToolTip);
    GENICAM_ELEMENT(Description);
    GENICAM_ELEMENT(DisplayName);
    GENICAM_ELEMENT(Visibility);
    GENICAM_ELEMENT(DocuURL);
    GENICAM_ELEMENT(IsDeprecated);
    GENICAM_ELEMENT(EventID);
    GENICAM_ELEMENT(pIsImplemented);
    GENICAM_ELEMENT(pIsAvailable);
    GENICAM_ELEMENT(pIsLocked);
    GENICAM_ELEMENT(pBlockPolling);
    GENICAM_ELEMENT(ImposedAccessMode);
    GENICAM_ELEMENT(pError);
    GENICAM_ELEMENT(pAlias);
    GENICAM_ELEMENT(pCastAlias);
    GENICAM_ELEMENT(pInvalidator);
    GENICAM_ELEMENT(Address);
    GENICAM_ELEMENT(IntSwissKnife);
    GENICAM_ELEMENT(pAddress);
    GENICAM_ELEMENT(pIndex);
    GENICAM_ELEMENT(Length);
    GENICAM_ELEMENT(pLength);
    GENICAM_ELEMENT(AccessMode);
    GENICAM_ELEMENT(pPort);
    GENICAM_ELEMENT(Cachable);
    GENICAM_ELEMENT(PollingTime);
    GENICAM_ELEMENT(Sign);
    GENICAM_ELEMENT(Endianess);
    GENICAM_ELEMENT(Unit);
    GENICAM_ELEMENT(Representation);
    GENICAM_ELEMENT(pSelected);
    GENICAM_ELEMENT(Bit);
    GENICAM_ELEMENT(LSB);
    GENICAM_ELEMENT(MSB);
    GENICAM_ELEMENT(DisplayNotation);
    GENICAM_ELEMENT(DisplayPrecision);
    GENICAM_ELEMENT(StructEntry);
    GENICAM_ELEMENT(Streamable);
    GENICAM_ELEMENT(Value);
    GENICAM_ELEMENT(pValue);
    GENICAM_ELEMENT(pValueCopy);
    GENICAM_ELEMENT(ValueIndexed);
    GENICAM_ELEMENT(pValueIndexed);
    GENICAM_ELEMENT(ValueDefault);
    GENICAM_ELEMENT(pValueDefault);
    GENICAM_ELEMENT(Min);
    GENICAM_ELEMENT(pMin);
    GENICAM_ELEMENT(Max);
    GENICAM_ELEMENT(pMax);
    GENICAM_ELEMENT(Inc);
    GENICAM_ELEMENT(pInc);
    GENICAM_ELEMENT(ValidValueSet);
    GENICAM_ELEMENT(OnValue);
    GENICAM_ELEMENT(OffValue);
    GENICAM_ELEMENT(CommandValue);
    GENICAM_ELEMENT(pCommandValue);
    GENICAM_ELEMENT(EnumEntry);
    GENICAM_ELEMENT(NumericValue);
    GENICAM_ELEMENT(Symbolic);
    GENICAM_ELEMENT(IsSelfClearing);
    GENICAM_ELEMENT(pVariable);
    GENICAM_ELEMENT(Constant);
    GENICAM_ELEMENT(Expression);
    GENICAM_ELEMENT(Formula);
    GENICAM_ELEMENT(FormulaTo);
    GENICAM_ELEMENT(FormulaFrom);
    GENICAM_ELEMENT(Slope);
    GENICAM_ELEMENT(IsLinear);
    GENICAM_ELEMENT(pFeature);
    GENICAM_ELEMENT(ChunkID);
    GENICAM_ELEMENT(pChunkID);
    GENICAM_ELEMENT(SwapEndianess);
    GENICAM_ELEMENT(CacheChunkData);
    GENICAM_ELEMENT(Name);
#undef GENICAM_ELEMENT
    return elements;
  }();
  const auto it = kElements.find(name);
  return it == kElements.end() ? EElement::Unknown : it->second;
}

std::string_view CLoadContext::Text(const CXmlElement& element) { return TrimSpaces(element.Text()); }

void CLoadContext::Fail(const CNode* owner, const CXmlElement& element, const char* problem) const {
  const char* nodeName = owner ? owner->Name().c_str() : "?";
  if (element) {
    const std::string elementName(element.Name());
    throw RUNTIME_EXCEPTION("Node '%s', element <%s> at line %zu: %s", nodeName, elementName.c_str(),
                            static_cast<size_t>(element.Line()), problem);
  }
  throw RUNTIME_EXCEPTION("Node '%s': %s", nodeName, problem);
}

void CLoadContext::AddDependency(CNode& reader, CNode& target) {
  reader.m_readingChildren.push_back(&target);
  target.m_dependents.push_back(&reader);
}

CNode* CLoadContext::Resolve(CNode& owner, const CXmlElement& element, bool reading) {
  return ResolveName(owner, Text(element), element, reading);
}

CNode* CLoadContext::ResolveName(CNode& owner, std::string_view name, const CXmlElement& element, bool reading) {
  CNode* node = m_map.Find(name);
  if (node == nullptr) {
    const std::string problem = "unknown node '" + std::string(name.substr(0, 200)) + "'";
    Fail(&owner, element, problem.c_str());
  }
  if (reading) AddDependency(owner, *node);
  return node;
}

int64_t CLoadContext::Integer(CNode& owner, const CXmlElement& element) {
  int64_t value = 0;
  if (!ParseInteger(Text(element), value)) Fail(&owner, element, "not an integer");
  return value;
}

double CLoadContext::Float(CNode& owner, const CXmlElement& element) {
  double value = 0;
  if (!ParseDouble(Text(element), value)) Fail(&owner, element, "not a number");
  return value;
}

bool CLoadContext::YesNo(CNode& owner, const CXmlElement& element) {
  const std::string_view text = Text(element);
  if (text == "Yes" || text == "true" || text == "1") return true;
  if (text == "No" || text == "false" || text == "0" || text.empty()) return false;
  Fail(&owner, element, "expected Yes or No");
}

void CLoadContext::IntRef(CNode& owner, const CXmlElement& element, bool isPointer, CIntRef& ref) {
  ref = CIntRef();
  ref.present = true;
  if (isPointer) {
    ref.node = Resolve(owner, element);
  } else {
    ref.constant = Integer(owner, element);
  }
}

void CLoadContext::FloatRef(CNode& owner, const CXmlElement& element, bool isPointer, CFloatRef& ref) {
  ref = CFloatRef();
  ref.present = true;
  if (isPointer) {
    ref.node = Resolve(owner, element);
  } else {
    ref.constant = Float(owner, element);
  }
}

namespace {
void SetRef(CLoadContext& context, CNode& owner, const CXmlElement& element, bool isPointer, CIntRef& ref) {
  context.IntRef(owner, element, isPointer, ref);
}
void SetRef(CLoadContext& context, CNode& owner, const CXmlElement& element, bool isPointer, CFloatRef& ref) {
  context.FloatRef(owner, element, isPointer, ref);
}

template <class TRef>
bool ConfigureLimits(CLoadContext& context, CNode& owner, EElement id, const CXmlElement& element, TRef& min, TRef& max,
                     TRef& inc) {
  TRef* ref = nullptr;
  bool isPointer = false;
  switch (id) {
  case EElement::pMin: isPointer = true; [[fallthrough]];
  case EElement::Min: ref = &min; break;
  case EElement::pMax: isPointer = true; [[fallthrough]];
  case EElement::Max: ref = &max; break;
  case EElement::pInc: isPointer = true; [[fallthrough]];
  case EElement::Inc: ref = &inc; break;
  default: return false;
  }
  SetRef(context, owner, element, isPointer, *ref);
  return true;
}
}  // namespace

bool CLoadContext::Limits(CNode& owner, EElement id, const CXmlElement& element, CIntRef& min, CIntRef& max,
                          CIntRef& inc) {
  return ConfigureLimits(*this, owner, id, element, min, max, inc);
}

bool CLoadContext::Limits(CNode& owner, EElement id, const CXmlElement& element, CFloatRef& min, CFloatRef& max,
                          CFloatRef& inc) {
  return ConfigureLimits(*this, owner, id, element, min, max, inc);
}

CNode* CLoadContext::CreateEmbeddedSwissKnife(CNode& owner, const CXmlElement& element) {
  // A named embedded formula is a node of the map like any other (when its name is free); an unnamed one is private.
  const std::string_view given = TrimSpaces(element.Attribute("Name"));
  const bool named = !given.empty() && m_map.Find(given) == nullptr;
  std::string name = named ? std::string(given) : owner.Name() + "#address" + std::to_string(m_map.AllNodes().size());
  auto node = std::make_unique<CIntSwissKnifeNode>(m_map, std::move(name));
  CIntSwissKnifeNode* raw = node.get();
  m_map.AddNode(std::move(node), named);
  raw->Configure(*this, element);
  AddDependency(owner, *raw);
  return raw;
}

}  // namespace Engine
}  // namespace GenApi

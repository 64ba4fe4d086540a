// CValueSource: reading and writing a value node's storage.
#include "nodes/ValueSource.h"

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

namespace {
void SetConstant(CNode& owner, CLoadContext& context, const CXmlElement& child, bool floatConstants,
                 bool stringConstants, CSource& source) {
  source.present = true;
  source.node = nullptr;
  if (stringConstants) {
    source.stringValue = std::string(child.Text());
    return;
  }
  if (floatConstants) {
    source.floatValue = context.Float(owner, child);
    source.intValue = ClampToInt64(source.floatValue);
  } else {
    source.intValue = context.Integer(owner, child);
    source.floatValue = static_cast<double>(source.intValue);
  }
}
}  // namespace

bool CValueSource::Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child,
                             bool floatConstants, bool stringConstants) {
  switch (id) {
  case EElement::Value: SetConstant(owner, context, child, floatConstants, stringConstants, m_direct); return true;
  case EElement::pValue:
    m_direct = CSource();
    m_direct.present = true;
    m_direct.node = context.Resolve(owner, child);
    owner.m_writingChildren.push_back(m_direct.node);
    return true;
  case EElement::pValueCopy: {
    CNode* copy = context.Resolve(owner, child, false);
    m_copies.push_back(copy);
    owner.m_writingChildren.push_back(copy);
    return true;
  }
  case EElement::pIndex: m_pIndex = context.Resolve(owner, child); return true;
  case EElement::ValueIndexed:
  case EElement::pValueIndexed: {
    std::string_view indexAttribute;
    int64_t index = 0;
    if (!child.FindAttribute("Index", indexAttribute) || !ParseInteger(indexAttribute, index)) {
      context.Fail(&owner, child, "missing or bad Index attribute");
    }
    CIndexed entry{index, CSource()};
    if (id == EElement::ValueIndexed) {
      SetConstant(owner, context, child, floatConstants, stringConstants, entry.source);
    } else {
      entry.source.present = true;
      entry.source.node = context.Resolve(owner, child);
      owner.m_writingChildren.push_back(entry.source.node);
    }
    m_indexed.push_back(std::move(entry));
    return true;
  }
  case EElement::ValueDefault:
    SetConstant(owner, context, child, floatConstants, stringConstants, m_default);
    return true;
  case EElement::pValueDefault:
    m_default = CSource();
    m_default.present = true;
    m_default.node = context.Resolve(owner, child);
    return true;
  default: return false;
  }
}

void CValueSource::Check(CNode& owner, CLoadContext& context, const CXmlElement& element) const {
  if (!Present()) context.Fail(&owner, element, "has no Value, pValue or pIndex");
  if (m_pIndex != nullptr && m_indexed.empty() && !m_default.present) {
    context.Fail(&owner, element, "has pIndex but no indexed value");
  }
}

CSource& CValueSource::Current(CNode& owner, bool ignoreCache) {
  if (m_pIndex == nullptr) return m_direct;
  const int64_t index = m_pIndex->GetInt(false, ignoreCache);
  for (CIndexed& entry : m_indexed) {
    if (entry.index == index) return entry.source;
  }
  if (m_default.present) return m_default;
  throw ACCESS_EXCEPTION("Node '%s': index %lld selects no value", owner.Name().c_str(), static_cast<long long>(index));
}

CNode* CValueSource::TargetNode(bool ignoreCache) {
  if (m_pIndex == nullptr) return m_direct.node;
  const int64_t index = m_pIndex->GetInt(false, ignoreCache);
  for (CIndexed& entry : m_indexed) {
    if (entry.index == index) return entry.source.node;
  }
  return m_default.present ? m_default.node : nullptr;
}

int64_t CValueSource::GetInt(CNode& owner, bool ignoreCache) {
  CSource& source = Current(owner, ignoreCache);
  return source.node ? source.node->GetInt(false, ignoreCache) : source.intValue;
}

double CValueSource::GetFloat(CNode& owner, bool ignoreCache) {
  CSource& source = Current(owner, ignoreCache);
  return source.node ? source.node->GetFloat(false, ignoreCache) : source.floatValue;
}

std::string CValueSource::GetString(CNode& owner, bool ignoreCache) {
  CSource& source = Current(owner, ignoreCache);
  return source.node ? source.node->GetStr(false, ignoreCache) : source.stringValue;
}

void CValueSource::SetInt(CNode& owner, int64_t value, bool verify) {
  CSource& source = Current(owner, false);
  if (source.node) {
    source.node->SetInt(value, verify);
  } else {
    source.intValue = value;
    source.floatValue = static_cast<double>(value);
  }
  for (CNode* copy : m_copies) copy->SetInt(value, verify);
}

void CValueSource::SetFloat(CNode& owner, double value, bool verify) {
  CSource& source = Current(owner, false);
  if (source.node) {
    source.node->SetFloat(value, verify);
  } else {
    source.floatValue = value;
    source.intValue = ClampToInt64(value);
  }
  for (CNode* copy : m_copies) copy->SetFloat(value, verify);
}

void CValueSource::SetString(CNode& owner, const std::string& value, bool verify) {
  CSource& source = Current(owner, false);
  if (source.node) {
    source.node->SetStr(value, verify);
  } else {
    source.stringValue = value;
  }
  for (CNode* copy : m_copies) copy->SetStr(value, verify);
}

EAccessMode CValueSource::AccessMode(CNode& owner) {
  CSource& source = Current(owner, false);
  if (source.node) return source.node->ComputeAccessMode();
  return RW;
}

bool CValueSource::CacheValid(CNode& owner) {
  if (m_pIndex != nullptr) return false;
  (void)owner;
  return m_direct.node ? m_direct.node->CacheValid() : true;
}

}  // namespace Engine
}  // namespace GenApi

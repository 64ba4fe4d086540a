// Formula-backed nodes: configuration of variables, compilation at the end of loading, evaluation.
#include "nodes/FormulaNodes.h"

#include <algorithm>
#include <cmath>

#include "load/LoadContext.h"
#include "load/NumberParsing.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

namespace {
std::string NameAttribute(CNode& owner, CLoadContext& context, const pugi::xml_node& child) {
  const pugi::xml_attribute name = child.attribute("Name");
  if (!name || std::string_view(name.value()).empty()) context.Fail(&owner, child, "variable without Name attribute");
  return std::string(TrimSpaces(name.value()));
}

// pVariable elements already linked their nodes; repeated links are removed after loading.
void AddFormulaDependencies(CNode& owner, CFormulaSet& set) {
  for (CNode* node : set.ReferencedNodes()) CLoadContext::AddDependency(owner, *node);
  set.FinishCompiling();
}
}  // namespace

bool ConfigureFormulaVariable(CNode& owner, CLoadContext& context, EElement id, const pugi::xml_node& child,
                              CFormulaSet& set) {
  switch (id) {
    case EElement::pVariable: {
      std::string name = NameAttribute(owner, context, child);
      set.AddNodeVariable(std::move(name), context.Resolve(owner, child));
      return true;
    }
    case EElement::Constant: {
      std::string name = NameAttribute(owner, context, child);
      const std::string_view text = CLoadContext::Text(child);
      int64_t intValue = 0;
      double floatValue = 0;
      if (ParseInteger(text, intValue)) {
        floatValue = static_cast<double>(intValue);
      } else if (ParseDouble(text, floatValue)) {
        intValue = ClampToInt64(floatValue);
      } else {
        context.Fail(&owner, child, "bad constant");
      }
      set.AddConstant(std::move(name), intValue, floatValue);
      return true;
    }
    case EElement::Expression: {
      std::string name = NameAttribute(owner, context, child);
      set.AddExpression(std::move(name), std::string(CLoadContext::Text(child)));
      return true;
    }
    default: return false;
  }
}

// ---------------------------------------------------------------- IntSwissKnife

bool CIntSwissKnifeNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (ConfigureFormulaVariable(*this, context, id, child, m_set)) return true;
  if (id == EElement::Formula) {
    m_formula = std::string(CLoadContext::Text(child));
    m_hasFormula = true;
    return true;
  }
  return CIntegerBase::ConfigureElement(context, id, child);
}

void CIntSwissKnifeNode::FinishLoading(CLoadContext& context) {
  if (!m_hasFormula) context.Fail(this, pugi::xml_node(), "has no Formula");
  m_program = m_set.Compile(m_formula, "Formula");
  AddFormulaDependencies(*this, m_set);
}

int64_t CIntSwissKnifeNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_set.EvaluateInt(m_program, nullptr, ignoreCache);
}

void CIntSwissKnifeNode::SetInt(int64_t, bool) {
  throw ACCESS_EXCEPTION("Node '%s' is not writable (a formula)", m_name.c_str());
}

// ---------------------------------------------------------------- SwissKnife

bool CSwissKnifeNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (ConfigureFormulaVariable(*this, context, id, child, m_set)) return true;
  if (id == EElement::Formula) {
    m_formula = std::string(CLoadContext::Text(child));
    m_hasFormula = true;
    return true;
  }
  return CFloatBase::ConfigureElement(context, id, child);
}

void CSwissKnifeNode::FinishLoading(CLoadContext& context) {
  if (!m_hasFormula) context.Fail(this, pugi::xml_node(), "has no Formula");
  m_program = m_set.Compile(m_formula, "Formula");
  AddFormulaDependencies(*this, m_set);
}

double CSwissKnifeNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_set.EvaluateFloat(m_program, nullptr, ignoreCache);
}

void CSwissKnifeNode::SetFloat(double, bool) {
  throw ACCESS_EXCEPTION("Node '%s' is not writable (a formula)", m_name.c_str());
}

// ---------------------------------------------------------------- converters

bool CConverterCore::Configure(CNode& owner, CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (ConfigureFormulaVariable(owner, context, id, child, set)) return true;
  switch (id) {
    case EElement::FormulaTo:
      formulaTo = std::string(CLoadContext::Text(child));
      hasTo = true;
      return true;
    case EElement::FormulaFrom:
      formulaFrom = std::string(CLoadContext::Text(child));
      hasFrom = true;
      return true;
    case EElement::pValue:
      target = context.Resolve(owner, child);
      owner.m_writingChildren.push_back(target);
      return true;
    case EElement::Slope: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "Increasing") slope = Increasing;
      else if (text == "Decreasing") slope = Decreasing;
      else if (text == "Varying") slope = Varying;
      else if (text == "Automatic") slope = Automatic;
      else context.Fail(&owner, child, "unknown slope");
      return true;
    }
    case EElement::IsLinear: isLinear = context.YesNo(owner, child); return true;
    default: return false;
  }
}

void CConverterCore::Finish(CNode& owner, CLoadContext& context) {
  if (target == nullptr) context.Fail(&owner, pugi::xml_node(), "has no pValue");
  if (!hasTo || !hasFrom) context.Fail(&owner, pugi::xml_node(), "needs FormulaTo and FormulaFrom");
  set.AddExternal("FROM", 0);
  set.AddExternal("TO", 1);
  programTo = set.Compile(formulaTo, "FormulaTo");
  programFrom = set.Compile(formulaFrom, "FormulaFrom");
  AddFormulaDependencies(owner, set);
}

bool CIntConverterNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CIntegerBase::ConfigureElement(context, id, child);
}

int64_t CIntConverterNode::From(int64_t to, bool ignoreCache) {
  const int64_t externals[4] = {0, to, 0, 0};
  return m_core.set.EvaluateInt(m_core.programFrom, externals, ignoreCache);
}

int64_t CIntConverterNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return From(m_core.target->GetInt(false, ignoreCache), ignoreCache);
}

void CIntConverterNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value, false);
  const int64_t externals[4] = {value, 0, 0, 0};
  const int64_t converted = m_core.set.EvaluateInt(m_core.programTo, externals, false);
  m_core.target->SetInt(converted, verify);
  ValueChanged();
}

int64_t CIntConverterNode::NativeMin() {
  if (!m_core.target->IsNumeric()) return std::numeric_limits<int64_t>::min();
  const int64_t a = From(m_core.target->GetIntMin(), false);
  const int64_t b = From(m_core.target->GetIntMax(), false);
  return std::min(a, b);  // a monotonic conversion of [min, max] spans [min(a, b), max(a, b)] whatever its direction
}

int64_t CIntConverterNode::NativeMax() {
  if (!m_core.target->IsNumeric()) return std::numeric_limits<int64_t>::max();
  const int64_t a = From(m_core.target->GetIntMin(), false);
  const int64_t b = From(m_core.target->GetIntMax(), false);
  return std::max(a, b);
}

bool CConverterNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CFloatBase::ConfigureElement(context, id, child);
}

double CConverterNode::From(double to, bool ignoreCache) {
  const double externals[4] = {0.0, to, 0.0, 0.0};
  return m_core.set.EvaluateFloat(m_core.programFrom, externals, ignoreCache);
}

double CConverterNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return From(m_core.target->GetFloat(false, ignoreCache), ignoreCache);
}

void CConverterNode::SetFloat(double value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value);
  const double externals[4] = {value, 0.0, 0.0, 0.0};
  const double converted = m_core.set.EvaluateFloat(m_core.programTo, externals, false);
  m_core.target->SetFloat(converted, verify);
  ValueChanged();
}

bool CConverterNode::HasFloatInc() {
  if (!m_core.isLinear || !m_core.target->IsNumeric()) return false;
  return m_core.target->IsFloatValued() ? m_core.target->HasFloatInc() : true;
}

double CConverterNode::GetFloatInc() {
  if (!HasFloatInc()) return 0.0;
  const double base = m_core.target->GetFloatMin();
  const double step = m_core.target->IsFloatValued() ? m_core.target->GetFloatInc()
                                                      : static_cast<double>(m_core.target->GetIntInc());
  return std::fabs(From(base + step, false) - From(base, false));
}

double CConverterNode::NativeMin() {
  if (!m_core.target->IsNumeric()) return -std::numeric_limits<double>::max();
  const double a = From(m_core.target->GetFloatMin(), false);
  const double b = From(m_core.target->GetFloatMax(), false);
  return std::min(a, b);  // a monotonic conversion of [min, max] spans [min(a, b), max(a, b)] whatever its direction
}

double CConverterNode::NativeMax() {
  if (!m_core.target->IsNumeric()) return std::numeric_limits<double>::max();
  const double a = From(m_core.target->GetFloatMin(), false);
  const double b = From(m_core.target->GetFloatMax(), false);
  return std::max(a, b);
}

}  // namespace Engine
}  // namespace GenApi

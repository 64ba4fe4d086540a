// Formula sets: variables, compilation through the parser, and evaluation of the postfix code.
#include "formula/Formula.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <GCBase/GCException.h>

#include "base/NumberParsing.h"
#include "formula/FormulaCode.h"
#include "formula/FormulaParser.h"

namespace GenApi {
namespace Engine {

using EOp = CFormulaSet::EOp;

CFormulaSet::CFormulaSet(const IFormulaOperand* owner, bool integerMode) : m_owner(owner), m_integerMode(integerMode) {}

void CFormulaSet::AddNodeVariable(std::string name, IFormulaOperand* node) {
  m_variables.push_back({std::move(name), ESlot::Value, node, 0, 0.0, std::string(), -1, 0});
}
void CFormulaSet::AddConstant(std::string name, int64_t intValue, double floatValue) {
  m_variables.push_back({std::move(name), ESlot::Constant, nullptr, intValue, floatValue, std::string(), -1, 0});
}
void CFormulaSet::AddExpression(std::string name, std::string text) {
  m_variables.push_back({std::move(name), ESlot::Expression, nullptr, 0, 0.0, std::move(text), -1, 0});
}
void CFormulaSet::AddExternal(std::string name, int index) {
  m_variables.push_back({std::move(name), ESlot::External, nullptr, 0, 0.0, std::string(), -1, index});
}

int CFormulaSet::SlotFor(std::string_view identifier, bool& found) {
  found = false;
  if (m_acceptAnyIdentifier) {
    found = true;
    m_slots.push_back({ESlot::Constant, nullptr, 0, 0.0, 0});
    return static_cast<int>(m_slots.size() - 1);
  }
  // The whole identifier first (names may contain dots), then "name.Suffix". Later declarations win.
  if (m_indexedVariables != m_variables.size()) {
    m_variableIndex.clear();
    for (size_t i = 0; i < m_variables.size(); ++i) m_variableIndex[m_variables[i].name] = i;
    m_indexedVariables = m_variables.size();
  }
  auto lookup = [this](std::string_view name) -> const CVariable* {
    const auto it = m_variableIndex.find(name);
    return it == m_variableIndex.end() ? nullptr : &m_variables[it->second];
  };
  std::string_view suffix;
  const CVariable* variable = lookup(identifier);
  if (variable == nullptr) {
    const size_t dot = identifier.find('.');
    if (dot == std::string_view::npos) return -1;
    suffix = identifier.substr(dot + 1);
    variable = lookup(identifier.substr(0, dot));
    if (variable == nullptr) return -1;
  }
  CSlot slot{variable->kind, variable->node, variable->intValue, variable->floatValue, variable->index};
  if (variable->kind == ESlot::Expression) {
    const size_t variableIndex = static_cast<size_t>(variable - m_variables.data());
    if (m_variables[variableIndex].program == -2) {
      throw RUNTIME_EXCEPTION("Node '%s': expression '%s' refers to itself", m_owner ? m_owner->Name().c_str() : "?",
                              m_variables[variableIndex].name.c_str());
    }
    if (m_variables[variableIndex].program == -1) {
      m_variables[variableIndex].program = -2;
      const std::string text = m_variables[variableIndex].text;
      const int program = Compile(text, "Expression");
      m_variables[variableIndex].program = program;
    }
    slot.index = m_variables[variableIndex].program;
  }
  if (!suffix.empty()) {
    if (slot.kind != ESlot::Value || slot.node == nullptr) return -1;
    if (suffix == "Value") {
      // plain value
    } else if (suffix == "Min") {
      slot.kind = ESlot::Min;
    } else if (suffix == "Max") {
      slot.kind = ESlot::Max;
    } else if (suffix == "Inc") {
      slot.kind = ESlot::Inc;
    } else if (suffix.substr(0, 6) == "Entry.") {
      int64_t entryValue = 0;
      if (!slot.node->FindEntryValue(suffix.substr(6), entryValue)) return -1;
      slot = {ESlot::Constant, nullptr, entryValue, static_cast<double>(entryValue), 0};
    } else {
      return -1;
    }
  }
  if (slot.node != nullptr && m_referencedSet.insert(slot.node).second) m_referencedNodes.push_back(slot.node);
  found = true;
  m_slots.push_back(slot);
  return static_cast<int>(m_slots.size() - 1);
}

int CFormulaSet::Compile(std::string_view text, const char* what) {
  CProgram program;
  CompileFormula(*this, text, what, program);
  m_programs.push_back(std::move(program));
  return static_cast<int>(m_programs.size() - 1);
}

void CFormulaSet::FinishCompiling() {
  std::unordered_map<std::string_view, size_t>().swap(m_variableIndex);
  std::unordered_set<const IFormulaOperand*>().swap(m_referencedSet);
  std::vector<CVariable>().swap(m_variables);
  std::vector<IFormulaOperand*>().swap(m_referencedNodes);
  m_slots.shrink_to_fit();
  for (CProgram& program : m_programs) program.ops.shrink_to_fit();
}

bool CFormulaSet::CheckSyntax(std::string_view text, bool integerMode) {
  CFormulaSet set(nullptr, integerMode);
  set.m_acceptAnyIdentifier = true;
  try {
    set.Compile(text, "Formula");
    return true;
  } catch (const GenICam::GenericException&) {
    return false;
  }
}

template <>
int64_t CFormulaSet::SlotValue<int64_t>(const CSlot& slot, const int64_t* externals, bool ignoreCache) const {
  switch (slot.kind) {
  case ESlot::Value: return slot.node->GetInt(false, ignoreCache);
  case ESlot::Min: return slot.node->IsFloatValued() ? ClampToInt64(slot.node->GetFloatMin()) : slot.node->GetIntMin();
  case ESlot::Max: return slot.node->IsFloatValued() ? ClampToInt64(slot.node->GetFloatMax()) : slot.node->GetIntMax();
  case ESlot::Inc: return slot.node->IsFloatValued() ? ClampToInt64(slot.node->GetFloatInc()) : slot.node->GetIntInc();
  case ESlot::Constant: return slot.intValue;
  case ESlot::Expression: return Run<int64_t>(slot.index, externals, ignoreCache);
  case ESlot::External: return externals ? externals[slot.index] : 0;
  }
  return 0;
}

template <>
double CFormulaSet::SlotValue<double>(const CSlot& slot, const double* externals, bool ignoreCache) const {
  switch (slot.kind) {
  case ESlot::Value: return slot.node->GetFloat(false, ignoreCache);
  case ESlot::Min: return slot.node->GetFloatMin();
  case ESlot::Max: return slot.node->GetFloatMax();
  case ESlot::Inc: return slot.node->GetFloatInc();
  case ESlot::Constant: return slot.floatValue;
  case ESlot::Expression: return Run<double>(slot.index, externals, ignoreCache);
  case ESlot::External: return externals ? externals[slot.index] : 0.0;
  }
  return 0.0;
}

namespace {

[[noreturn]] void ThrowDivision(const IFormulaOperand* owner) {
  throw RUNTIME_EXCEPTION("Node '%s': division by zero in formula", owner ? owner->Name().c_str() : "?");
}

double FloatFunction(int32_t id, double x) {
  switch (id) {
  case fSGN: return x > 0 ? 1.0 : (x < 0 ? -1.0 : 0.0);
  case fNEG: return -x;
  case fATAN: return std::atan(x);
  case fCOS: return std::cos(x);
  case fSIN: return std::sin(x);
  case fTAN: return std::tan(x);
  case fABS: return std::fabs(x);
  case fEXP: return std::exp(x);
  case fLN: return std::log(x);
  case fLG: return std::log10(x);
  case fSQRT: return std::sqrt(x);
  case fTRUNC: return std::trunc(x);
  case fFLOOR: return std::floor(x);
  case fCEIL: return std::ceil(x);
  case fROUND: return std::round(x);
  case fASIN: return std::asin(x);
  case fACOS: return std::acos(x);
  default: return x;
  }
}

int64_t IntFunction(int32_t id, int64_t x) {
  switch (id) {
  case fSGN: return x > 0 ? 1 : (x < 0 ? -1 : 0);
  case fNEG: return static_cast<int64_t>(0 - static_cast<uint64_t>(x));
  case fABS: return x < 0 ? static_cast<int64_t>(0 - static_cast<uint64_t>(x)) : x;
  case fTRUNC:
  case fFLOOR:
  case fCEIL:
  case fROUND: return x;
  default: return ClampToInt64(FloatFunction(id, static_cast<double>(x)));
  }
}

int64_t IntPower(int64_t base, int64_t exponent) {
  if (exponent < 0) {
    if (base == 1) return 1;
    if (base == -1) return (exponent & 1) ? -1 : 1;
    return 0;
  }
  uint64_t result = 1;
  uint64_t factor = static_cast<uint64_t>(base);
  uint64_t e = static_cast<uint64_t>(exponent);
  while (e != 0) {
    if (e & 1) result *= factor;
    factor *= factor;
    e >>= 1;
  }
  return static_cast<int64_t>(result);
}

int64_t IntBinary(EOp op, int64_t a, int64_t b, const IFormulaOperand* owner) {
  const uint64_t ua = static_cast<uint64_t>(a);
  const uint64_t ub = static_cast<uint64_t>(b);
  switch (op) {
  case EOp::Add: return static_cast<int64_t>(ua + ub);
  case EOp::Sub: return static_cast<int64_t>(ua - ub);
  case EOp::Mul: return static_cast<int64_t>(ua * ub);
  case EOp::Div:
    if (b == 0) ThrowDivision(owner);
    if (b == -1) return static_cast<int64_t>(0 - ua);
    return a / b;
  case EOp::Mod:
    if (b == 0) ThrowDivision(owner);
    if (b == -1) return 0;
    return a % b;
  case EOp::Pow: return IntPower(a, b);
  case EOp::BitAnd: return a & b;
  case EOp::BitOr: return a | b;
  case EOp::BitXor: return a ^ b;
  // Shift counts are taken modulo 64, as 64-bit processors do.
  case EOp::Shl: return static_cast<int64_t>(ua << (ub & 63));
  case EOp::Shr: return a >> (ub & 63);
  case EOp::Eq: return a == b;
  case EOp::Ne: return a != b;
  case EOp::Lt: return a < b;
  case EOp::Gt: return a > b;
  case EOp::Le: return a <= b;
  case EOp::Ge: return a >= b;
  default: return 0;
  }
}

double FloatBinary(EOp op, double a, double b, const IFormulaOperand* owner) {
  switch (op) {
  case EOp::Add: return a + b;
  case EOp::Sub: return a - b;
  case EOp::Mul: return a * b;
  case EOp::Div:
    if (b == 0.0) ThrowDivision(owner);
    return a / b;
  case EOp::Mod:
    if (b == 0.0) ThrowDivision(owner);
    return std::fmod(a, b);
  case EOp::Pow: return std::pow(a, b);
  case EOp::Eq: return a == b ? 1.0 : 0.0;
  case EOp::Ne: return a != b ? 1.0 : 0.0;
  case EOp::Lt: return a < b ? 1.0 : 0.0;
  case EOp::Gt: return a > b ? 1.0 : 0.0;
  case EOp::Le: return a <= b ? 1.0 : 0.0;
  case EOp::Ge: return a >= b ? 1.0 : 0.0;
  default: return static_cast<double>(IntBinary(op, ClampToInt64(a), ClampToInt64(b), owner));
  }
}

inline int64_t Binary(EOp op, int64_t a, int64_t b, const IFormulaOperand* owner) { return IntBinary(op, a, b, owner); }
inline double Binary(EOp op, double a, double b, const IFormulaOperand* owner) { return FloatBinary(op, a, b, owner); }
inline int64_t Unary1(int32_t id, int64_t x) { return IntFunction(id, x); }
inline double Unary1(int32_t id, double x) { return FloatFunction(id, x); }
inline int64_t Round2(int64_t x, int64_t) { return x; }
inline double Round2(double x, double digits) {
  const double scale = std::pow(10.0, std::trunc(digits));
  return std::round(x * scale) / scale;
}
inline int64_t Negate(int64_t x) { return static_cast<int64_t>(0 - static_cast<uint64_t>(x)); }
inline double Negate(double x) { return -x; }
inline int64_t BitNot(int64_t x) { return ~x; }
inline double BitNot(double x) { return static_cast<double>(~ClampToInt64(x)); }
inline int64_t Const(const CFormulaSet::COp& op, int64_t) { return op.intValue; }
inline double Const(const CFormulaSet::COp& op, double) { return op.floatValue; }

}  // namespace

template <class T>
T CFormulaSet::Run(int programIndex, const T* externals, bool ignoreCache) const {
  const CProgram& program = m_programs[static_cast<size_t>(programIndex)];
  T stack[kMaxStack + 1];
  int top = 0;  // number of values on the stack
  const COp* ops = program.ops.data();
  const size_t count = program.ops.size();
  for (size_t pc = 0; pc < count;) {
    const COp& op = ops[pc++];
    switch (op.code) {
    case EOp::PushConst: stack[top++] = Const(op, T()); break;
    case EOp::PushSlot:
      stack[top++] = SlotValue<T>(m_slots[static_cast<size_t>(op.arg)], externals, ignoreCache);
      break;
    case EOp::Neg: stack[top - 1] = Negate(stack[top - 1]); break;
    case EOp::BitNot: stack[top - 1] = BitNot(stack[top - 1]); break;
    case EOp::LogNot: stack[top - 1] = stack[top - 1] == T() ? T(1) : T(0); break;
    case EOp::ToBool: stack[top - 1] = stack[top - 1] != T() ? T(1) : T(0); break;
    case EOp::JumpIfZero:
      if (stack[--top] == T()) pc = static_cast<size_t>(op.arg);
      break;
    case EOp::Jump: pc = static_cast<size_t>(op.arg); break;
    case EOp::AndShortCircuit:
      if (stack[--top] == T()) {
        stack[top++] = T(0);
        pc = static_cast<size_t>(op.arg);
      }
      break;
    case EOp::OrShortCircuit:
      if (stack[--top] != T()) {
        stack[top++] = T(1);
        pc = static_cast<size_t>(op.arg);
      }
      break;
    case EOp::Func1: stack[top - 1] = Unary1(op.arg, stack[top - 1]); break;
    case EOp::Func2:
      --top;
      stack[top - 1] = Round2(stack[top - 1], stack[top]);
      break;
    default:
      --top;
      stack[top - 1] = Binary(op.code, stack[top - 1], stack[top], m_owner);
      break;
    }
  }
  return top > 0 ? stack[top - 1] : T();
}

int64_t CFormulaSet::EvaluateInt(int program, const int64_t* externals, bool ignoreCache) const {
  if (m_integerMode) return Run<int64_t>(program, externals, ignoreCache);
  double converted[4] = {0, 0, 0, 0};
  if (externals) {
    for (int i = 0; i < 4; ++i) converted[i] = static_cast<double>(externals[i]);
  }
  return ClampToInt64(Run<double>(program, converted, ignoreCache));
}

double CFormulaSet::EvaluateFloat(int program, const double* externals, bool ignoreCache) const {
  if (!m_integerMode) return Run<double>(program, externals, ignoreCache);
  int64_t converted[4] = {0, 0, 0, 0};
  if (externals) {
    for (int i = 0; i < 4; ++i) converted[i] = ClampToInt64(externals[i]);
  }
  return static_cast<double>(Run<int64_t>(program, converted, ignoreCache));
}

}  // namespace Engine
}  // namespace GenApi

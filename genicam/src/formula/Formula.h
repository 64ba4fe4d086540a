#pragma once
// Formulas of SwissKnife, IntSwissKnife, Converter and IntConverter nodes, parsed once into postfix code and evaluated
// on a small fixed stack without allocation. Integer formulas run in 64-bit integers, the others in double.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "formula/FormulaOperand.h"

namespace GenApi {
namespace Engine {

class CFormulaSet {
public:
  static constexpr int kMaxStack = 128;
  static constexpr int kMaxNesting = 300;

  // owner names the node in error messages; integerMode selects 64-bit integer evaluation.
  CFormulaSet(const IFormulaOperand* owner, bool integerMode);

  // Variables, declared before compiling. Later declarations of the same name replace earlier ones.
  void AddNodeVariable(std::string name, IFormulaOperand* node);
  void AddConstant(std::string name, int64_t intValue, double floatValue);
  void AddExpression(std::string name, std::string text);
  // A value passed in at evaluation time (FROM / TO of converters), by index into the externals array.
  void AddExternal(std::string name, int index);

  // Parses the text; throws a GenICam exception naming the node and the position on a syntax error, an unknown
  // variable or a formula too deeply nested. Returns the program's handle.
  int Compile(std::string_view text, const char* what);

  int64_t EvaluateInt(int program, const int64_t* externals, bool ignoreCache) const;
  double EvaluateFloat(int program, const double* externals, bool ignoreCache) const;
  // EvaluateInt for int64_t, EvaluateFloat for double.
  template <class T>
  T Evaluate(int program, const T* externals, bool ignoreCache) const;

  // Drops what only compiling needs (variable names and texts); call once every program is compiled.
  void FinishCompiling();
  // The nodes the compiled programs read (for dependency edges).
  const std::vector<IFormulaOperand*>& ReferencedNodes() const { return m_referencedNodes; }
  bool IntegerMode() const { return m_integerMode; }

  // Syntax check only: every identifier is accepted as a variable.
  static bool CheckSyntax(std::string_view text, bool integerMode);

  enum class EOp : uint8_t;
  struct COp {
    EOp code;
    int32_t arg;
    int64_t intValue;
    double floatValue;
  };
  enum class ESlot : uint8_t { Value, Min, Max, Inc, Constant, Expression, External };
  struct CSlot {
    ESlot kind;
    IFormulaOperand* node;
    int64_t intValue;
    double floatValue;
    int index;  // expression program or external index
  };
  struct CVariable {
    std::string name;
    ESlot kind;  // Value (node), Constant, Expression, External
    IFormulaOperand* node;
    int64_t intValue;
    double floatValue;
    std::string text;  // expression text
    int program;       // compiled expression, -1 until compiled, -2 while compiling
    int index;         // external index
  };
  struct CProgram {
    std::vector<COp> ops;
    int maxStack = 0;
  };

private:
  friend class CFormulaParser;
  int SlotFor(std::string_view identifier, bool& found);
  template <class T>
  T Run(int program, const T* externals, bool ignoreCache) const;
  template <class T>
  T SlotValue(const CSlot& slot, const T* externals, bool ignoreCache) const;

  const IFormulaOperand* m_owner;
  bool m_integerMode;
  bool m_acceptAnyIdentifier = false;
  std::vector<CVariable> m_variables;
  std::unordered_map<std::string_view, size_t> m_variableIndex;  // name -> last declaration, built at first use
  size_t m_indexedVariables = 0;                                 // declarations the index covers
  std::unordered_set<const IFormulaOperand*> m_referencedSet;
  std::vector<CSlot> m_slots;
  std::vector<CProgram> m_programs;
  std::vector<IFormulaOperand*> m_referencedNodes;
};

template <>
inline int64_t CFormulaSet::Evaluate<int64_t>(int program, const int64_t* externals, bool ignoreCache) const {
  return EvaluateInt(program, externals, ignoreCache);
}
template <>
inline double CFormulaSet::Evaluate<double>(int program, const double* externals, bool ignoreCache) const {
  return EvaluateFloat(program, externals, ignoreCache);
}

}  // namespace Engine
}  // namespace GenApi

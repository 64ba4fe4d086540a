#pragma once
// The postfix code formulas compile into, shared by the parser that writes it and the evaluator that runs it.
#include <cstdint>

#include "formula/Formula.h"

namespace GenApi {
namespace Engine {

enum class CFormulaSet::EOp : uint8_t {
  PushConst,
  PushSlot,
  Neg,
  BitNot,
  LogNot,
  ToBool,
  Add,
  Sub,
  Mul,
  Div,
  Mod,
  Pow,
  BitAnd,
  BitOr,
  BitXor,
  Shl,
  Shr,
  Eq,
  Ne,
  Lt,
  Gt,
  Le,
  Ge,
  JumpIfZero,  // pop; jump when zero
  Jump,
  AndShortCircuit,  // pop; when zero push 0 and jump
  OrShortCircuit,   // pop; when non-zero push 1 and jump
  Func1,
  Func2
};

// Functions of formulas, by the argument of Func1 / Func2.
enum EFormulaFunction : int32_t {
  fSGN,
  fNEG,
  fATAN,
  fCOS,
  fSIN,
  fTAN,
  fABS,
  fEXP,
  fLN,
  fLG,
  fSQRT,
  fTRUNC,
  fFLOOR,
  fCEIL,
  fROUND,
  fASIN,
  fACOS
};

}  // namespace Engine
}  // namespace GenApi

// Formula parsing: precedence climbing into postfix code with jumps.
#include "formula/FormulaParser.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <limits>

#include <GCBase/GCException.h>

#include "base/NumberParsing.h"
#include "formula/FormulaCode.h"

namespace GenApi {
namespace Engine {

namespace {

using EOp = CFormulaSet::EOp;

struct CFunctionName {
  const char* name;
  EFormulaFunction id;
};
constexpr CFunctionName kFunctions[] = {
    {"SGN", fSGN},     {"NEG", fNEG},   {"ATAN", fATAN},   {"COS", fCOS},   {"SIN", fSIN},   {"TAN", fTAN},
    {"ABS", fABS},     {"EXP", fEXP},   {"LN", fLN},       {"LG", fLG},     {"SQRT", fSQRT}, {"TRUNC", fTRUNC},
    {"FLOOR", fFLOOR}, {"CEIL", fCEIL}, {"ROUND", fROUND}, {"ASIN", fASIN}, {"ACOS", fACOS}};

bool SameIgnoringCase(std::string_view a, const char* b) {
  const size_t n = std::strlen(b);
  if (a.size() != n) return false;
  for (size_t i = 0; i < n; ++i) {
    char c = a[i];
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c != b[i]) return false;
  }
  return true;
}

enum class ETok { End, Number, Identifier, Op, LParen, RParen, Comma, Question, Colon };

struct CToken {
  ETok kind = ETok::End;
  std::string_view text;
  size_t position = 0;
  bool isFloat = false;
  int64_t intValue = 0;
  double floatValue = 0;
};

}  // namespace

class CFormulaParser {
public:
  CFormulaParser(CFormulaSet& set, std::string_view text, const char* what, CFormulaSet::CProgram& program)
      : m_set(set), m_text(text), m_what(what), m_program(program) {}

  void Parse() {
    Next();
    ParseTernary(0);
    if (m_token.kind != ETok::End) Fail("unexpected text");
  }

private:
  [[noreturn]] void Fail(const char* problem) const {
    const std::string shown(m_text.substr(0, 200));
    throw RUNTIME_EXCEPTION("Node '%s': %s in %s at position %zu: '%s'",
                            m_set.m_owner ? m_set.m_owner->Name().c_str() : "?", problem, m_what, m_token.position + 1,
                            shown.c_str());
  }

  void Next() {
    size_t i = m_pos;
    while (i < m_text.size() && (m_text[i] == ' ' || m_text[i] == '\t' || m_text[i] == '\n' || m_text[i] == '\r')) ++i;
    m_token = CToken();
    m_token.position = i;
    if (i >= m_text.size()) {
      m_pos = i;
      return;
    }
    const char c = m_text[i];
    auto isIdentStart = [](char ch) { return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || ch == '_'; };
    auto isIdentPart = [&](char ch) { return isIdentStart(ch) || (ch >= '0' && ch <= '9') || ch == '.'; };
    if (c >= '0' && c <= '9') {
      size_t j = i;
      if (c == '0' && j + 1 < m_text.size() && (m_text[j + 1] == 'x' || m_text[j + 1] == 'X')) {
        j += 2;
        while (j < m_text.size() && std::isxdigit(static_cast<unsigned char>(m_text[j]))) ++j;
      } else {
        while (j < m_text.size() && m_text[j] >= '0' && m_text[j] <= '9') ++j;
        if (j < m_text.size() && m_text[j] == '.') {
          m_token.isFloat = true;
          ++j;
          while (j < m_text.size() && m_text[j] >= '0' && m_text[j] <= '9') ++j;
        }
        if (j < m_text.size() && (m_text[j] == 'e' || m_text[j] == 'E')) {
          size_t k = j + 1;
          if (k < m_text.size() && (m_text[k] == '+' || m_text[k] == '-')) ++k;
          if (k < m_text.size() && m_text[k] >= '0' && m_text[k] <= '9') {
            m_token.isFloat = true;
            j = k;
            while (j < m_text.size() && m_text[j] >= '0' && m_text[j] <= '9') ++j;
          }
        }
      }
      m_token.kind = ETok::Number;
      m_token.text = m_text.substr(i, j - i);
      if (m_token.isFloat) {
        if (!ParseDouble(m_token.text, m_token.floatValue)) Fail("bad number");
        m_token.intValue = ClampToInt64(m_token.floatValue);
      } else {
        if (!ParseInteger(m_token.text, m_token.intValue)) Fail("bad number");
        m_token.floatValue = static_cast<double>(m_token.intValue);
      }
      m_pos = j;
      return;
    }
    if (isIdentStart(c)) {
      size_t j = i + 1;
      while (j < m_text.size() && isIdentPart(m_text[j])) ++j;
      m_token.kind = ETok::Identifier;
      m_token.text = m_text.substr(i, j - i);
      m_pos = j;
      return;
    }
    size_t length = 1;
    ETok kind = ETok::Op;
    const char d = i + 1 < m_text.size() ? m_text[i + 1] : '\0';
    switch (c) {
    case '(': kind = ETok::LParen; break;
    case ')': kind = ETok::RParen; break;
    case ',': kind = ETok::Comma; break;
    case '?': kind = ETok::Question; break;
    case ':': kind = ETok::Colon; break;
    case '*': length = d == '*' ? 2 : 1; break;
    case '&': length = d == '&' ? 2 : 1; break;
    case '|': length = d == '|' ? 2 : 1; break;
    case '<': length = (d == '<' || d == '=' || d == '>') ? 2 : 1; break;
    case '>': length = (d == '>' || d == '=') ? 2 : 1; break;
    case '=': length = d == '=' ? 2 : 1; break;
    case '!': length = d == '=' ? 2 : 1; break;
    case '+':
    case '-':
    case '/':
    case '%':
    case '^':
    case '~': break;
    default: Fail("unexpected character");
    }
    m_token.kind = kind;
    m_token.text = m_text.substr(i, length);
    m_pos = i + length;
  }

  void Emit(EOp code, int delta, int32_t arg = 0, int64_t intValue = 0, double floatValue = 0) {
    m_program.ops.push_back({code, arg, intValue, floatValue});
    m_depth += delta;
    if (m_depth > m_program.maxStack) m_program.maxStack = m_depth;
    if (m_program.maxStack > CFormulaSet::kMaxStack) Fail("formula too complex");
    if (m_program.ops.size() > 100000) Fail("formula too long");
  }
  size_t Here() const { return m_program.ops.size(); }
  void PatchJump(size_t at) { m_program.ops[at].arg = static_cast<int32_t>(Here()); }

  struct CNest {
    explicit CNest(CFormulaParser& parser) : m_parser(parser) {
      if (++m_parser.m_nesting > CFormulaSet::kMaxNesting) m_parser.Fail("formula nested too deeply");
    }
    ~CNest() { --m_parser.m_nesting; }
    CFormulaParser& m_parser;
  };

  // ?: is the loosest level and right associative.
  void ParseTernary(int) {
    CNest nest(*this);
    ParseBinary(0);
    if (m_token.kind == ETok::Question) {
      Next();
      const size_t jumpElse = Here();
      Emit(EOp::JumpIfZero, -1);
      const int depthBefore = m_depth;
      ParseTernary(0);
      const size_t jumpEnd = Here();
      Emit(EOp::Jump, 0);
      if (m_token.kind != ETok::Colon) Fail("':' expected");
      Next();
      PatchJump(jumpElse);
      m_depth = depthBefore;
      ParseTernary(0);
      PatchJump(jumpEnd);
    }
  }

  // Binary levels, loosest first: || && | ^ & (= <>) (< > <= >=) (<< >>) (+ -) (* / %) **
  static int LevelOf(std::string_view op) {
    if (op == "||") return 0;
    if (op == "&&") return 1;
    if (op == "|") return 2;
    if (op == "^") return 3;
    if (op == "&") return 4;
    if (op == "=" || op == "==" || op == "<>" || op == "!=") return 5;
    if (op == "<" || op == ">" || op == "<=" || op == ">=") return 6;
    if (op == "<<" || op == ">>") return 7;
    if (op == "+" || op == "-") return 8;
    if (op == "*" || op == "/" || op == "%") return 9;
    if (op == "**") return 10;
    return -1;
  }
  static EOp OpOf(std::string_view op) {
    if (op == "|") return EOp::BitOr;
    if (op == "^") return EOp::BitXor;
    if (op == "&") return EOp::BitAnd;
    if (op == "=" || op == "==") return EOp::Eq;
    if (op == "<>" || op == "!=") return EOp::Ne;
    if (op == "<") return EOp::Lt;
    if (op == ">") return EOp::Gt;
    if (op == "<=") return EOp::Le;
    if (op == ">=") return EOp::Ge;
    if (op == "<<") return EOp::Shl;
    if (op == ">>") return EOp::Shr;
    if (op == "+") return EOp::Add;
    if (op == "-") return EOp::Sub;
    if (op == "*") return EOp::Mul;
    if (op == "/") return EOp::Div;
    if (op == "%") return EOp::Mod;
    return EOp::Pow;
  }

  // Precedence climbing: one recursion per operator of higher precedence, a loop along operators of the same level.
  void ParseBinary(int minLevel) {
    CNest nest(*this);
    ParseUnary();
    while (m_token.kind == ETok::Op) {
      const int level = LevelOf(m_token.text);
      if (level < 0 || level < minLevel) break;
      const std::string_view op = m_token.text;
      Next();
      if (level == 0 || level == 1) {
        const size_t jump = Here();
        Emit(level == 0 ? EOp::OrShortCircuit : EOp::AndShortCircuit, -1);
        ParseBinary(level + 1);
        Emit(EOp::ToBool, 0);
        PatchJump(jump);
      } else if (level == 10) {
        ParseBinary(level);  // right associative
        Emit(EOp::Pow, -1);
      } else {
        ParseBinary(level + 1);
        Emit(OpOf(op), -1);
      }
    }
  }

  void ParseUnary() {
    CNest nest(*this);
    if (m_token.kind == ETok::Op) {
      const std::string_view op = m_token.text;
      if (op == "-" || op == "+" || op == "~" || op == "!") {
        Next();
        ParseUnary();
        if (op == "-") Emit(EOp::Neg, 0);
        if (op == "~") Emit(EOp::BitNot, 0);
        if (op == "!") Emit(EOp::LogNot, 0);
        return;
      }
    }
    ParsePrimary();
  }

  void ParsePrimary() {
    if (m_token.kind == ETok::Number) {
      Emit(EOp::PushConst, 1, 0, m_token.intValue, m_token.floatValue);
      Next();
      return;
    }
    if (m_token.kind == ETok::LParen) {
      Next();
      ParseTernary(0);
      if (m_token.kind != ETok::RParen) Fail("')' expected");
      Next();
      return;
    }
    if (m_token.kind == ETok::Identifier) {
      const std::string_view name = m_token.text;
      const CToken nameToken = m_token;
      Next();
      if (m_token.kind == ETok::LParen) {
        for (const CFunctionName& function : kFunctions) {
          if (!SameIgnoringCase(name, function.name)) continue;
          Next();
          ParseTernary(0);
          int arguments = 1;
          if (m_token.kind == ETok::Comma) {
            if (function.id != fROUND) Fail("too many arguments");
            Next();
            ParseTernary(0);
            arguments = 2;
          }
          if (m_token.kind != ETok::RParen) Fail("')' expected");
          Next();
          Emit(arguments == 1 ? EOp::Func1 : EOp::Func2, arguments == 1 ? 0 : -1, function.id);
          return;
        }
        m_token = nameToken;
        Fail("unknown function");
      }
      bool found = false;
      const int slot = m_set.SlotFor(name, found);
      if (found) {
        Emit(EOp::PushSlot, 1, slot);
        return;
      }
      if (SameIgnoringCase(name, "PI")) {
        Emit(EOp::PushConst, 1, 0, 3, 3.14159265358979323846);
        return;
      }
      if (SameIgnoringCase(name, "E")) {
        Emit(EOp::PushConst, 1, 0, 2, 2.71828182845904523536);
        return;
      }
      if (SameIgnoringCase(name, "TRUE")) {
        Emit(EOp::PushConst, 1, 0, 1, 1.0);
        return;
      }
      if (SameIgnoringCase(name, "FALSE")) {
        Emit(EOp::PushConst, 1, 0, 0, 0.0);
        return;
      }
      m_token = nameToken;
      Fail("unknown variable");
    }
    if (m_token.kind == ETok::End) Fail("unexpected end");
    Fail("operand expected");
  }

  CFormulaSet& m_set;
  std::string_view m_text;
  const char* m_what;
  CFormulaSet::CProgram& m_program;
  size_t m_pos = 0;
  CToken m_token;
  int m_depth = 0;
  int m_nesting = 0;
};


void CompileFormula(CFormulaSet& set, std::string_view text, const char* what, CFormulaSet::CProgram& program) {
  CFormulaParser parser(set, text, what, program);
  parser.Parse();
}

}  // namespace Engine
}  // namespace GenApi

// Formulas: grammar, precedence, integer and double evaluation, functions, variables and their suffixes.
#include <gtest/gtest.h>

#include <cmath>

#include "MemoryPort.h"

using namespace EngineTest;
using GenApi::CFloatPtr;
using GenApi::CIntegerPtr;

namespace {

const char* const kVariables = "<Integer Name='X'><Value>%lld</Value><Min>-5</Min><Max>50</Max><Inc>5</Inc></Integer>";

std::string Variables(long long x) {
  char text[256];
  std::snprintf(text, sizeof text, kVariables, x);
  return text;
}

std::string Escape(const std::string& formula) {
  std::string escaped;
  for (char c : formula) {
    if (c == '<') escaped += "&lt;";
    else if (c == '>') escaped += "&gt;";
    else if (c == '&') escaped += "&amp;";
    else escaped += c;
  }
  return escaped;
}

int64_t IntFormula(const std::string& formula, long long x = 0) {
  CTestMap t("<IntSwissKnife Name='K'><pVariable Name='X'>X</pVariable><Formula>" + Escape(formula) +
             "</Formula></IntSwissKnife>" + Variables(x));
  return CIntegerPtr(t.Node("K"))->GetValue();
}

double FloatFormula(const std::string& formula, long long x = 0) {
  CTestMap t("<SwissKnife Name='K'><pVariable Name='X'>X</pVariable><Formula>" + Escape(formula) +
             "</Formula></SwissKnife>" + Variables(x));
  return CFloatPtr(t.Node("K"))->GetValue();
}

TEST(Formula, PrecedenceFollowsC) {
  EXPECT_EQ(IntFormula("3 & 1 = 1"), 1);
  EXPECT_EQ(IntFormula("2 + 3 * 4"), 14);
  EXPECT_EQ(IntFormula("10 - 4 - 3"), 3);
  EXPECT_EQ(IntFormula("1 << 2 + 1"), 8);
  EXPECT_EQ(IntFormula("1 | 2 ^ 3 & 1"), 3);
  EXPECT_EQ(IntFormula("2 < 3 = 1"), 1);
  EXPECT_EQ(IntFormula("(2 + 3) * 4"), 20);
}

TEST(Formula, PowerIsRightAssociativeAndUnaryBindsTighter) {
  EXPECT_EQ(IntFormula("2 ** 3 ** 2"), 512);
  EXPECT_EQ(IntFormula("-2 ** 2"), 4);
  EXPECT_EQ(IntFormula("2 ** -1"), 0);
  EXPECT_DOUBLE_EQ(FloatFormula("2 ** -1"), 0.5);
}

TEST(Formula, ConditionalIsRightAssociative) {
  EXPECT_EQ(IntFormula("1 ? 2 : 3 ? 4 : 5"), 2);
  EXPECT_EQ(IntFormula("0 ? 2 : 0 ? 4 : 5"), 5);
  EXPECT_EQ(IntFormula("X = 3 ? 30 : X = 4 ? 40 : 0", 4), 40);
}

TEST(Formula, RelationsIncludingTheCStyleSpellings) {
  EXPECT_EQ(IntFormula("X = 3", 3), 1);
  EXPECT_EQ(IntFormula("X == 3", 3), 1);
  EXPECT_EQ(IntFormula("X <> 3", 3), 0);
  EXPECT_EQ(IntFormula("X != 3", 4), 1);
  EXPECT_EQ(IntFormula("X <= 3", 3), 1);
  EXPECT_EQ(IntFormula("X >= 4", 3), 0);
  EXPECT_EQ(IntFormula("X < 4", 3), 1);
  EXPECT_EQ(IntFormula("X > 4", 3), 0);
}

TEST(Formula, LogicalOperatorsShortCircuit) {
  EXPECT_EQ(IntFormula("(X = 0) || (10 / X > 1)", 0), 1);
  EXPECT_EQ(IntFormula("X && 10 / X", 0), 0);
  EXPECT_EQ(IntFormula("X && 10 / X", 5), 1);
  EXPECT_EQ(IntFormula("0 || 7"), 1);
}

TEST(Formula, BitwiseOperatorsAndShifts) {
  EXPECT_EQ(IntFormula("0xF0 & 0x3C"), 0x30);
  EXPECT_EQ(IntFormula("0xF0 | 0x0F"), 0xFF);
  EXPECT_EQ(IntFormula("0xFF ^ 0x0F"), 0xF0);
  EXPECT_EQ(IntFormula("~0"), -1);
  EXPECT_EQ(IntFormula("1 << 40"), 1LL << 40);
  EXPECT_EQ(IntFormula("-16 >> 2"), -4);
  EXPECT_EQ(IntFormula("1 << 68"), 16) << "shift counts are taken modulo 64";
}

TEST(Formula, IntegerAndDoubleDivision) {
  EXPECT_EQ(IntFormula("7 / 2"), 3);
  EXPECT_EQ(IntFormula("-7 / 2"), -3);
  EXPECT_EQ(IntFormula("-7 % 3"), -1);
  EXPECT_DOUBLE_EQ(FloatFormula("7 / 2"), 3.5);
  EXPECT_EQ(IntFormula("0x7FFFFFFFFFFFFFFF + 1"), INT64_MIN) << "wraps, no undefined behaviour";
}

TEST(Formula, DivisionByZeroNamesTheNode) {
  const std::string error = ErrorOf([] { IntFormula("1 / X", 0); });
  EXPECT_NE(error.find("'K'"), std::string::npos) << error;
  EXPECT_NE(error.find("division by zero"), std::string::npos) << error;
  EXPECT_FALSE(ErrorOf([] { IntFormula("1 % X", 0); }).empty());
  EXPECT_FALSE(ErrorOf([] { FloatFormula("1 / X", 0); }).empty());
}

TEST(Formula, Functions) {
  EXPECT_EQ(IntFormula("SGN(X)", -4), -1);
  EXPECT_EQ(IntFormula("NEG(X)", 4), -4);
  EXPECT_EQ(IntFormula("ABS(X)", -4), 4);
  EXPECT_DOUBLE_EQ(FloatFormula("ROUND(2.567, 2)"), 2.57);
  EXPECT_DOUBLE_EQ(FloatFormula("ROUND(2.5)"), 3.0);
  EXPECT_DOUBLE_EQ(FloatFormula("TRUNC(-2.7)"), -2.0);
  EXPECT_DOUBLE_EQ(FloatFormula("FLOOR(-2.2)"), -3.0);
  EXPECT_DOUBLE_EQ(FloatFormula("CEIL(2.2)"), 3.0);
  EXPECT_DOUBLE_EQ(FloatFormula("SQRT(16)"), 4.0);
  EXPECT_DOUBLE_EQ(FloatFormula("LN(E)"), 1.0);
  EXPECT_DOUBLE_EQ(FloatFormula("LG(1000)"), 3.0);
  EXPECT_DOUBLE_EQ(FloatFormula("EXP(0)"), 1.0);
  EXPECT_NEAR(FloatFormula("SIN(PI / 2) + COS(0) + TAN(0) + ATAN(0) + ASIN(0) + ACOS(1)"), 2.0, 1e-12);
  EXPECT_DOUBLE_EQ(FloatFormula("ABS(-1.5)"), 1.5);
}

TEST(Formula, NumberLiterals) {
  EXPECT_EQ(IntFormula("0x10 + 0XfF"), 16 + 255);
  EXPECT_DOUBLE_EQ(FloatFormula("1.5e2 + 0.5 * 0 + 2.25"), 152.25);
}

TEST(Formula, VariableSuffixes) {
  EXPECT_EQ(IntFormula("X.Min"), -5);
  EXPECT_EQ(IntFormula("X.Max"), 50);
  EXPECT_EQ(IntFormula("X.Inc"), 5);
  EXPECT_EQ(IntFormula("X.Value", 9), 9);
}

TEST(Formula, EnumerationEntryValues) {
  CTestMap t("<IntSwissKnife Name='K'><pVariable Name='M'>Mode</pVariable><Formula>M = M.Entry.Fast</Formula>"
             "</IntSwissKnife><Enumeration Name='Mode'><EnumEntry Name='Slow'><Value>1</Value></EnumEntry>"
             "<EnumEntry Name='Fast'><Value>2</Value></EnumEntry><Value>2</Value></Enumeration>");
  EXPECT_EQ(CIntegerPtr(t.Node("K"))->GetValue(), 1);
}

TEST(Formula, ConstantsAndExpressions) {
  CTestMap t("<IntSwissKnife Name='K'><pVariable Name='X'>X</pVariable><Constant Name='C'>0x10</Constant>"
             "<Expression Name='TWICE'>X * 2</Expression><Expression Name='MORE'>TWICE + C</Expression>"
             "<Formula>MORE + 1</Formula></IntSwissKnife>" +
             Variables(3));
  EXPECT_EQ(CIntegerPtr(t.Node("K"))->GetValue(), 3 * 2 + 16 + 1);
}

TEST(Formula, CdataAndEscapedOperators) {
  CTestMap t("<IntSwissKnife Name='K'><pVariable Name='X'>X</pVariable>"
             "<Formula><![CDATA[(X > 1) && (X < 10)]]></Formula></IntSwissKnife>"
             "<IntSwissKnife Name='L'><pVariable Name='X'>X</pVariable>"
             "<Formula>(X &gt; 1) &amp;&amp; (X &lt; 2)</Formula></IntSwissKnife>" +
             Variables(5));
  EXPECT_EQ(CIntegerPtr(t.Node("K"))->GetValue(), 1);
  EXPECT_EQ(CIntegerPtr(t.Node("L"))->GetValue(), 0);
}

TEST(Formula, ValuesFollowTheVariables) {
  CTestMap t("<IntSwissKnife Name='K'><pVariable Name='X'>X</pVariable><Formula>X * 10</Formula></IntSwissKnife>" +
             Variables(1));
  CIntegerPtr k(t.Node("K"));
  EXPECT_EQ(k->GetValue(), 10);
  CIntegerPtr(t.Node("X"))->SetValue(5);
  EXPECT_EQ(k->GetValue(), 50);
}

TEST(Formula, SyntaxCheckOfTheNodeMap) {
  CTestMap t(Variables(0));
  GenApi::INodeMap* map = t.map._Ptr;
  EXPECT_TRUE(map->ParseSwissKnife("(A + 1) * B"));
  EXPECT_FALSE(map->ParseSwissKnife("(A + 1"));
  EXPECT_FALSE(map->ParseSwissKnife("A +"));
  EXPECT_FALSE(map->ParseSwissKnife("FOO(1)"));
}

TEST(Formula, BadFormulasFailTheLoadNamingNodeAndPosition) {
  const char* const bad[] = {"1 +", "(1", "1 )", "FOO(1)", "Y + 1", "1 ? 2", "X $ 2", "", "ROUND(1, 2, 3)"};
  for (const char* formula : bad) {
    SCOPED_TRACE(formula);
    const std::string error = ErrorOf([&] { IntFormula(formula); });
    EXPECT_NE(error.find("'K'"), std::string::npos) << error;
    EXPECT_NE(error.find("position"), std::string::npos) << error;
  }
}

TEST(Formula, ExpressionThatRefersToItselfFailsTheLoad) {
  const std::string error = ErrorOf([] {
    CTestMap t("<IntSwissKnife Name='K'><Expression Name='A'>B + 1</Expression><Expression Name='B'>A + 1"
               "</Expression><Formula>A</Formula></IntSwissKnife>");
  });
  EXPECT_NE(error.find("refers to itself"), std::string::npos) << error;
}

}  // namespace

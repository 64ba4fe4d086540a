// Float-valued nodes: FloatReg, Float, SwissKnife, Converter, IntConverter.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "MemoryPort.h"

using namespace EngineTest;
using GenApi::CFloatPtr;
using GenApi::CIntegerPtr;

namespace {

TEST(FloatReg, FourAndEightBytesInBothEndiannesses) {
  CTestMap t("<FloatReg Name='F4'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><Endianess>BigEndian</Endianess></FloatReg>"
             "<FloatReg Name='F8'><Address>0x10</Address><Length>8</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></FloatReg>");
  const float single = 1.5f;
  uint32_t raw32 = 0;
  std::memcpy(&raw32, &single, 4);
  t.port.Poke32BE(0, raw32);
  EXPECT_DOUBLE_EQ(CFloatPtr(t.Node("F4"))->GetValue(), 1.5);
  CFloatPtr f8(t.Node("F8"));
  f8->SetValue(-2.25);
  const double expected = -2.25;
  uint64_t raw64 = 0;
  std::memcpy(&raw64, &expected, 8);
  EXPECT_EQ(t.port.Peek32LE(0x10), static_cast<uint32_t>(raw64));
  EXPECT_EQ(t.port.Peek32LE(0x14), static_cast<uint32_t>(raw64 >> 32));
  EXPECT_DOUBLE_EQ(f8->GetValue(true, true), -2.25);
  EXPECT_FALSE(f8->HasInc());
}

TEST(Float, LimitsIncrementAndVerification) {
  CTestMap t("<Float Name='F'><Value>1.0</Value><Min>-1.5</Min><Max>10</Max><Inc>0.5</Inc><Unit>ms</Unit>"
             "<DisplayPrecision>3</DisplayPrecision></Float><Float Name='G'><Value>2</Value></Float>");
  CFloatPtr f(t.Node("F"));
  EXPECT_DOUBLE_EQ(f->GetMin(), -1.5);
  EXPECT_DOUBLE_EQ(f->GetMax(), 10.0);
  EXPECT_TRUE(f->HasInc());
  EXPECT_DOUBLE_EQ(f->GetInc(), 0.5);
  EXPECT_EQ(std::string(f->GetUnit()), "ms");
  EXPECT_EQ(f->GetDisplayPrecision(), 3);
  f->SetValue(2.5);
  EXPECT_DOUBLE_EQ(f->GetValue(), 2.5);
  EXPECT_THROW(f->SetValue(11.0), GenICam::OutOfRangeException);
  EXPECT_THROW(f->SetValue(std::numeric_limits<double>::quiet_NaN()), GenICam::GenericException);
  CFloatPtr g(t.Node("G"));
  EXPECT_FALSE(g->HasInc());
  EXPECT_THROW(g->GetInc(), GenICam::GenericException);
  EXPECT_DOUBLE_EQ(g->GetMax(), std::numeric_limits<double>::max());
  g->FromString("3.25");
  EXPECT_EQ(std::string(g->ToString()), "3.25");
}

TEST(Float, ReadsAnIntegerTarget) {
  CTestMap t("<Float Name='F'><pValue>I</pValue></Float><Integer Name='I'><Value>7</Value></Integer>");
  CFloatPtr f(t.Node("F"));
  EXPECT_DOUBLE_EQ(f->GetValue(), 7.0);
  f->SetValue(8.6);
  EXPECT_EQ(CIntegerPtr(t.Node("I"))->GetValue(), 9) << "a written float is rounded to the integer target";
  CTestMap back("<Integer Name='I'><pValue>F</pValue></Integer><Float Name='F'><Value>-2.7</Value></Float>");
  EXPECT_EQ(CIntegerPtr(back.Node("I"))->GetValue(), -2) << "a float read as an integer is truncated";
}

TEST(Float, WithoutIncrementStepsLikeItsIntegerTarget) {
  CTestMap t("<Float Name='F'><pValue>I</pValue></Float><Integer Name='I'><Value>8</Value><Inc>4</Inc></Integer>"
             "<Float Name='G'><pValue>H</pValue></Float><Float Name='H'><Value>1</Value></Float>");
  CFloatPtr f(t.Node("F"));
  EXPECT_TRUE(f->HasInc());
  EXPECT_DOUBLE_EQ(f->GetInc(), 4.0);
  EXPECT_FALSE(CFloatPtr(t.Node("G"))->HasInc()) << "a float target without increment gives none";
}

TEST(SwissKnife, EvaluatesInDoubleAndIsReadOnly) {
  CTestMap t("<SwissKnife Name='S'><pVariable Name='A'>A</pVariable><Formula>A / 2</Formula></SwissKnife>"
             "<Integer Name='A'><Value>7</Value></Integer>");
  CFloatPtr s(t.Node("S"));
  EXPECT_DOUBLE_EQ(s->GetValue(), 3.5);
  EXPECT_EQ(s->GetAccessMode(), GenApi::RO);
  EXPECT_THROW(s->SetValue(1.0), GenICam::AccessException);
}

TEST(Converter, FormulaFromReadsAndFormulaToWrites) {
  CTestMap t("<Converter Name='Exposure'><pVariable Name='K'>K</pVariable><FormulaTo>FROM / K</FormulaTo>"
             "<FormulaFrom>TO * K</FormulaFrom><pValue>Raw</pValue><Slope>Increasing</Slope></Converter>"
             "<Integer Name='Raw'><Value>10</Value><Min>1</Min><Max>100</Max></Integer>"
             "<Float Name='K'><Value>2.5</Value></Float>");
  CFloatPtr e(t.Node("Exposure"));
  EXPECT_DOUBLE_EQ(e->GetValue(), 25.0);
  EXPECT_DOUBLE_EQ(e->GetMin(), 2.5);
  EXPECT_DOUBLE_EQ(e->GetMax(), 250.0);
  e->SetValue(50.0);
  EXPECT_EQ(CIntegerPtr(t.Node("Raw"))->GetValue(), 20);
  EXPECT_THROW(e->SetValue(1000.0), GenICam::OutOfRangeException);
  EXPECT_EQ(e->GetAccessMode(), GenApi::RW);
}

TEST(Converter, DecreasingSlopeSwapsTheLimits) {
  CTestMap t("<Converter Name='C'><FormulaTo>100 - FROM</FormulaTo><FormulaFrom>100 - TO</FormulaFrom>"
             "<pValue>Raw</pValue><Slope>Decreasing</Slope></Converter>"
             "<Integer Name='Raw'><Value>10</Value><Min>0</Min><Max>30</Max></Integer>");
  CFloatPtr c(t.Node("C"));
  EXPECT_DOUBLE_EQ(c->GetMin(), 70.0);
  EXPECT_DOUBLE_EQ(c->GetMax(), 100.0);
}

TEST(Converter, LinearConverterStepsByTheConvertedIncrement) {
  CTestMap t("<Converter Name='Linear'><FormulaTo>FROM * 4</FormulaTo><FormulaFrom>TO / 4</FormulaFrom>"
             "<pValue>Raw</pValue><IsLinear>Yes</IsLinear></Converter>"
             "<Converter Name='Other'><FormulaTo>FROM * 4</FormulaTo><FormulaFrom>TO / 4</FormulaFrom>"
             "<pValue>Raw</pValue></Converter>"
             "<Integer Name='Raw'><Value>8</Value><Min>0</Min><Max>100</Max><Inc>2</Inc></Integer>");
  CFloatPtr linear(t.Node("Linear"));
  EXPECT_TRUE(linear->HasInc());
  EXPECT_DOUBLE_EQ(linear->GetInc(), 0.5);
  EXPECT_FALSE(CFloatPtr(t.Node("Other"))->HasInc()) << "without IsLinear the step is not constant";
}

TEST(IntConverter, EvaluatesIn64BitIntegers) {
  CTestMap t(
      "<IntConverter Name='C'><FormulaTo>FROM * 0x100000000</FormulaTo><FormulaFrom>TO / 0x100000000"
      "</FormulaFrom><pValue>Raw</pValue></IntConverter><Integer Name='Raw'><Value>0x300000005</Value></Integer>");
  CIntegerPtr c(t.Node("C"));
  EXPECT_EQ(c->GetValue(), 3);
  c->SetValue(7);
  EXPECT_EQ(CIntegerPtr(t.Node("Raw"))->GetValue(), 0x700000000LL);
}

TEST(Float, OverAnIndexedIntegerShowsTheSelectedNodesLimits) {
  CTestMap t("<Integer Name='Binning'><pIndex>Mode</pIndex><pValueIndexed Index='0'>BinA</pValueIndexed>"
             "<pValueIndexed Index='1'>BinB</pValueIndexed><pValueDefault>BinA</pValueDefault></Integer>"
             "<Integer Name='Mode'><Value>0</Value></Integer>"
             "<Integer Name='BinA'><Value>1</Value><Min>1</Min><Max>4</Max><Inc>1</Inc></Integer>"
             "<Integer Name='BinB'><Value>2</Value><Min>2</Min><Max>8</Max><Inc>2</Inc></Integer>"
             "<Float Name='BinningF'><pValue>Binning</pValue></Float>"
             "<Float Name='IndexedF'><pIndex>Mode</pIndex><pValueIndexed Index='0'>BinA</pValueIndexed>"
             "<pValueIndexed Index='1'>BinB</pValueIndexed></Float>");
  CFloatPtr binning(t.Node("BinningF"));
  CFloatPtr indexed(t.Node("IndexedF"));
  for (CFloatPtr f : {binning, indexed}) {
    EXPECT_EQ(f->GetMin(), 1.0);
    EXPECT_EQ(f->GetMax(), 4.0);
    ASSERT_TRUE(f->HasInc());
    EXPECT_EQ(f->GetInc(), 1.0);
  }
  CIntegerPtr(t.Node("Mode"))->SetValue(1);
  for (CFloatPtr f : {binning, indexed}) {
    EXPECT_EQ(f->GetMin(), 2.0);
    EXPECT_EQ(f->GetMax(), 8.0);
    EXPECT_EQ(f->GetInc(), 2.0);
  }
  EXPECT_THROW(binning->SetValue(9.0), GenICam::OutOfRangeException);
}

// Float and FloatReg share one reading of DisplayNotation and Representation: the same text means the same on both,
// and a name the format does not define is refused by both, naming the node and the element.
TEST(Float, DisplayNotationAndRepresentationReadAlikeOnValueAndRegisterNodes) {
  const std::string reg =
      "<FloatReg Name='R'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>%s"
      "</FloatReg>";
  const std::string value = "<Float Name='R'><Value>1.5</Value>%s</Float>";
  for (const std::string& pattern : {reg, value}) {
    auto describe = [&](const std::string& elements) {
      std::string nodes = pattern;
      nodes.replace(nodes.find("%s"), 2, elements);
      return nodes;
    };
    SCOPED_TRACE(pattern);
    CTestMap t(describe("<DisplayNotation>Scientific</DisplayNotation><DisplayPrecision>3</DisplayPrecision>"
                        "<Representation>Logarithmic</Representation>"));
    CFloatPtr f(t.Node("R"));
    EXPECT_EQ(f->GetDisplayNotation(), GenApi::fnScientific);
    EXPECT_EQ(f->GetDisplayPrecision(), 3);
    EXPECT_EQ(f->GetRepresentation(), GenApi::Logarithmic);
    for (const char* bad : {"<DisplayNotation>Engineering</DisplayNotation>", "<Representation>Bar</Representation>"}) {
      const std::string error = ErrorOf([&] {
        GenApi::CNodeMapRef map;
        map._LoadXMLFromString(Describe(describe(bad)));
      });
      EXPECT_NE(error.find("'R'"), std::string::npos) << error;
      EXPECT_NE(error.find(std::string(bad).substr(1, std::string(bad).find('>') - 1)), std::string::npos) << error;
    }
  }
}

}  // namespace

// Integer-valued nodes: IntReg, MaskedIntReg, Integer with its value forms, limits and address arithmetic.
#include <gtest/gtest.h>

#include <limits>

#include "MemoryPort.h"

using namespace EngineTest;
using GenApi::CIntegerPtr;

namespace {

const char* const kReg32BE =
    "<IntReg Name='R'><Address>0x100</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "<Sign>%s</Sign><Endianess>%s</Endianess></IntReg>";

std::string Reg(const char* sign, const char* endianness) {
  char text[512];
  std::snprintf(text, sizeof text, kReg32BE, sign, endianness);
  return text;
}

TEST(IntReg, BigEndianUnsignedReadsTheBytesMostSignificantFirst) {
  CTestMap t(Reg("Unsigned", "BigEndian"));
  t.port.Poke32BE(0x100, 0x80000001u);
  CIntegerPtr r(t.Node("R"));
  ASSERT_TRUE(r.IsValid());
  EXPECT_EQ(r->GetValue(), 0x80000001LL);
  EXPECT_EQ(r->GetMin(), 0);
  EXPECT_EQ(r->GetMax(), 0xFFFFFFFFLL);
}

TEST(IntReg, SignedRegisterSignExtends) {
  CTestMap t(Reg("Signed", "LittleEndian"));
  t.port.Poke32LE(0x100, 0xFFFFFFFEu);
  CIntegerPtr r(t.Node("R"));
  EXPECT_EQ(r->GetValue(), -2);
  EXPECT_EQ(r->GetMin(), -2147483648LL);
  EXPECT_EQ(r->GetMax(), 2147483647LL);
}

TEST(IntReg, WriteEncodesInTheRegistersEndianness) {
  CTestMap t(Reg("Unsigned", "BigEndian"));
  CIntegerPtr r(t.Node("R"));
  r->SetValue(0x01020304);
  EXPECT_EQ(t.port.Peek32BE(0x100), 0x01020304u);
  CTestMap le(Reg("Unsigned", "LittleEndian"));
  CIntegerPtr(le.Node("R"))->SetValue(0x01020304);
  EXPECT_EQ(le.port.Peek32LE(0x100), 0x01020304u);
}

TEST(IntReg, VerifiedWriteOutsideTheRegisterRangeNamesNodeAndValue) {
  CTestMap t(Reg("Unsigned", "BigEndian"));
  CIntegerPtr r(t.Node("R"));
  const std::string error = ErrorOf([&] { r->SetValue(-1); });
  EXPECT_NE(error.find("'R'"), std::string::npos) << error;
  EXPECT_NE(error.find("-1"), std::string::npos) << error;
  EXPECT_THROW(r->SetValue(0x100000000LL), GenICam::OutOfRangeException);
}

TEST(IntReg, EightByteUnsignedMaximumIsInt64Max) {
  CTestMap t("<IntReg Name='R'><Address>0</Address><Length>8</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>");
  CIntegerPtr r(t.Node("R"));
  EXPECT_EQ(r->GetMax(), std::numeric_limits<int64_t>::max());
  const uint8_t bytes[8] = {0, 0, 0, 1, 0, 0, 0, 2};
  t.port.PokeBytes(0, bytes, 8);
  EXPECT_EQ(r->GetValue(), 0x0000000100000002LL);
}

TEST(IntReg, LengthOutsideOneToEightIsAnErrorNotACrash) {
  CTestMap t("<IntReg Name='R'><Address>0</Address><Length>9</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort></IntReg>");
  EXPECT_THROW(CIntegerPtr(t.Node("R"))->GetValue(), GenICam::GenericException);
}

TEST(MaskedIntReg, LittleEndianBitsCountFromTheLeastSignificantBit) {
  CTestMap t("<MaskedIntReg Name='M'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><LSB>4</LSB><MSB>11</MSB><Endianess>LittleEndian</Endianess></MaskedIntReg>");
  t.port.Poke32LE(0, 0x00000AB0u);
  CIntegerPtr m(t.Node("M"));
  EXPECT_EQ(m->GetValue(), 0xAB);
  EXPECT_EQ(m->GetMax(), 255);
  t.port.Poke32LE(0, 0xF000000Fu);
  t.map._InvalidateNodes();
  m->SetValue(0x5A);
  EXPECT_EQ(t.port.Peek32LE(0), 0xF00005AFu) << "the other bits are kept";
}

TEST(MaskedIntReg, BigEndianBitsCountFromTheMostSignificantBit) {
  CTestMap t("<MaskedIntReg Name='M'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><LSB>31</LSB><MSB>24</MSB><Endianess>BigEndian</Endianess></MaskedIntReg>"
             "<MaskedIntReg Name='Top'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><Bit>0</Bit><Endianess>BigEndian</Endianess></MaskedIntReg>");
  t.port.Poke32BE(0, 0x800000C3u);
  EXPECT_EQ(CIntegerPtr(t.Node("M"))->GetValue(), 0xC3);
  EXPECT_EQ(CIntegerPtr(t.Node("Top"))->GetValue(), 1);
  CIntegerPtr(t.Node("Top"))->SetValue(0);
  EXPECT_EQ(t.port.Peek32BE(0), 0x000000C3u);
}

TEST(MaskedIntReg, SignedFieldSignExtends) {
  CTestMap t("<MaskedIntReg Name='M'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><LSB>0</LSB><MSB>3</MSB><Sign>Signed</Sign></MaskedIntReg>");
  t.port.Poke32LE(0, 0xE);
  CIntegerPtr m(t.Node("M"));
  EXPECT_EQ(m->GetValue(), -2);
  EXPECT_EQ(m->GetMin(), -8);
  EXPECT_EQ(m->GetMax(), 7);
}

TEST(Integer, ConstantValueIsWritableMemoryWithStandardDefaults) {
  CTestMap t("<Integer Name='I'><Value>5</Value></Integer>");
  CIntegerPtr i(t.Node("I"));
  EXPECT_EQ(i->GetAccessMode(), GenApi::RW);
  EXPECT_EQ(i->GetValue(), 5);
  EXPECT_EQ(i->GetMin(), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(i->GetMax(), std::numeric_limits<int64_t>::max());
  EXPECT_EQ(i->GetInc(), 1);
  *i = 42;
  EXPECT_EQ(**i, 42);
  EXPECT_EQ(t.port.Writes(), 0);
}

TEST(Integer, VerifiedWritesCheckMinMaxAndIncrement) {
  CTestMap t("<Integer Name='Width'><pValue>R</pValue><Min>16</Min><Max>4096</Max><Inc>16</Inc></Integer>" +
             Reg("Unsigned", "BigEndian"));
  CIntegerPtr w(t.Node("Width"));
  w->SetValue(64);
  EXPECT_EQ(t.port.Peek32BE(0x100), 64u);
  EXPECT_THROW(w->SetValue(8), GenICam::OutOfRangeException);
  EXPECT_THROW(w->SetValue(8192), GenICam::OutOfRangeException);
  const std::string error = ErrorOf([&] { w->SetValue(65); });
  EXPECT_NE(error.find("Width"), std::string::npos) << error;
  EXPECT_NE(error.find("65"), std::string::npos) << error;
  w->SetValue(65, false);  // not verified: reaches the register
  EXPECT_EQ(t.port.Peek32BE(0x100), 65u);
}

TEST(Integer, LimitsFromOtherNodes) {
  CTestMap t("<Integer Name='I'><Value>10</Value><pMin>Lo</pMin><pMax>Hi</pMax><pInc>Step</pInc></Integer>"
             "<Integer Name='Lo'><Value>2</Value></Integer><Integer Name='Hi'><Value>20</Value></Integer>"
             "<Integer Name='Step'><Value>2</Value></Integer>");
  CIntegerPtr i(t.Node("I"));
  EXPECT_EQ(i->GetMin(), 2);
  EXPECT_EQ(i->GetMax(), 20);
  EXPECT_EQ(i->GetInc(), 2);
  CIntegerPtr(t.Node("Hi"))->SetValue(30);
  EXPECT_EQ(i->GetMax(), 30);
  EXPECT_THROW(i->SetValue(5), GenICam::OutOfRangeException);
}

TEST(Integer, WithoutLimitsTakesThoseOfItsTarget) {
  CTestMap t("<Integer Name='I'><pValue>M</pValue></Integer>"
             "<MaskedIntReg Name='M'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort><LSB>0</LSB><MSB>7</MSB></MaskedIntReg>");
  CIntegerPtr i(t.Node("I"));
  EXPECT_EQ(i->GetMin(), 0);
  EXPECT_EQ(i->GetMax(), 255);
}

TEST(Integer, ValueCopiesReceiveEveryWrite) {
  CTestMap t("<Integer Name='I'><pValueCopy>A</pValueCopy><pValueCopy>B</pValueCopy><pValue>C</pValue></Integer>"
             "<Integer Name='A'><Value>0</Value></Integer><Integer Name='B'><Value>0</Value></Integer>"
             "<Integer Name='C'><Value>0</Value></Integer>");
  CIntegerPtr(t.Node("I"))->SetValue(7);
  EXPECT_EQ(CIntegerPtr(t.Node("A"))->GetValue(), 7);
  EXPECT_EQ(CIntegerPtr(t.Node("B"))->GetValue(), 7);
  EXPECT_EQ(CIntegerPtr(t.Node("C"))->GetValue(), 7);
}

TEST(Integer, IndexedValuesFollowTheIndexAndFallBackToTheDefault) {
  CTestMap t("<Integer Name='I'><pIndex>Sel</pIndex><ValueIndexed Index='0'>10</ValueIndexed>"
             "<pValueIndexed Index='1'>Other</pValueIndexed><ValueDefault>99</ValueDefault></Integer>"
             "<Integer Name='Sel'><Value>0</Value></Integer><Integer Name='Other'><Value>55</Value></Integer>");
  CIntegerPtr i(t.Node("I"));
  CIntegerPtr sel(t.Node("Sel"));
  EXPECT_EQ(i->GetValue(), 10);
  sel->SetValue(1);
  EXPECT_EQ(i->GetValue(), 55);
  i->SetValue(56);
  EXPECT_EQ(CIntegerPtr(t.Node("Other"))->GetValue(), 56);
  sel->SetValue(7);
  EXPECT_EQ(i->GetValue(), 99);
}

TEST(Integer, ValidValueSetGivesListIncrement) {
  CTestMap t("<Integer Name='I'><Value>1</Value><ValidValueSet>1;2;4;8</ValidValueSet></Integer>");
  CIntegerPtr i(t.Node("I"));
  EXPECT_EQ(i->GetIncMode(), GenApi::listIncrement);
  EXPECT_EQ(i->GetListOfValidValues(), (GenApi::int64_autovector_t{1, 2, 4, 8}));
  i->SetValue(4);
  EXPECT_THROW(i->SetValue(3), GenICam::OutOfRangeException);
}

TEST(Integer, TextConversion) {
  CTestMap t("<Integer Name='I'><Value>255</Value><Representation>HexNumber</Representation></Integer>"
             "<Integer Name='D'><Value>-3</Value></Integer>");
  EXPECT_EQ(std::string(CIntegerPtr(t.Node("I"))->ToString()), "0xFF");
  EXPECT_EQ(std::string(CIntegerPtr(t.Node("D"))->ToString()), "-3");
  CIntegerPtr(t.Node("D"))->FromString("0x10");
  EXPECT_EQ(CIntegerPtr(t.Node("D"))->GetValue(), 16);
  EXPECT_THROW(CIntegerPtr(t.Node("D"))->FromString("ten"), GenICam::InvalidArgumentException);
}

TEST(Address, AllPartsAreSummed) {
  // 0x1000 + pAddress (0x200) + embedded formula (0x30) + index 2 * offset 8 + index 1 * stride (length 4).
  CTestMap t("<IntReg Name='R'><Address>0x1000</Address><pAddress>Base</pAddress>"
             "<IntSwissKnife Name='Inner'><pVariable Name='B'>Base</pVariable><Formula>B / 0x10 - 0x2 + 0x10</Formula>"
             "</IntSwissKnife><pIndex Offset='8'>Idx</pIndex><pIndex>One</pIndex><Length>4</Length>"
             "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>"
             "<Integer Name='Base'><Value>0x200</Value></Integer><Integer Name='Idx'><Value>2</Value></Integer>"
             "<Integer Name='One'><Value>1</Value></Integer>");
  GenApi::CRegisterPtr r(t.Node("R"));
  ASSERT_TRUE(r.IsValid());
  EXPECT_EQ(r->GetAddress(), 0x1000 + 0x200 + 0x2E + 16 + 4);
  t.port.Poke32LE(0x1000 + 0x200 + 0x2E + 16 + 4, 77);
  EXPECT_EQ(CIntegerPtr(t.Node("R"))->GetValue(), 77);
}

TEST(Address, IndexOffsetFromANode) {
  CTestMap t("<IntReg Name='R'><Address>0</Address><pIndex pOffset='Stride'>Idx</pIndex><Length>4</Length>"
             "<AccessMode>RO</AccessMode><pPort>Device</pPort></IntReg>"
             "<Integer Name='Idx'><Value>3</Value></Integer><Integer Name='Stride'><Value>0x100</Value></Integer>");
  EXPECT_EQ(GenApi::CRegisterPtr(t.Node("R"))->GetAddress(), 0x300);
}

TEST(Address, ChangingAnAddressPartRereadsTheRegister) {
  CTestMap t("<IntReg Name='R'><Address>0</Address><pIndex Offset='4'>Idx</pIndex><Length>4</Length>"
             "<AccessMode>RO</AccessMode><pPort>Device</pPort></IntReg><Integer Name='Idx'><Value>0</Value></Integer>");
  t.port.Poke32LE(0, 11);
  t.port.Poke32LE(4, 22);
  CIntegerPtr r(t.Node("R"));
  EXPECT_EQ(r->GetValue(), 11);
  CIntegerPtr(t.Node("Idx"))->SetValue(1);
  EXPECT_EQ(r->GetValue(), 22);
}

// Binning's value comes from BinA or BinB through the Mode index; it has no limits of its own.
const char* const kIndexedBinning =
    "<Integer Name='Binning'><pIndex>Mode</pIndex><pValueIndexed Index='0'>BinA</pValueIndexed>"
    "<pValueIndexed Index='1'>BinB</pValueIndexed><pValueDefault>BinA</pValueDefault></Integer>"
    "<Integer Name='Mode'><Value>0</Value></Integer>"
    "<Integer Name='BinA'><pValue>BinAReg</pValue><Min>1</Min><Max>4</Max><Inc>1</Inc></Integer>"
    "<Integer Name='BinB'><pValue>BinBReg</pValue><Min>2</Min><Max>8</Max><Inc>2</Inc></Integer>"
    "<IntReg Name='BinAReg'><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort></IntReg>"
    "<IntReg Name='BinBReg'><Address>0x14</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort></IntReg>"
    "<Float Name='BinningF'><pValue>Binning</pValue></Float>";

TEST(Integer, IndexedValueTakesTheLimitsOfTheSelectedNode) {
  CTestMap t(kIndexedBinning);
  CIntegerPtr binning(t.Node("Binning"));
  EXPECT_EQ(binning->GetMin(), 1);
  EXPECT_EQ(binning->GetMax(), 4);
  EXPECT_EQ(binning->GetInc(), 1);
  CIntegerPtr(t.Node("Mode"))->SetValue(1);
  EXPECT_EQ(binning->GetMin(), 2);
  EXPECT_EQ(binning->GetMax(), 8);
  EXPECT_EQ(binning->GetInc(), 2);
  // The advertised range is the accepted range.
  binning->SetValue(8);
  EXPECT_EQ(t.port.Peek32LE(0x14), 8u);
  EXPECT_THROW(binning->SetValue(10), GenICam::OutOfRangeException);
  EXPECT_THROW(binning->SetValue(5), GenICam::OutOfRangeException);
}

TEST(Integer, IndexedValueFallsBackToTheDefaultNodesLimits) {
  CTestMap t(kIndexedBinning);
  CIntegerPtr(t.Node("Mode"))->SetValue(7);
  CIntegerPtr binning(t.Node("Binning"));
  EXPECT_EQ(binning->GetMin(), 1);
  EXPECT_EQ(binning->GetMax(), 4);
}

TEST(Integer, IndexedValueWithoutSelectionKeepsTheWholeRange) {
  CTestMap t("<Integer Name='X'><pIndex>Mode</pIndex><pValueIndexed Index='1'>A</pValueIndexed></Integer>"
             "<Integer Name='Mode'><Value>0</Value></Integer>"
             "<Integer Name='A'><Value>3</Value><Min>2</Min><Max>5</Max></Integer>");
  CIntegerPtr x(t.Node("X"));
  EXPECT_EQ(x->GetMin(), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(x->GetMax(), std::numeric_limits<int64_t>::max());
  CIntegerPtr(t.Node("Mode"))->SetValue(1);
  EXPECT_EQ(x->GetMin(), 2);
  EXPECT_EQ(x->GetMax(), 5);
}

}  // namespace

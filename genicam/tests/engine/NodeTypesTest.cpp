// Enumeration, Boolean, Command, String, StringReg, Register, Category, StructReg and the loader's structure rules.
#include <gtest/gtest.h>

#include "MemoryPort.h"

using namespace EngineTest;
using namespace GenApi;

namespace {

const std::string kEnumeration =
    "<Enumeration Name='Mode'><EnumEntry Name='Off'><Value>0</Value></EnumEntry>"
    "<EnumEntry Name='Once'><Value>1</Value><NumericValue>1.5</NumericValue><IsSelfClearing>Yes</IsSelfClearing>"
    "</EnumEntry><EnumEntry Name='Continuous'><pIsAvailable>ContAvail</pIsAvailable><Value>2</Value></EnumEntry>"
    "<pValue>ModeReg</pValue></Enumeration>"
    "<Integer Name='ContAvail'><Value>1</Value></Integer>"
    "<IntReg Name='ModeReg'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "</IntReg>";

TEST(Enumeration, EntriesSymbolicsAndValues) {
  CTestMap t(kEnumeration);
  CEnumerationPtr mode(t.Node("Mode"));
  ASSERT_TRUE(mode.IsValid());
  NodeList_t entries;
  mode->GetEntries(entries);
  EXPECT_EQ(entries.size(), 3u);
  StringList_t symbolics;
  mode->GetSymbolics(symbolics);
  EXPECT_EQ(symbolics.size(), 3u);
  EXPECT_EQ(std::string(mode->ToString()), "Off");
  *mode = "Continuous";
  EXPECT_EQ(t.port.Peek32LE(0), 2u);
  EXPECT_EQ(mode->GetIntValue(), 2);
  EXPECT_EQ(std::string(mode->GetCurrentEntry()->GetSymbolic()), "Continuous");
  CEnumEntryPtr once(mode->GetEntryByName("Once"));
  ASSERT_TRUE(once.IsValid());
  EXPECT_EQ(once->GetValue(), 1);
  EXPECT_DOUBLE_EQ(once->GetNumericValue(), 1.5);
  EXPECT_TRUE(once->IsSelfClearing());
  EXPECT_EQ(mode->GetEntryByName("Nope"), nullptr);
  EXPECT_EQ(mode->GetEntry(1), static_cast<IEnumEntry*>(once));
  EXPECT_NE(t.Node("EnumEntry_Mode_Once"), nullptr) << "entries are nodes of their own";
}

TEST(Enumeration, UnavailableEntriesAndUnknownValues) {
  CTestMap t(kEnumeration);
  CEnumerationPtr mode(t.Node("Mode"));
  CIntegerPtr(t.Node("ContAvail"))->SetValue(0);
  StringList_t symbolics;
  mode->GetSymbolics(symbolics);
  EXPECT_EQ(symbolics.size(), 2u);
  EXPECT_THROW(mode->FromString("Continuous"), GenICam::AccessException);
  EXPECT_THROW(mode->FromString("Bogus"), GenICam::InvalidArgumentException);
  EXPECT_THROW(mode->SetIntValue(7), GenICam::OutOfRangeException);
  mode->SetIntValue(7, false);
  const std::string error = ErrorOf([&] { mode->ToString(); });
  EXPECT_NE(error.find("Mode"), std::string::npos) << error;
  EXPECT_NE(error.find("7"), std::string::npos) << error;
}

TEST(Enumeration, EntriesSharingAValueResolveToTheLastDefined) {
  CTestMap t("<Enumeration Name='E'><EnumEntry Name='First'><Value>1</Value></EnumEntry>"
             "<EnumEntry Name='Second'><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>");
  EXPECT_EQ(std::string(CEnumerationPtr(t.Node("E"))->ToString()), "Second");
}

TEST(Boolean, OnAndOffValues) {
  CTestMap t("<Boolean Name='B'><pValue>R</pValue><OnValue>5</OnValue><OffValue>3</OffValue></Boolean>"
             "<IntReg Name='R'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort></IntReg>");
  CBooleanPtr b(t.Node("B"));
  t.port.Poke32LE(0, 3);
  EXPECT_FALSE(b->GetValue());
  *b = true;
  EXPECT_EQ(t.port.Peek32LE(0), 5u);
  EXPECT_TRUE(b->GetValue());
  b->FromString("false");
  EXPECT_EQ(t.port.Peek32LE(0), 3u);
  EXPECT_EQ(std::string(b->ToString()), "0");
  t.port.Poke32LE(0, 9);
  t.map._InvalidateNodes();
  EXPECT_THROW(b->GetValue(), GenICam::OutOfRangeException);
}

TEST(Command, ExecuteWritesTheCommandValueAndIsDoneReadsBack) {
  CTestMap t("<Command Name='Start'><pValue>R</pValue><CommandValue>0x55</CommandValue></Command>"
             "<IntReg Name='R'><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort></IntReg>");
  CCommandPtr start(t.Node("Start"));
  start->Execute();
  EXPECT_EQ(t.port.Peek32LE(0x10), 0x55u);
  EXPECT_FALSE(start->IsDone());
  t.port.Poke32LE(0x10, 0);  // the device finished
  EXPECT_TRUE(start->IsDone()) << "IsDone reads past the cache";
}

TEST(String, ConstantAndRegisterStrings) {
  CTestMap t("<String Name='S'><Value>hello</Value></String>"
             "<StringReg Name='SR'><Address>0x20</Address><Length>8</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort></StringReg>"
             "<String Name='Via'><pValue>SR</pValue></String>");
  CStringPtr s(t.Node("S"));
  EXPECT_EQ(std::string(s->GetValue()), "hello");
  *s = "bye";
  EXPECT_EQ(std::string(**s), "bye");
  CStringPtr sr(t.Node("SR"));
  sr->SetValue("abc");
  EXPECT_EQ(std::string(sr->GetValue(false, true)), "abc");
  EXPECT_EQ(sr->GetMaxLength(), 8);
  EXPECT_THROW(sr->SetValue("123456789"), GenICam::OutOfRangeException);
  EXPECT_EQ(std::string(CStringPtr(t.Node("Via"))->GetValue()), "abc");
  EXPECT_EQ(CStringPtr(t.Node("Via"))->GetMaxLength(), 8);
}

TEST(String, LengthFromANode) {
  CTestMap t("<StringReg Name='SR'><Address>0</Address><pLength>Len</pLength><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort></StringReg><Integer Name='Len'><Value>3</Value></Integer>");
  t.port.PokeBytes(0, "abcdef", 6);
  EXPECT_EQ(std::string(CStringPtr(t.Node("SR"))->GetValue()), "abc");
}

TEST(Register, RawBytes) {
  CTestMap t("<Register Name='Raw'><Address>0x40</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort></Register>");
  CRegisterPtr raw(t.Node("Raw"));
  EXPECT_EQ(raw->GetPrincipalInterfaceType(), intfIRegister);
  const uint8_t bytes[4] = {1, 2, 3, 4};
  raw->Set(bytes, 4);
  uint8_t back[4] = {};
  raw->Get(back, 4, false, true);
  EXPECT_EQ(0, std::memcmp(bytes, back, 4));
  EXPECT_EQ(raw->GetAddress(), 0x40);
  EXPECT_EQ(raw->GetLength(), 4);
  EXPECT_EQ(std::string(raw->ToString()), "0x01020304");
  uint8_t tooMany[5] = {};
  EXPECT_THROW(raw->Get(tooMany, 5), GenICam::OutOfRangeException);
}

TEST(Category, FeaturesAndFeatureMarks) {
  CTestMap t("<Category Name='Root'><pFeature>Sub</pFeature></Category>"
             "<Category Name='Sub'><pFeature>A</pFeature></Category>"
             "<Integer Name='A'><Value>1</Value></Integer><Integer Name='Loose'><Value>1</Value></Integer>");
  CCategoryPtr root(t.Node("Root"));
  FeatureList_t features;
  root->GetFeatures(features);
  ASSERT_EQ(features.size(), 1u);
  EXPECT_EQ(std::string(features[0]->GetNode()->GetName()), "Sub");
  EXPECT_TRUE(t.Node("A")->IsFeature());
  EXPECT_FALSE(t.Node("Loose")->IsFeature());
  EXPECT_EQ(root->GetPrincipalInterfaceType(), intfICategory);
}

TEST(StructReg, EntriesShareOneRegister) {
  CTestMap t("<StructReg Comment='Flags'><Address>0x80</Address><Length>4</Length><pPort>Device</pPort>"
             "<Endianess>LittleEndian</Endianess>"
             "<StructEntry Name='Low'><AccessMode>RW</AccessMode><LSB>0</LSB><MSB>7</MSB></StructEntry>"
             "<StructEntry Name='High'><AccessMode>RW</AccessMode><LSB>8</LSB><MSB>15</MSB></StructEntry>"
             "</StructReg>");
  CIntegerPtr low(t.Node("Low"));
  CIntegerPtr high(t.Node("High"));
  EXPECT_EQ(high->GetValue(), 0);
  low->SetValue(0x12);
  high->SetValue(0x34);
  EXPECT_EQ(t.port.Peek32LE(0x80), 0x3412u);
  EXPECT_EQ(low->GetValue(), 0x12) << "a sibling's write invalidates the cached register";
}

TEST(Loader, GroupsAreFlattenedAndUnknownElementsSkipped) {
  CTestMap t("<Group Comment='outer'><Group Comment='inner'><Integer Name='Deep'><Value>1</Value>"
             "<Extension><Anything><Integer Name='NotANode'/></Anything></Extension><FutureElement>x</FutureElement>"
             "</Integer></Group></Group><FutureNode Name='F'/>"
             "<ConfRom Name='Rom'/><TextDesc Name='Text'/><IntKey Name='Key'/><AdvFeatureLock Name='Lock'/>"
             "<SmartFeature Name='Smart'/>");
  EXPECT_NE(t.Node("Deep"), nullptr);
  EXPECT_EQ(t.Node("NotANode"), nullptr);
  EXPECT_EQ(t.Node("F"), nullptr);
  EXPECT_NE(t.Node("Rom"), nullptr);
  EXPECT_NE(t.Node("Smart"), nullptr);
}

TEST(Loader, NodePropertiesAndDocumentAttributes) {
  CTestMap t("<Integer Name='I' NameSpace='Standard'><ToolTip>tip</ToolTip><Description>desc</Description>"
             "<DisplayName>Eye</DisplayName><Visibility>Guru</Visibility><EventID>9001</EventID>"
             "<IsDeprecated>Yes</IsDeprecated><PollingTime>100</PollingTime><Value>1</Value></Integer>");
  INode* node = t.Node("I");
  EXPECT_EQ(std::string(node->GetToolTip()), "tip");
  EXPECT_EQ(std::string(node->GetDescription()), "desc");
  EXPECT_EQ(std::string(node->GetDisplayName()), "Eye");
  EXPECT_EQ(node->GetVisibility(), Guru);
  EXPECT_EQ(node->GetNameSpace(), Standard);
  EXPECT_EQ(std::string(node->GetEventID()), "9001");
  EXPECT_TRUE(node->IsDeprecated());
  EXPECT_EQ(node->GetPollingTime(), 100);
  EXPECT_EQ(std::string(node->GetName(true)), "Device::I");
  EXPECT_EQ(node->GetNodeMap(), t.map._Ptr);
  INodeMap* map = t.map._Ptr;
  EXPECT_EQ(std::string(map->GetModelName()), "TestModel");
  EXPECT_EQ(std::string(map->GetVendorName()), "TestVendor");
  EXPECT_EQ(map->GetStandardNameSpace(), GEV);
  int64_t major = 0, minor = 0, subMinor = 0;
  map->GetDeviceVersion(major, minor, subMinor);
  EXPECT_EQ(major * 100 + minor * 10 + subMinor, 234);
}

}  // namespace

// The measuring tools themselves: the seeded register space, the dump format and options, the ZIP scan, the
// comparison and its deviation rules, and both dump programs end to end on a small description.
#include "DescriptionScan.h"
#include "DifferentialRun.h"
#include "DumpComparison.h"
#include "FeatureDump.h"
#include "InspectNodeMap.h"
#include "SparseRegisterSpace.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>

using namespace TALVIR::Tools;

namespace {
const std::string kBin = TALVIR_BIN_DIR;

const char* const kSmallDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Small" VendorName="Talvir" StandardNameSpace="None" SchemaMajorVersion="1"
    SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="00000000-0000-0000-0000-000000000000" VersionGuid="00000000-0000-0000-0000-000000000001">
  <Integer Name="Width">
    <pValue>WidthReg</pValue>
    <Min>0</Min>
    <Max>65535</Max>
    <Inc>1</Inc>
  </Integer>
  <IntReg Name="WidthReg">
    <Address>0x1000</Address>
    <Length>2</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Group Comment="inner">
    <Boolean Name="Enable">
      <Value>1</Value>
    </Boolean>
  </Group>
  <Port Name="Device"/>
</RegisterDescription>
)";

std::string WriteTemporary(const std::string& name, const std::string& bytes) {
  const std::string path = testing::TempDir() + "/" + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

bool RunCommand(const std::string& command, std::string& output) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char buffer[4096];
  size_t got = 0;
  while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, got);
  return pclose(pipe) == 0;
}

// The 2-byte big-endian value the seeded space holds at an address.
int64_t SeededBigEndian16(uint64_t seed, uint64_t address) {
  CSparseRegisterSpace space(seed);
  return (space.SeededByte(address) << 8) | space.SeededByte(address + 1);
}

// A one-file archive: local header and data, then the central directory and its end record. With `descriptor`, the
// local header carries no sizes (flag 8) and a data descriptor follows the data, as streaming writers do.
std::string StoredZip(const std::string& name, const std::string& content, uint16_t method, const std::string& data,
                      bool descriptor = false) {
  auto le16 = [](uint16_t v) { return std::string{char(v & 0xFF), char(v >> 8)}; };
  auto le32 = [](uint32_t v) {
    return std::string{char(v & 0xFF), char((v >> 8) & 0xFF), char((v >> 16) & 0xFF), char(v >> 24)};
  };
  const uint32_t crc = static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
  const std::string sizes = le32(crc) + le32(static_cast<uint32_t>(data.size())) +
                            le32(static_cast<uint32_t>(content.size()));
  const uint16_t flags = descriptor ? 8 : 0;
  const std::string head = le16(20) + le16(flags) + le16(method) + le16(0) + le16(0);
  const std::string tail = le16(static_cast<uint16_t>(name.size())) + le16(0);
  const std::string local = std::string("PK\x03\x04", 4) + head + (descriptor ? std::string(12, '\0') : sizes) + tail +
                            name + data + (descriptor ? std::string("PK\x07\x08", 4) + sizes : "");
  const std::string central = std::string("PK\x01\x02", 4) + le16(20) + head + sizes + tail + le16(0) + le16(0) +
                              le16(0) + le32(0) + le32(0) + name;
  const std::string end = std::string("PK\x05\x06", 4) + le16(0) + le16(0) + le16(1) + le16(1) +
                          le32(static_cast<uint32_t>(central.size())) + le32(static_cast<uint32_t>(local.size())) +
                          le16(0);
  return local + central + end;
}

std::string RawDeflate(const std::string& content) {
  z_stream stream{};
  deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(compressBound(content.size()) + 64, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}
}  // namespace

TEST(SparseRegisterSpace, SplitMixMatchesTheReferenceSequence) {
  // The first two outputs of SplitMix64 started from state 0 (states 0x9E37.. and 2 * 0x9E37..).
  EXPECT_EQ(SplitMix64(0), 0xE220A8397B1DCDAFULL);
  EXPECT_EQ(SplitMix64(0x9E3779B97F4A7C15ULL), 0x6E789E6AA1B965F4ULL);
}

TEST(SparseRegisterSpace, UnwrittenBytesComeFromAddressAndSeed) {
  CSparseRegisterSpace zero(0);
  CSparseRegisterSpace seven(7);
  uint8_t bytes[3] = {};
  ASSERT_TRUE(zero.Read(bytes, 0x1234, 3));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(bytes[i], static_cast<uint8_t>(SplitMix64(0x1234 + i) & 0xFF));
  EXPECT_EQ(seven.SeededByte(0x1234), static_cast<uint8_t>(SplitMix64(0x1234 ^ (7ULL << 40)) & 0xFF));
  int differing = 0;
  for (uint64_t a = 0; a < 64; ++a) differing += zero.SeededByte(a) != seven.SeededByte(a);
  EXPECT_GT(differing, 50);
}

TEST(SparseRegisterSpace, WritesPersistAndWrapAroundTheAddressSpace) {
  CSparseRegisterSpace space(3);
  const uint8_t written[4] = {1, 2, 3, 4};
  ASSERT_TRUE(space.Write(written, UINT64_MAX - 1, 4));
  uint8_t read[4] = {};
  ASSERT_TRUE(space.Read(read, UINT64_MAX - 1, 4));
  EXPECT_EQ(0, std::memcmp(read, written, 4));
  ASSERT_TRUE(space.Read(read, 0, 2));
  EXPECT_EQ(read[0], 3);
  EXPECT_EQ(read[1], 4);
  EXPECT_EQ(space.WrittenBytes(), 4u);
}

TEST(SparseRegisterSpace, RefusesAccessesLongerThanAnyRealRegister) {
  CSparseRegisterSpace space;
  std::vector<uint8_t> big(CSparseRegisterSpace::kMaxAccessLength + 1);
  EXPECT_FALSE(space.Read(big.data(), 0, big.size()));
  EXPECT_FALSE(space.Write(big.data(), 0, big.size()));
  EXPECT_EQ(space.ReadCount(), 0u);
  EXPECT_TRUE(space.Read(big.data(), 0, big.size() - 1));
}

TEST(MemoryPort, ReadsTheSpaceAndRaisesOnOverlongAccess) {
  CSparseRegisterSpace space(5);
  CMemoryPort port(space);
  uint8_t byte = 0;
  port.Read(&byte, 0x40, 1);
  EXPECT_EQ(byte, space.SeededByte(0x40));
  const uint8_t value = 0xAB;
  port.Write(&value, 0x40, 1);
  port.Read(&byte, 0x40, 1);
  EXPECT_EQ(byte, 0xAB);
  EXPECT_THROW(port.Read(&byte, 0, -1), GenICam::GenericException);
  std::vector<uint8_t> big(CSparseRegisterSpace::kMaxAccessLength + 1);
  EXPECT_THROW(port.Read(big.data(), 0, static_cast<int64_t>(big.size())), GenICam::GenericException);
  EXPECT_EQ(port.GetAccessMode(), GenApi::RW);
}

TEST(FeatureDump, PrintsSortedLinesWithFixedKeyOrder) {
  CFeatureDump dump;
  dump.Add("Zeta", "Integer")["value"] = 1;
  auto& alpha = dump.Add("Alpha", "Float");
  alpha["value"] = FloatToJson(std::numeric_limits<double>::infinity());
  CFeatureDump::NoteError(alpha, "first");
  CFeatureDump::NoteError(alpha, "second");
  std::ostringstream out;
  dump.Print(out);
  EXPECT_EQ(out.str(), "{\"name\":\"Alpha\",\"type\":\"Float\",\"value\":\"inf\",\"error\":\"first\"}\n"
                       "{\"name\":\"Zeta\",\"type\":\"Integer\",\"value\":1}\n");
  EXPECT_EQ(FloatToJson(std::nan("")), "nan");
  const uint8_t bytes[] = {0x00, 0x0F, 0xA0, 0xFF};
  EXPECT_EQ(BytesToHex(bytes, 4), "000fa0ff");
}

TEST(FeatureDump, ValueKindFollowsTheElement) {
  EXPECT_EQ(ValueKindOfElement("MaskedIntReg"), EValueKind::Integer);
  EXPECT_EQ(ValueKindOfElement("StructEntry"), EValueKind::Integer);
  EXPECT_EQ(ValueKindOfElement("Converter"), EValueKind::Float);
  EXPECT_EQ(ValueKindOfElement("StringReg"), EValueKind::String);
  EXPECT_EQ(ValueKindOfElement("Category"), EValueKind::None);
  EXPECT_EQ(ValueKindOfElement("EnumEntry"), EValueKind::None);
  EXPECT_EQ(ValueKindOfElement("Port"), EValueKind::None);
}

TEST(DumpOptions, ParsesEveryOptionAndRejectsBadOnes) {
  auto parse = [](std::vector<std::string> words, SDumpOptions& options) {
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(w.data());
    return ParseDumpOptions(static_cast<int>(argv.size()), argv.data(), options);
  };
  SDumpOptions options;
  EXPECT_EQ(parse({"x", "f.xml", "--seed", "0x10", "--set", "A=B=C", "--read", "A", "--read", "B"}, options), "");
  EXPECT_EQ(options.file, "f.xml");
  EXPECT_EQ(options.seed, 16u);
  ASSERT_EQ(options.sets.size(), 1u);
  EXPECT_EQ(options.sets[0].first, "A");
  EXPECT_EQ(options.sets[0].second, "B=C");
  EXPECT_EQ(options.reads, (std::vector<std::string>{"A", "B"}));

  SDumpOptions bad;
  EXPECT_NE(parse({"x"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "--seed", "12abc"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "--seed", "-"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "--set", "=3"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "--set", "NoEquals"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "--read"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "g.xml"}, bad), "");
  EXPECT_NE(parse({"x", "f.xml", "--frobnicate"}, bad), "");
}

TEST(DescriptionScan, FindsValueElementsInGroupsAndStructRegs) {
  const auto elements = ScanValueElements(R"(<RegisterDescription>
        <Integer Name="A"/><Category Name="Root"/><Group><Group><Float Name="B"/></Group></Group>
        <StructReg><StructEntry Name="C"/><Address>1</Address><IntSwissKnife Name="Part"/></StructReg>
        <IntReg Name="D"><IntSwissKnife Name="Embedded"/></IntReg><Extension><Integer Name="Hidden"/></Extension>
      </RegisterDescription>)");
  EXPECT_EQ(elements, (std::map<std::string, std::string>{
                          {"A", "Integer"}, {"B", "Float"}, {"C", "StructEntry"}, {"D", "IntReg"}}));
  EXPECT_THROW(ScanValueElements("<RegisterDescription><Integer"), std::runtime_error);
}

TEST(DescriptionScan, ReadsTheFirstFileOfStoredAndDeflatedArchives) {
  const std::string xml = "<RegisterDescription/>";
  EXPECT_EQ(FirstFileOfZip(StoredZip("a.xml", xml, 0, xml)), xml);
  EXPECT_EQ(FirstFileOfZip(StoredZip("a.xml", xml, 8, RawDeflate(xml))), xml);
  EXPECT_EQ(FirstFileOfZip(StoredZip("a.xml", xml, 8, RawDeflate(xml), true)), xml);
  EXPECT_EQ(FirstFileOfZip(StoredZip("a.xml", xml, 0, xml, true)), xml);
  EXPECT_THROW(FirstFileOfZip("PK\x03\x04short"), std::runtime_error);
  EXPECT_THROW(FirstFileOfZip(StoredZip("a.xml", xml, 8, "garbage!")), std::runtime_error);
  EXPECT_THROW(FirstFileOfZip(StoredZip("a.xml", xml, 12, xml)), std::runtime_error);
  std::string truncated = StoredZip("a.xml", xml, 0, xml);
  truncated.resize(30 + 5 + xml.size() - 3);  // the entry's data is cut short
  EXPECT_THROW(FirstFileOfZip(truncated), std::runtime_error);
  EXPECT_FALSE(LooksLikeZip(xml));
}

TEST(DescriptionFacts, FollowsReferencesToFormulasAndPortsWithoutLoopingOnCycles) {
  const CDescriptionFacts facts(R"(<RegisterDescription>
        <Integer Name="A"><pValue>K</pValue><Inc>2</Inc></Integer>
        <IntSwissKnife Name="K"><pVariable Name="X">B</pVariable><Formula>X == 1</Formula></IntSwissKnife>
        <Integer Name="B"><pValue>A</pValue></Integer>
        <Integer Name="Plain"><pValue>R</pValue></Integer>
        <IntReg Name="R"><pPort>Device</pPort></IntReg>
        <Integer Name="Chunked"><pValue>CR</pValue></Integer>
        <StructReg><pPort>ChunkPort</pPort><StructEntry Name="CR"><Bit>1</Bit></StructEntry></StructReg>
        <Port Name="Device"/><Port Name="ChunkPort"><ChunkID>12</ChunkID></Port>
      </RegisterDescription>)");
  EXPECT_TRUE(facts.DependsOnCLikeOperators("A"));
  EXPECT_TRUE(facts.DependsOnCLikeOperators("B"));
  EXPECT_FALSE(facts.DependsOnCLikeOperators("Plain"));
  EXPECT_FALSE(facts.DependsOnEventOrChunkPort("Plain"));
  EXPECT_TRUE(facts.DependsOnEventOrChunkPort("Chunked"));
  EXPECT_TRUE(facts.HasElement("A", "Inc"));
  EXPECT_FALSE(facts.HasElement("A", "Min"));
  EXPECT_TRUE(facts.HasElement("CR", "pPort"));
  EXPECT_TRUE(facts.HasElement("CR", "Bit"));
}

TEST(DumpComparison, EqualDumpsAgreeAndAnyOtherDifferenceIsReported) {
  const CDescriptionFacts facts(
      "<RegisterDescription><Integer Name=\"A\"><Inc>1</Inc></Integer></RegisterDescription>");
  const auto ours = ParseDump(
      R"({"name":"A","type":"Integer","implemented":true,"available":true,"access":"RW","value":5,"min":0,"max":9,"inc":1}
{"name":"F","type":"Float","implemented":true,"available":true,"access":"RO","value":0.30000000000000004})");
  auto theirs = ParseDump(
      R"({"name":"A","type":"Integer","implemented":true,"available":true,"access":"RW","value":5,"min":0,"max":9,"inc":1}
{"name":"F","type":"Float","implemented":true,"available":true,"access":"RO","value":0.3})");
  SComparison same = CompareDumps(ours, theirs, facts);
  EXPECT_EQ(same.features, 2u);
  EXPECT_EQ(same.agreeing, 2u);
  EXPECT_TRUE(same.disagreements.empty());

  theirs["A"]["value"] = 6;
  theirs["F"]["access"] = "RW";
  SComparison different = CompareDumps(ours, theirs, facts);
  EXPECT_EQ(different.agreeing, 0u);
  ASSERT_EQ(different.disagreements.size(), 2u);
  EXPECT_NE(different.disagreements[0].find("A (Integer).value: ours 5, theirs 6"), std::string::npos);

  theirs.erase("F");
  EXPECT_EQ(CompareDumps(ours, theirs, facts).disagreements.back(), "F: only in ours");
}

TEST(DumpComparison, DocumentedDeviationsExcludeOnlyTheirOwnShapeOfDifference) {
  const CDescriptionFacts facts(R"(<RegisterDescription>
        <Integer Name="NoInc"><Value>1</Value></Integer><Integer Name="WithInc"><Value>1</Value><Inc>2</Inc></Integer>
        <Float Name="F"><Value>1</Value></Float><Enumeration Name="E"/>
        <IntSwissKnife Name="K"><Formula>1 != 2</Formula></IntSwissKnife></RegisterDescription>)");
  const auto ours =
      ParseDump(R"({"name":"NoInc","type":"Integer","implemented":true,"available":true,"access":"RO","value":1,"inc":1}
{"name":"WithInc","type":"Integer","implemented":true,"available":true,"access":"RO","value":1,"inc":1}
{"name":"F","type":"Float","implemented":true,"available":true,"access":"RO","value":1}
{"name":"E","type":"Enumeration","implemented":true,"available":true,"access":"RO","error":"no entry"}
{"name":"K","type":"IntSwissKnife","implemented":true,"available":true,"access":"RO","value":1})");
  const auto theirs = ParseDump(
      R"({"name":"NoInc","type":"Integer","implemented":true,"available":true,"access":"RO","value":1,"field_errors":{"inc":"[NoInc] <Inc> node not found"}}
{"name":"WithInc","type":"Integer","implemented":true,"available":true,"access":"RO","value":1,"field_errors":{"inc":"[WithInc] <Inc> node not found"}}
{"name":"F","type":"Float","implemented":true,"available":true,"access":"RO","value":1,"inc":2.2250738585072014e-308}
{"name":"E","type":"Enumeration","implemented":true,"available":true,"access":"RO","value":""}
{"name":"K","type":"IntSwissKnife","implemented":true,"available":true,"access":"RO","error":"syntax"})");
  const SComparison c = CompareDumps(ours, theirs, facts);
  EXPECT_EQ(c.deviating, 4u);
  EXPECT_EQ(c.deviationsByKind.at("MissingMinMaxIncDefault"), 1u);
  EXPECT_EQ(c.deviationsByKind.at("FloatIncrementWithoutInc"), 1u);
  EXPECT_EQ(c.deviationsByKind.at("EnumerationWithoutMatchingEntry"), 1u);
  EXPECT_EQ(c.deviationsByKind.at("CLikeFormulaOperators"), 1u);
  // WithInc declares its Inc, so a missing one on their side is a real disagreement.
  ASSERT_EQ(c.disagreements.size(), 1u);
  EXPECT_EQ(c.disagreements[0].rfind("WithInc", 0), 0u);
}

TEST(DumpComparison, IntegerOverflowOfTheComparisonEngineIsExcludedOnlyForLargeIntegerInputs) {
  const CDescriptionFacts facts(R"(<RegisterDescription>
        <IntReg Name="R"/><IntReg Name="S"/>
        <SwissKnife Name="K"><pVariable Name="A">R</pVariable><pVariable Name="B">S</pVariable><Formula>A*B/1000</Formula></SwissKnife>
        <Float Name="F"><pValue>K</pValue></Float></RegisterDescription>)");
  auto dumps = [](int64_t input) {
    const std::string r = std::to_string(input);
    return std::make_pair(ParseDump(R"({"name":"R","type":"IntReg","access":"RO","value":)" + r + R"(}
{"name":"S","type":"IntReg","access":"RO","value":5}
{"name":"K","type":"SwissKnife","access":"RO","value":1.5e16}
{"name":"F","type":"Float","access":"RO","value":1.5e16})"),
                          ParseDump(R"({"name":"R","type":"IntReg","access":"RO","value":)" + r + R"(}
{"name":"S","type":"IntReg","access":"RO","value":5}
{"name":"K","type":"SwissKnife","access":"RO","value":-2.9e15}
{"name":"F","type":"Float","access":"RO","value":-2.9e15})"));
  };
  const auto [oursLarge, theirsLarge] = dumps(4000000000);
  const SComparison large = CompareDumps(oursLarge, theirsLarge, facts);
  EXPECT_TRUE(large.disagreements.empty());
  EXPECT_EQ(large.deviationsByKind.at("IntegerArithmeticInFloatFormula"), 2u);
  const auto [oursSmall, theirsSmall] = dumps(1000);
  EXPECT_EQ(CompareDumps(oursSmall, theirsSmall, facts).disagreements.size(), 2u);
}

TEST(DumpComparison, PicksOnlyWritableIntegersBothEnginesShowAlike) {
  const auto ours = ParseDump(R"({"name":"A","type":"Integer","access":"RW","value":5,"min":0,"max":9,"inc":1}
{"name":"AtMin","type":"IntReg","access":"RW","value":0,"min":0,"max":9,"inc":1}
{"name":"ReadOnly","type":"IntReg","access":"RO","value":5,"min":0,"max":9,"inc":1}
{"name":"Differs","type":"IntReg","access":"RW","value":5,"min":0,"max":9,"inc":1}
{"name":"Float","type":"Float","access":"RW","value":5,"min":0,"max":9,"inc":1}
{"name":"M","type":"MaskedIntReg","access":"RW","value":3,"min":-2,"max":3,"inc":1})");
  auto theirs = ours;
  theirs["Differs"]["max"] = 8;
  const Assignments picked = PickWrites(ours, theirs, 10);
  EXPECT_EQ(picked, (Assignments{{"A", "0"}, {"M", "-2"}}));
  EXPECT_EQ(PickWrites(ours, theirs, 1).size(), 1u);
  EXPECT_TRUE(PickWrites(ours, theirs, 0).empty());
}

TEST(DumpPrograms, BothEnginesDumpTheSameSmallDescription) {
  const std::string path = WriteTemporary("small.xml", kSmallDescription);
  std::string ours;
  std::string theirs;
  ASSERT_TRUE(RunCommand("'" + kBin + "/genicam-inspect' '" + path + "' --seed 9", ours)) << ours;
  ASSERT_TRUE(
      RunCommand("ASAN_OPTIONS=detect_leaks=0 '" + kBin + "/genicam-aravis-dump' '" + path + "' --seed 9", theirs));
  const std::string width = std::to_string(SeededBigEndian16(9, 0x1000));
  EXPECT_EQ(ours,
            "{\"name\":\"Enable\",\"type\":\"Boolean\",\"implemented\":true,\"available\":true,\"access\":\"RW\","
            "\"value\":true}\n"
            "{\"name\":\"Width\",\"type\":\"Integer\",\"implemented\":true,\"available\":true,\"access\":\"RW\","
            "\"value\":" +
                width +
                ",\"min\":0,\"max\":65535,\"inc\":1}\n"
                "{\"name\":\"WidthReg\",\"type\":\"IntReg\",\"implemented\":true,\"available\":true,\"access\":\"RW\","
                "\"value\":" +
                width + ",\"min\":0,\"max\":65535,\"inc\":1}\n");
  const SComparison c = CompareDumps(ParseDump(ours), ParseDump(theirs), CDescriptionFacts(kSmallDescription));
  EXPECT_EQ(c.agreeing, 3u) << theirs;
}

TEST(DumpPrograms, InspectAppliesSetsBeforeTheDumpAndReadsOnlyWhatIsAsked) {
  const std::string path = WriteTemporary("small-set.xml", kSmallDescription);
  std::string out;
  ASSERT_TRUE(RunCommand(
      "'" + kBin + "/genicam-inspect' '" + path + "' --set Width=1234 --read Width --read Missing --read Device", out));
  EXPECT_EQ(out, "{\"name\":\"Device\",\"type\":\"\",\"error\":\"the node has no value to show\"}\n"
                 "{\"name\":\"Missing\",\"type\":\"\",\"error\":\"no such feature\"}\n"
                 "{\"name\":\"Width\",\"type\":\"Integer\",\"implemented\":true,\"available\":true,\"access\":\"RW\","
                 "\"value\":1234,\"min\":0,\"max\":65535,\"inc\":1}\n");
  std::string rejected;
  EXPECT_FALSE(
      RunCommand("'" + kBin + "/genicam-inspect' '" + path + "' --set Width=70000 --read Width 2>&1", rejected));
  EXPECT_NE(rejected.find("--set Width=70000"), std::string::npos) << rejected;
}

TEST(DumpPrograms, InspectReadsZippedDescriptions) {
  const std::string xml = kSmallDescription;
  for (const bool descriptor : {false, true}) {
    const std::string path = WriteTemporary(descriptor ? "small-streamed.zip" : "small.zip",
                                            StoredZip("small.xml", xml, 8, RawDeflate(xml), descriptor));
    std::string out;
    ASSERT_TRUE(RunCommand("'" + kBin + "/genicam-inspect' '" + path + "' --read Width", out)) << out;
    EXPECT_NE(out.find("\"name\":\"Width\",\"type\":\"Integer\""), std::string::npos) << out;
    EXPECT_NE(out.find("\"value\":" + std::to_string(SeededBigEndian16(0, 0x1000))), std::string::npos) << out;
  }
}

TEST(DumpPrograms, BadInputGivesAMessageAndAFailingStatus) {
  const std::string broken = WriteTemporary("broken.xml", "<RegisterDescription><Integer Name=\"A\">");
  std::string out;
  EXPECT_FALSE(RunCommand("'" + kBin + "/genicam-inspect' '" + broken + "' 2>&1", out));
  EXPECT_NE(out.find("genicam-inspect: "), std::string::npos);
  out.clear();
  EXPECT_FALSE(RunCommand("'" + kBin + "/genicam-inspect' /nonexistent/file.xml 2>&1", out));
  EXPECT_NE(out.find("cannot read"), std::string::npos);
  out.clear();
  EXPECT_FALSE(RunCommand("'" + kBin + "/genicam-inspect' 2>&1", out));
  EXPECT_NE(out.find("usage:"), std::string::npos);
}

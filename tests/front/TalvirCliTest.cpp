// talvir-cli's table and its discover command, run in-process against the library and producers in build/bin.
#include "DeviceTable.h"
#include "DiscoverCommand.h"
#include "DiscoveryReportPrinter.h"

#include <talvir/CustomInfo.h>
#include <talvir/TLType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace TalvirCli {
namespace {

class CInfo final : public TALVIR::ICameraInfo {
public:
  CInfo(uint32_t tlType, uint32_t access, std::string serial, const char* producer)
      : m_tlType(tlType), m_access(access), m_serial(std::move(serial)), m_producer(producer) {}
  uint32_t GetTLType() const override { return m_tlType; }
  uint32_t GetAccessStatus() const override { return m_access; }
  const char* GetDeviceID() const override { return "id"; }
  const char* GetSerialNumber() const override { return m_serial.c_str(); }
  const char* GetVendor() const override { return "V"; }
  const char* GetModel() const override { return "Model"; }
  const char* GetDisplayName() const override { return ""; }
  const char* GetUserDefinedName() const override { return ""; }
  const char* GetVersion() const override { return ""; }
  uint64_t GetTimestampFrequency() const override { return 0; }
  const char* GetCustomInfo(uint32_t item) const override {
    return item == TALVIR::CustomInfo::ProducerFile ? m_producer : nullptr;
  }
  void Destroy() override {}

private:
  uint32_t m_tlType;
  uint32_t m_access;
  std::string m_serial;
  const char* m_producer;
};

TEST(TalvirCli, NamesTransportTypes) {
  EXPECT_EQ(TLTypeText(TALVIR::TLType::GEV), "GEV");
  EXPECT_EQ(TLTypeText(TALVIR::TLType::CLHS), "CLHS");
  EXPECT_EQ(TLTypeText(TALVIR::TLType::CLSerialOnly), "CL-serial");
  EXPECT_EQ(TLTypeText(0), "-");
  EXPECT_EQ(TLTypeText(3), "0x3");
}

TEST(TalvirCli, PrintsAnAlignedTable) {
  CInfo first(TALVIR::TLType::U3V, 1, "SERIAL-LONG", "U3VTLTAV.cti");
  CInfo second(0, 9, "S", nullptr);
  std::ostringstream out;
  PrintDeviceTable(out, {&first, &second});
  const std::string expected = "VENDOR  MODEL  SERIAL       TL   ACCESS      DEVICE ID  PRODUCER\n"
                               "V       Model  SERIAL-LONG  U3V  ReadWrite   id         U3VTLTAV.cti\n"
                               "V       Model  S            -    Unknown(9)  id         \n";
  EXPECT_EQ(out.str(), expected);
}

TEST(TalvirCli, RefusesBadArguments) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--type", "GEV"},
                                                    {"--type", "-1"},
                                                    {"--type"},
                                                    {"--bogus"},
                                                    {"--type", "1", "--producer", "x.cti"}}) {
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(RunDiscover(arguments, out, errors), 2);
    EXPECT_TRUE(out.str().empty());
    EXPECT_EQ(errors.str().rfind("talvir-cli: ", 0), 0u) << errors.str();
  }
}

TEST(TalvirCli, ListsTheDevicesOfOneProducer) {
  std::ostringstream out;
  std::ostringstream errors;
  EXPECT_EQ(RunDiscover({"--producer", "TalvirSimCXP.cti"}, out, errors), 0);
  EXPECT_NE(out.str().find("CXP00001"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("CXP00002"), std::string::npos);
  EXPECT_NE(out.str().find("TalvirSimCXP.cti"), std::string::npos);
  EXPECT_NE(out.str().find("\n2 devices\n"), std::string::npos);
}

TEST(TalvirCli, SelectsProducersByType) {
  std::ostringstream out;
  std::ostringstream errors;
  EXPECT_EQ(RunDiscover({"--type", "0x2"}, out, errors), 0);
  EXPECT_NE(out.str().find("U3V00001"), std::string::npos) << out.str();
  EXPECT_EQ(out.str().find("GEV00001"), std::string::npos);
  std::ostringstream none;
  EXPECT_EQ(RunDiscover({"--type", "512"}, none, errors), 0);
  EXPECT_NE(none.str().find("\n0 devices\n"), std::string::npos) << none.str();
}

using ::testing::HasSubstr;
using ::testing::Not;

TEST(TalvirCli, VerboseExplainsAProducerThatDoesNotLoad) {
  std::ostringstream out;
  std::ostringstream errors;
  // The named producer fails: exit 1 with the one-line reason, and the report says why in full.
  EXPECT_EQ(RunDiscover({"--producer", "TalvirSimNoQueue.cti", "--verbose"}, out, errors), 1);
  EXPECT_THAT(errors.str(), HasSubstr("producer TalvirSimNoQueue.cti failed"));
  EXPECT_THAT(out.str(), HasSubstr("\n0 devices\n"));
  EXPECT_THAT(out.str(), HasSubstr("request: Discovery(\"TalvirSimNoQueue.cti\")"));
  EXPECT_THAT(out.str(), HasSubstr("Producer TalvirSimNoQueue.cti"));
  EXPECT_THAT(out.str(), HasSubstr("NOT LOADED: the required GenTL function DSQueueBuffer is missing"));
  EXPECT_THAT(out.str(), HasSubstr("- not loaded: the file does not export the required GenTL function DSQueueBuffer"));
  // The close of the half-bound producer is refused: the one failed GenTL call.
  EXPECT_THAT(out.str(), HasSubstr("Failed GenTL calls\n  GenTL call failed: TalvirSimNoQueue.cti: GCCloseLib"));
}

TEST(TalvirCli, VerboseListsInterfacesWithTheirDeviceCounts) {
  std::ostringstream out;
  std::ostringstream errors;
  EXPECT_EQ(RunDiscover({"--verbose", "--producer", "TalvirSimCXP.cti"}, out, errors), 0);
  EXPECT_THAT(out.str(), HasSubstr("\n2 devices\n"));
  EXPECT_THAT(out.str(), HasSubstr("  loaded, transport-layer type CXP\n"));
  EXPECT_THAT(out.str(), HasSubstr("  enumeration succeeded, 2 devices listed\n"));
  EXPECT_THAT(out.str(), HasSubstr("  interface TalvirSimCXP-IF0: 2 devices, 2 listed\n"));
  EXPECT_THAT(out.str(), Not(HasSubstr("Failed GenTL calls")));
  std::ostringstream quiet;
  EXPECT_EQ(RunDiscover({"--producer", "TalvirSimCXP.cti"}, quiet, errors), 0);
  EXPECT_THAT(quiet.str(), Not(HasSubstr("Discovery report")));
}

TEST(TalvirCli, PrintsEveryPartOfAReport) {
  TALVIR::DiscoveryReport report;
  report.initialised = true;
  report.request = "DiscoveryByTLType(0x1)";
  report.directory = "/opt/talvir/";
  report.configurationPath = "/opt/talvir//DiscoveryCfg.ini";
  report.configurationRead = true;
  report.searchGenTLPath = true;
  report.genTLPathFolders = {"/opt/vendor/cti"};
  TALVIR::ProducerReport broken;
  broken.name = "Vendor.cti";
  broken.path = "/opt/vendor/cti/Vendor.cti";
  broken.origin = "GENICAM_GENTL64_PATH";
  broken.state = TALVIR::ProducerState::OpenFailed;
  broken.openStatus = -1;
  broken.openStatusText = TALVIR::OpenStatusText(-1);
  broken.errorCode = -1010;
  broken.lastErrorText = "licence missing";
  TALVIR::ProducerReport gige;
  gige.name = "GigE.cti";
  gige.path = "/opt/talvir/GigE.cti";
  gige.origin = "DiscoveryCfg.ini";
  gige.state = TALVIR::ProducerState::Loaded;
  gige.tlType = TALVIR::TLType::GEV;
  gige.selected = true;
  gige.enumerated = true;
  gige.interfaces.push_back({"nic0", true, 1, 0});
  gige.interfaces.push_back({"nic1", true, 0, 0});
  TALVIR::DiscoveryNote note;
  note.rule = TALVIR::DiscoveryRule::EmptyInterface;
  note.interfaceID = "nic1";
  note.text = "no device on this interface";
  gige.notes.push_back(note);
  report.producers = {broken, gige};
  std::ostringstream out;
  PrintDiscoveryReport(out, report, {"GenTL call failed: Vendor.cti: GCInitLib"});
  const std::string text = out.str();
  EXPECT_THAT(text, HasSubstr("  configuration: /opt/talvir//DiscoveryCfg.ini (read)\n"));
  EXPECT_THAT(text, HasSubstr("  SkipEmptyInterfaces off, SearchGenTLPath on\n"));
  EXPECT_THAT(text, HasSubstr("  GENICAM_GENTL64_PATH folder: /opt/vendor/cti\n"));
  EXPECT_THAT(text, HasSubstr("Producer Vendor.cti (GENICAM_GENTL64_PATH)\n  file: /opt/vendor/cti/Vendor.cti\n"));
  EXPECT_THAT(text, HasSubstr("  NOT LOADED: open status -1, GCInitLib failed"));
  EXPECT_THAT(text, HasSubstr("    the call returned -1010 (GC_ERR_IO)\n    the producer says: licence missing\n"));
  EXPECT_THAT(text, HasSubstr("  enumeration FAILED, 0 devices listed\n"));
  EXPECT_THAT(text, HasSubstr("  interface nic1: 0 devices, 0 listed\n"));
  EXPECT_THAT(text, HasSubstr("  - empty interface [interface nic1]: no device on this interface\n"));
  EXPECT_THAT(text, HasSubstr("Failed GenTL calls\n  GenTL call failed: Vendor.cti: GCInitLib\n"));
  std::ostringstream notInitialised;
  PrintDiscoveryReport(notInitialised, TALVIR::DiscoveryReport(), {});
  EXPECT_THAT(notInitialised.str(), HasSubstr("the library is not initialised"));
}

TEST(TalvirCli, NamesEveryRule) {
  for (int32_t rule = 1; rule <= 12; ++rule) {
    EXPECT_STRNE(DiscoveryRuleName(static_cast<TALVIR::DiscoveryRule>(rule)), "rule") << rule;
  }
}

}  // namespace
}  // namespace TalvirCli

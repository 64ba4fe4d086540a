// The library against the simulated producer configured to behave like other makers' producers: a command 1001
// that means something else, two network cards of which one has no camera, producers that fail to open; and the
// discovery report and diagnostic callback that explain what happened.
#include "LibraryUnderTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>

namespace TALVIR {
namespace {

using Testing::CLibraryUnderTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::vector<std::string> SerialsAndGiveBack(std::list<ICameraInfo*> records) {
  std::vector<std::string> serials;
  for (ICameraInfo* record : records) {
    serials.emplace_back(record->GetSerialNumber());
    record->Destroy();
  }
  return serials;
}

bool HasRule(const ProducerReport& producer, DiscoveryRule rule) {
  return std::any_of(producer.notes.begin(), producer.notes.end(),
                     [rule](const DiscoveryNote& note) { return note.rule == rule; });
}

// The simulated GigE producer with two interfaces: one camera behind the first, none behind the second.
constexpr const char* kTwoNetworkCards =
    R"({"interfaces": [{"id": "nic0", "devices": [{}]}, {"id": "nic1", "devices": []}]})";

class ThirdPartyProducerTest : public ::testing::Test {
protected:
  CLibraryUnderTest m_library;
};

TEST_F(ThirdPartyProducerTest, A1001AnswerOfEightPointerBytesLeavesTheStandardFields) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti");
  // Both devices answer 1001 with a pointer, as another maker's GigE producer does.
  m_library.WriteFile("TalvirSimGEVTL.cti.json", R"({"interfaces": [{"devices": [
      {"customInfo": {"1001": {"type": "PTR", "value": 140737488355328}}},
      {"customInfo": {"1001": {"type": "PTR", "value": 1}}}]}]})");
  m_library.Load();
  m_library.Init();
  for (int round = 0; round < 2; ++round) {
    std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
    ASSERT_EQ(records.size(), 2u);
    const ICameraInfo& mono = *records.front();
    EXPECT_STREQ(mono.GetVendor(), "Talvir");
    EXPECT_STREQ(mono.GetModel(), "SimMono");
    EXPECT_STREQ(mono.GetSerialNumber(), "GEV00001");
    EXPECT_STREQ(mono.GetDeviceID(), "SimMono-GEV00001");
    EXPECT_STREQ(mono.GetUserDefinedName(), "mono");
    EXPECT_EQ(mono.GetAccessStatus(), 1u);
    for (uint32_t item = 1; item <= 7; ++item) {
      EXPECT_EQ(mono.GetCustomInfo(item), nullptr) << item;
    }
    EXPECT_STREQ(records.back()->GetDeviceID(), "SimColor-GEV00002");
    SerialsAndGiveBack(std::move(records));
  }
  const DiscoveryReport report = m_library.GetDiscoveryReport();
  ASSERT_EQ(report.producers.size(), 1u);
  EXPECT_TRUE(HasRule(report.producers[0], DiscoveryRule::GigERecordIgnored));
}

TEST_F(ThirdPartyProducerTest, TheSimulatorsOwnRecordIsStillUsed) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_STREQ(records.front()->GetCustomInfo(1), "192.168.77.11");
  EXPECT_STREQ(records.front()->GetCustomInfo(2), "02:54:56:00:00:0B");
  SerialsAndGiveBack(std::move(records));
}

TEST_F(ThirdPartyProducerTest, TwoNetworkCardsByDefaultListNothingAndTheReportSaysWhy) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti");
  m_library.WriteFile("TalvirSimGEVTL.cti.json", kTwoNetworkCards);
  m_library.Load();
  m_library.Init();
  EXPECT_TRUE(SerialsAndGiveBack(m_library.Discovery(nullptr)).empty());
  const DiscoveryReport report = m_library.GetDiscoveryReport();
  ASSERT_EQ(report.producers.size(), 1u);
  const ProducerReport& producer = report.producers[0];
  EXPECT_EQ(producer.state, ProducerState::Loaded);
  ASSERT_EQ(producer.interfaces.size(), 2u);
  EXPECT_EQ(producer.interfaces[0].id, "nic0");
  EXPECT_EQ(producer.interfaces[0].deviceCount, 1u);
  EXPECT_EQ(producer.interfaces[1].id, "nic1");
  EXPECT_EQ(producer.interfaces[1].deviceCount, 0u);
  EXPECT_TRUE(HasRule(producer, DiscoveryRule::EmptyInterface));
  EXPECT_FALSE(producer.enumerationSucceeded);
}

TEST_F(ThirdPartyProducerTest, TwoNetworkCardsWithTheOptInListTheCamera) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti");
  m_library.WriteFile("TalvirSimGEVTL.cti.json", kTwoNetworkCards);
  m_library.WriteFile("DiscoveryCfg.ini", "[User]\nSkipEmptyInterfaces=1\n");
  m_library.Load();
  m_library.Init();
  EXPECT_THAT(SerialsAndGiveBack(m_library.Discovery(nullptr)), ElementsAre("GEV00001"));
  EXPECT_THAT(SerialsAndGiveBack(m_library.DiscoveryByTLType(TLType::GEV)), ElementsAre("GEV00001"));
  const DiscoveryReport report = m_library.GetDiscoveryReport();
  EXPECT_TRUE(report.skipEmptyInterfaces);
  ASSERT_EQ(report.producers.size(), 1u);
  EXPECT_TRUE(HasRule(report.producers[0], DiscoveryRule::EmptyInterfaceSkipped));
  EXPECT_EQ(report.producers[0].devicesListed, 1u);
}

// Collects the diagnostic lines the library hands out.
class CLines {
public:
  static void Receive(const GenTLCallFailure& failure, void* context) {
    auto* self = static_cast<CLines*>(context);
    std::lock_guard<std::mutex> lock(self->m_mutex);
    self->m_functions.emplace_back(failure.function);
    self->m_lines.emplace_back(failure.line);
  }
  std::vector<std::string> Lines() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
  }
  std::vector<std::string> Functions() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_functions;
  }

private:
  std::mutex m_mutex;
  std::vector<std::string> m_lines;
  std::vector<std::string> m_functions;
};

TEST_F(ThirdPartyProducerTest, ProducersThatFailToOpenAreExplainedInTheReportAndTheCallback) {
  m_library.CopyFromBin("TalvirSim.cti", "InitFails.cti");
  m_library.CopyFromBin("TalvirSimCL.cti", "OpenFailsCL.cti");
  m_library.CopyFromBin("TalvirSimNoQueue.cti");
  m_library.CopyFromBin("U3VTLTAV.cti");
  m_library.WriteFile("InitFails.cti.json", R"({"failInitLib": true})");
  m_library.WriteFile("OpenFailsCL.cti.json", R"({"failTLOpen": true})");
  m_library.WriteConfig("InitFails.cti;OpenFailsCL.cti;TalvirSimNoQueue.cti;U3VTLTAV.cti;Absent.cti");
  m_library.Load();
  CLines lines;
  m_library.SetDiagnosticCallback(&CLines::Receive, &lines);
  m_library.Init();
  EXPECT_EQ(SerialsAndGiveBack(m_library.Discovery(nullptr)).size(), 2u);
  m_library.SetDiagnosticCallback(nullptr, nullptr);

  const DiscoveryReport report = m_library.GetDiscoveryReport();
  EXPECT_TRUE(report.initialised);
  EXPECT_TRUE(report.configurationRead);
  ASSERT_EQ(report.producers.size(), 5u);
  const ProducerReport& initFails = report.producers[0];
  EXPECT_EQ(initFails.state, ProducerState::OpenFailed);
  EXPECT_EQ(initFails.openStatus, -1);
  EXPECT_EQ(initFails.errorCode, -1010);
  EXPECT_EQ(initFails.lastErrorText, "GCInitLib fails on purpose (failInitLib in the configuration)");
  const ProducerReport& openFails = report.producers[1];
  EXPECT_EQ(openFails.openStatus, -2);
  EXPECT_THAT(openFails.openStatusText, HasSubstr("TLOpen"));
  EXPECT_EQ(openFails.lastErrorText, "TLOpen fails on purpose (failTLOpen in the configuration)");
  EXPECT_EQ(report.producers[2].state, ProducerState::FunctionMissing);
  EXPECT_EQ(report.producers[2].missingFunction, "DSQueueBuffer");
  EXPECT_EQ(report.producers[3].state, ProducerState::Loaded);
  EXPECT_EQ(report.producers[3].devicesListed, 2u);
  EXPECT_EQ(report.producers[4].state, ProducerState::FileNotLoadable);
  EXPECT_THAT(report.producers[4].loaderError, HasSubstr("Absent.cti"));

  // One line per failed call, in the order made: the failed initialisation and the close that every unloaded
  // producer gets (refused, as the library was never initialised), the failed TLOpen (its close succeeds), and the
  // close of the producer whose binding stopped before GCInitLib.
  EXPECT_THAT(lines.Functions(), ElementsAre("GCInitLib", "GCCloseLib", "TLOpen", "GCCloseLib"));
  const std::vector<std::string> text = lines.Lines();
  ASSERT_EQ(text.size(), 4u);
  EXPECT_THAT(text[0], HasSubstr("InitFails.cti: GCInitLib on library returned -1010 (GC_ERR_IO): "
                                 "GCInitLib fails on purpose"));
  EXPECT_THAT(text[1], HasSubstr("InitFails.cti: GCCloseLib on library returned -1002 (GC_ERR_NOT_INITIALIZED)"));
  EXPECT_THAT(text[2], HasSubstr("OpenFailsCL.cti: TLOpen on system returned -1010 (GC_ERR_IO): TLOpen fails"));
  EXPECT_THAT(text[3], HasSubstr("TalvirSimNoQueue.cti: GCCloseLib"));
}

TEST_F(ThirdPartyProducerTest, TheCallbackIsOffByDefaultAndTheReportIsEmptyBeforeInit) {
  m_library.CopyFromBin("TalvirSim.cti", "InitFails.cti");
  m_library.WriteFile("InitFails.cti.json", R"({"failInitLib": true})");
  m_library.Load();
  EXPECT_FALSE(m_library.GetDiscoveryReport().initialised);
  CLines lines;
  m_library.SetDiagnosticCallback(&CLines::Receive, &lines);
  m_library.SetDiagnosticCallback(nullptr, nullptr);
  m_library.Init();
  EXPECT_TRUE(m_library.Discovery(nullptr).empty());
  EXPECT_TRUE(lines.Lines().empty());
  const DiscoveryReport report = m_library.GetDiscoveryReport();
  ASSERT_EQ(report.producers.size(), 1u);
  EXPECT_EQ(report.producers[0].origin, "library folder");
  EXPECT_EQ(report.producers[0].state, ProducerState::OpenFailed);
  m_library.UnInit();
  EXPECT_FALSE(m_library.GetDiscoveryReport().initialised);
}

}  // namespace
}  // namespace TALVIR

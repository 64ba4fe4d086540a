// The discovery report built from the manager's records: per producer the file, how far loading got, the
// interfaces with their device counts, and the rules that kept devices out.
#include "front/DiscoveryReport.h"

#include "front/CtiManager.h"
#include "front/Discovery.h"
#include "gentl/DiagnosticSink.h"
#include "gentl/GenTLErrorText.h"

#include "FakeProducerFolder.h"

#include <talvir/ICameraInfo.h>
#include <talvir/TLType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <set>

namespace TALVIR {
namespace {

using Testing::CFakeProducerFolder;
using Testing::CFakeProducerModule;
using Testing::EFakeFailure;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

void GiveBack(std::list<ICameraInfo*> records) {
  for (ICameraInfo* record : records) {
    record->Destroy();
  }
}

std::vector<DiscoveryRule> Rules(const ProducerReport& producer) {
  std::vector<DiscoveryRule> rules;
  for (const DiscoveryNote& note : producer.notes) {
    rules.push_back(note.rule);
  }
  return rules;
}

const ProducerReport& Find(const DiscoveryReport& report, const std::string& name) {
  const auto found = std::find_if(report.producers.begin(), report.producers.end(),
                                  [&name](const ProducerReport& producer) { return producer.name == name; });
  if (found == report.producers.end()) {
    throw std::runtime_error("no producer " + name + " in the report");
  }
  return *found;
}

class DiscoveryReportTest : public ::testing::Test {
protected:
  CFakeProducerModule m_fake;
  CFakeProducerModule m_noInfo{"TalvirFakeNoInfo.cti"};
  CFakeProducerFolder m_folder;
};

TEST_F(DiscoveryReportTest, BeforeTheFirstDiscoveryTheProducersAreListedUntried) {
  m_folder.LinkProducer("Good.cti");
  m_folder.WriteConfig("[User]\nCtiNames=Good.cti;Other.cti\n");
  CCtiManager manager(m_folder.Directory());
  const DiscoveryReport report = BuildDiscoveryReport(manager);
  EXPECT_TRUE(report.initialised);
  EXPECT_FALSE(report.discoveryRan);
  EXPECT_EQ(report.directory, m_folder.Directory());
  EXPECT_TRUE(report.configurationRead);
  EXPECT_EQ(report.configurationPath, m_folder.Directory() + Testing::kPathSeparator + "DiscoveryCfg.ini");
  EXPECT_FALSE(report.skipEmptyInterfaces);
  EXPECT_FALSE(report.searchGenTLPath);
  ASSERT_EQ(report.producers.size(), 2u);
  for (const ProducerReport& producer : report.producers) {
    EXPECT_EQ(producer.state, ProducerState::NotTried);
    EXPECT_FALSE(producer.selected);
    EXPECT_EQ(producer.origin, "DiscoveryCfg.ini");
    EXPECT_TRUE(producer.notes.empty());
  }
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 0u) << "the report loads nothing";
}

TEST_F(DiscoveryReportTest, EachProducerSaysHowFarItGot) {
  m_noInfo.State().interfaces.push_back(MakeFakeInterface("nic0", "U3V", {MakeFakeDevice("d0", "SN0")}));
  m_noInfo.State().interfaces.push_back(MakeFakeInterface("nic1", "U3V", {MakeFakeDevice("d1", "SN1")}));
  m_folder.LinkProducer("Good.cti", "TalvirFakeNoInfo.cti");
  m_folder.LinkProducer("NoQueue.cti", "TalvirFakeNoQueue.cti");
  m_folder.WriteFile("Corrupt.cti", "not a library");
  m_folder.WriteConfig("[User]\nCtiNames=Good.cti;NoQueue.cti;Corrupt.cti;Missing.cti\n");
  CCtiManager manager(m_folder.Directory());
  GiveBack(DiscoverByName(manager, nullptr));
  const DiscoveryReport report = BuildDiscoveryReport(manager);
  EXPECT_TRUE(report.discoveryRan);
  EXPECT_EQ(report.request, "Discovery(every producer)");
  ASSERT_EQ(report.producers.size(), 4u);

  const ProducerReport& good = report.producers[0];
  EXPECT_EQ(good.name, "Good.cti");
  EXPECT_EQ(good.path, m_folder.Directory() + "Good.cti");
  EXPECT_EQ(good.state, ProducerState::Loaded);
  EXPECT_EQ(good.tlType, TLType::U3V);
  EXPECT_TRUE(good.selected);
  EXPECT_TRUE(good.enumerated);
  EXPECT_TRUE(good.enumerationSucceeded);
  EXPECT_EQ(good.devicesListed, 2u);
  ASSERT_EQ(good.interfaces.size(), 2u);
  EXPECT_EQ(good.interfaces[0].id, "nic0");
  EXPECT_EQ(good.interfaces[0].deviceCount, 1u);
  EXPECT_EQ(good.interfaces[1].id, "nic1");
  EXPECT_EQ(good.interfaces[1].devicesListed, 1u);

  const ProducerReport& noQueue = report.producers[1];
  EXPECT_EQ(noQueue.state, ProducerState::FunctionMissing);
  EXPECT_EQ(noQueue.missingFunction, "DSQueueBuffer");
  EXPECT_FALSE(noQueue.selected);
  EXPECT_THAT(Rules(noQueue), ElementsAre(DiscoveryRule::NotLoaded));
  EXPECT_THAT(noQueue.notes[0].text, HasSubstr("DSQueueBuffer"));

  for (const ProducerReport* unloadable : {&report.producers[2], &report.producers[3]}) {
    EXPECT_EQ(unloadable->state, ProducerState::FileNotLoadable) << unloadable->name;
    EXPECT_FALSE(unloadable->loaderError.empty()) << unloadable->name;
    EXPECT_THAT(Rules(*unloadable), ElementsAre(DiscoveryRule::NotLoaded));
  }
}

TEST_F(DiscoveryReportTest, AProducerThatFailsAtEachOpenStepSaysWhichWithItsOwnText) {
  m_fake.State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  m_fake.State().lastErrorText = "no licence for this adapter";
  m_folder.LinkProducer("Broken.cti");
  const std::pair<EFakeFailure, int32_t> cases[] = {
      {EFakeFailure::InitLib, -1},          {EFakeFailure::TLOpen, -2},         {EFakeFailure::UpdateInterfaceList, -3},
      {EFakeFailure::GetNumInterfaces, -4}, {EFakeFailure::GetInterfaceID, -6}, {EFakeFailure::OpenInterface, -7},
  };
  for (const auto& [failure, status] : cases) {
    m_fake.State().failure = failure;
    CCtiManager manager(m_folder.Directory());
    EXPECT_TRUE(DiscoverByName(manager, "Broken.cti").empty());
    const DiscoveryReport report = BuildDiscoveryReport(manager);
    EXPECT_EQ(report.request, "Discovery(\"Broken.cti\")");
    const ProducerReport& broken = Find(report, "Broken.cti");
    EXPECT_EQ(broken.state, ProducerState::OpenFailed) << status;
    EXPECT_EQ(broken.openStatus, status);
    EXPECT_EQ(broken.openStatusText, OpenProducerStatusText(status));
    EXPECT_NE(broken.errorCode, 0);
    EXPECT_EQ(broken.lastErrorText, "no licence for this adapter");
    ASSERT_THAT(Rules(broken), ElementsAre(DiscoveryRule::NotLoaded)) << status;
    EXPECT_THAT(broken.notes[0].text, HasSubstr("open status " + std::to_string(status)));
    EXPECT_THAT(broken.notes[0].text, HasSubstr("the producer says: no licence for this adapter"));
    EXPECT_THAT(broken.notes[0].text, HasSubstr(GenTLErrorCodeName(broken.errorCode)));
    // The name is remembered as failed: a later report still knows why.
    EXPECT_TRUE(DiscoverByName(manager, "Broken.cti").empty());
    EXPECT_EQ(Find(BuildDiscoveryReport(manager), "Broken.cti").openStatus, status);
  }
  m_fake.State().failure = EFakeFailure::None;
  m_fake.State().interfaces.clear();
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(DiscoverByName(manager, "Broken.cti").empty());
  const DiscoveryReport noInterfaceReport = BuildDiscoveryReport(manager);
  const ProducerReport& noInterface = Find(noInterfaceReport, "Broken.cti");
  EXPECT_EQ(noInterface.openStatus, OpenProducerStatus::NoInterface);
  EXPECT_EQ(noInterface.errorCode, 0);
}

TEST_F(DiscoveryReportTest, AnEmptyInterfaceIsNamedAsTheReasonNothingIsListed) {
  m_fake.State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  m_fake.State().interfaces.push_back(MakeFakeInterface("nic1", "GEV", {}));
  m_folder.LinkProducer("Gige.cti");
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(DiscoverByName(manager, nullptr).empty());
  const DiscoveryReport producerReport = BuildDiscoveryReport(manager);
  const ProducerReport& producer = Find(producerReport, "Gige.cti");
  EXPECT_EQ(producer.origin, "library folder");
  EXPECT_TRUE(producer.enumerated);
  EXPECT_FALSE(producer.enumerationSucceeded);
  EXPECT_EQ(producer.devicesListed, 0u);
  EXPECT_THAT(Rules(producer), ElementsAre(DiscoveryRule::EmptyInterface, DiscoveryRule::EnumerationFailed));
  EXPECT_EQ(producer.notes[0].interfaceID, "nic1");
}

TEST_F(DiscoveryReportTest, AProducerOutsideTheTypeMaskIsNamedAsNotSelected) {
  m_fake.State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  m_noInfo.State().interfaces.push_back(MakeFakeInterface("usb0", "Custom", {MakeFakeDevice("u0", "SN-U")}));
  m_folder.LinkProducer("Gige.cti");
  m_folder.LinkProducer("Odd.cti", "TalvirFakeNoInfo.cti");
  m_folder.WriteConfig("[User]\nCtiNames=Gige.cti;Odd.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(DiscoverByTLType(manager, TLType::U3V).empty());
  const DiscoveryReport report = BuildDiscoveryReport(manager);
  EXPECT_EQ(report.request, "DiscoveryByTLType(0x2)");
  const ProducerReport& gige = Find(report, "Gige.cti");
  EXPECT_EQ(gige.state, ProducerState::Loaded);
  EXPECT_FALSE(gige.selected);
  EXPECT_FALSE(gige.enumerated);
  EXPECT_THAT(Rules(gige), ElementsAre(DiscoveryRule::NotSelectedByType));
  EXPECT_THAT(gige.notes[0].text, HasSubstr("0x1 is outside the mask 0x2"));
  ASSERT_EQ(gige.interfaces.size(), 1u);
  EXPECT_EQ(gige.interfaces[0].id, "nic0");
  EXPECT_FALSE(gige.interfaces[0].counted);
  const ProducerReport& odd = Find(report, "Odd.cti");
  EXPECT_EQ(odd.tlType, 0u);
  EXPECT_THAT(Rules(odd), ElementsAre(DiscoveryRule::ProducerTypeUnknown, DiscoveryRule::NotSelectedByType));
  // A mask of every type takes both.
  GiveBack(DiscoverByTLType(manager, TLType::AllProducers));
  const DiscoveryReport all = BuildDiscoveryReport(manager);
  EXPECT_TRUE(Find(all, "Gige.cti").selected);
  EXPECT_TRUE(Find(all, "Odd.cti").enumerated);
  EXPECT_EQ(Find(all, "Odd.cti").devicesListed, 1u);
}

TEST_F(DiscoveryReportTest, TheSwitchesAndTheSearchedFoldersAreReported) {
  m_folder.WriteConfig("[User]\nSkipEmptyInterfaces=1\n");
  CCtiManager manager(m_folder.Directory());
  const DiscoveryReport report = BuildDiscoveryReport(manager);
  EXPECT_TRUE(report.skipEmptyInterfaces);
  EXPECT_FALSE(report.searchGenTLPath);
  EXPECT_TRUE(report.genTLPathFolders.empty());
}

// Counts the failures each producer reported, from whichever thread.
struct CFailureCounter {
  std::mutex mutex;
  std::multiset<std::string> producers;

  static void Receive(const GenTLCallFailure& failure, void* context) {
    auto* self = static_cast<CFailureCounter*>(context);
    std::lock_guard<std::mutex> lock(self->mutex);
    self->producers.insert(failure.producer);
  }
};

TEST_F(DiscoveryReportTest, TheCallbackReceivesFailuresFromEveryDiscoveryThread) {
  // Each producer's device information command 1 (vendor) fails for every device; the producers are enumerated on
  // threads of their own.
  for (CFakeProducerModule* fake : {&m_fake, &m_noInfo}) {
    std::vector<Testing::CFakeDevice> devices;
    for (int index = 0; index < 20; ++index) {
      Testing::CFakeDevice device = MakeFakeDevice("d" + std::to_string(index), "SN" + std::to_string(index));
      device.failingCommands = {GenTL::DEVICE_INFO_VENDOR};
      devices.push_back(device);
    }
    fake->State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", devices));
  }
  m_folder.LinkProducer("A.cti");
  m_folder.LinkProducer("B.cti", "TalvirFakeNoInfo.cti");
  CCtiManager manager(m_folder.Directory());
  CFailureCounter counter;
  CDiagnosticSink::Set(&CFailureCounter::Receive, &counter);
  std::list<ICameraInfo*> records = DiscoverByName(manager, nullptr);
  CDiagnosticSink::Set(nullptr, nullptr);
  EXPECT_EQ(records.size(), 40u);
  GiveBack(std::move(records));
  EXPECT_EQ(counter.producers.count("A.cti"), 20u);
  EXPECT_EQ(counter.producers.count("B.cti"), 20u);
  const DiscoveryReport report = BuildDiscoveryReport(manager);
  for (const char* name : {"A.cti", "B.cti"}) {
    const std::vector<DiscoveryRule> rules = Rules(Find(report, name));
    EXPECT_EQ(std::count(rules.begin(), rules.end(), DiscoveryRule::InfoQueryFailed), 20) << name;
  }
}

}  // namespace
}  // namespace TALVIR

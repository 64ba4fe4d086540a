// What a producer records for the discovery report (load steps, interfaces, rules that hid devices), the opt-in
// skipping of empty interfaces, and the diagnostic callback for failed GenTL calls.
#include "gentl/Cti.h"

#include "gentl/CameraInfo.h"
#include "gentl/DiagnosticSink.h"
#include "gentl/GenTLErrorText.h"

#include "FakeProducerModule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace TALVIR {
namespace {

using Testing::CFakeProducerModule;
using Testing::EFakeFailure;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

CCtiEnvironment FakeEnvironment(bool skipEmptyInterfaces = false) {
  CCtiEnvironment environment;
  environment.directory = CFakeProducerModule::Directory();
  environment.skipEmptyInterfaces = skipEmptyInterfaces;
  return environment;
}

std::vector<std::string> Serials(std::list<ICameraInfo*>& records) {
  std::vector<std::string> serials;
  for (ICameraInfo* record : records) {
    serials.emplace_back(record->GetSerialNumber());
    record->Destroy();
  }
  records.clear();
  return serials;
}

std::vector<DiscoveryRule> Rules(const CEnumerationReport& report) {
  std::vector<DiscoveryRule> rules;
  for (const DiscoveryNote& note : report.notes) {
    rules.push_back(note.rule);
  }
  return rules;
}

// Collects the lines of the diagnostic callback while it lives.
class CCollectedFailures {
public:
  CCollectedFailures() { CDiagnosticSink::Set(&CCollectedFailures::Receive, this); }
  ~CCollectedFailures() { CDiagnosticSink::Set(nullptr, nullptr); }
  CCollectedFailures(const CCollectedFailures&) = delete;
  CCollectedFailures& operator=(const CCollectedFailures&) = delete;

  struct CEntry {
    std::string producer;
    std::string function;
    std::string handleKind;
    const void* handle;
    int32_t code;
    std::string errorName;
    std::string lastError;
    std::string line;
  };

  std::vector<CEntry> Entries() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries;
  }

private:
  static void Receive(const GenTLCallFailure& failure, void* context) {
    auto* self = static_cast<CCollectedFailures*>(context);
    std::lock_guard<std::mutex> lock(self->m_mutex);
    self->m_entries.push_back({failure.producer, failure.function, failure.handleKind, failure.handle,
                               failure.errorCode, failure.errorName, failure.lastErrorText, failure.line});
  }

  std::mutex m_mutex;
  std::vector<CEntry> m_entries;
};

class CtiDiagnosticsTest : public ::testing::Test {
protected:
  CFakeProducerModule m_fake;
  Testing::CFakeProducerState& State() { return m_fake.State(); }

  void InterfacesWithAnEmptyOneBetween() {
    State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
    State().interfaces.push_back(MakeFakeInterface("nic1", "GEV", {}));
    State().interfaces.push_back(MakeFakeInterface("nic2", "GEV", {MakeFakeDevice("d2", "SN2")}));
  }
};

TEST_F(CtiDiagnosticsTest, ByDefaultAnEmptyInterfaceFailsTheWholeProducerAndSaysSo) {
  InterfacesWithAnEmptyOneBetween();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_TRUE(records.empty());
  const CEnumerationReport report = cti.LastEnumeration();
  EXPECT_TRUE(report.ran);
  EXPECT_FALSE(report.succeeded);
  EXPECT_EQ(report.devicesListed, 0u);
  ASSERT_EQ(report.interfaces.size(), 3u);
  EXPECT_EQ(report.interfaces[0].id, "nic0");
  EXPECT_TRUE(report.interfaces[0].counted);
  EXPECT_EQ(report.interfaces[0].deviceCount, 1u);
  EXPECT_EQ(report.interfaces[1].id, "nic1");
  EXPECT_TRUE(report.interfaces[1].counted);
  EXPECT_EQ(report.interfaces[1].deviceCount, 0u);
  EXPECT_FALSE(report.interfaces[2].counted) << "the enumeration stops at the empty interface";
  EXPECT_THAT(Rules(report), ElementsAre(DiscoveryRule::EmptyInterface, DiscoveryRule::EnumerationFailed));
  EXPECT_EQ(report.notes[0].interfaceID, "nic1");
  EXPECT_THAT(report.notes[0].text, HasSubstr("SkipEmptyInterfaces"));
}

TEST_F(CtiDiagnosticsTest, WithTheOptInEmptyInterfacesAreSkipped) {
  InterfacesWithAnEmptyOneBetween();
  CCti cti("TalvirFake.cti", FakeEnvironment(true));
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_THAT(Serials(records), ElementsAre("SN0", "SN2"));
  const CEnumerationReport report = cti.LastEnumeration();
  EXPECT_TRUE(report.succeeded);
  EXPECT_EQ(report.devicesListed, 2u);
  ASSERT_EQ(report.interfaces.size(), 3u);
  EXPECT_EQ(report.interfaces[0].devicesListed, 1u);
  EXPECT_EQ(report.interfaces[1].devicesListed, 0u);
  EXPECT_EQ(report.interfaces[2].devicesListed, 1u);
  EXPECT_THAT(Rules(report), ElementsAre(DiscoveryRule::EmptyInterfaceSkipped));
  EXPECT_EQ(report.notes[0].interfaceID, "nic1");
}

TEST_F(CtiDiagnosticsTest, WithTheOptInOnlyEmptyInterfacesAreSkippedNotFailingOnes) {
  InterfacesWithAnEmptyOneBetween();
  State().interfaces[2].failCount = true;
  CCti cti("TalvirFake.cti", FakeEnvironment(true));
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_TRUE(records.empty());
  const CEnumerationReport report = cti.LastEnumeration();
  EXPECT_THAT(Rules(report), ElementsAre(DiscoveryRule::EmptyInterfaceSkipped, DiscoveryRule::InterfaceCountFailed,
                                         DiscoveryRule::EnumerationFailed));
  EXPECT_EQ(report.notes[1].errorCode, GenTL::GC_ERR_ERROR);
  EXPECT_EQ(report.notes[1].interfaceID, "nic2");
}

TEST_F(CtiDiagnosticsTest, WithTheOptInAProducerWhoseInterfacesAreAllEmptyListsNothingAndSucceeds) {
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  CCti cti("TalvirFake.cti", FakeEnvironment(true));
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_THAT(Serials(records), ElementsAre("SN0"));
  // The camera goes away: the interface is now empty, and the device list follows.
  State().interfaces[0].devices.clear();
  cti.Discover(&records);
  EXPECT_TRUE(records.empty());
  EXPECT_TRUE(cti.LastEnumeration().succeeded);
  EXPECT_EQ(cti.FindBySerial("SN0"), nullptr);
}

TEST_F(CtiDiagnosticsTest, SkippedDevicesAndFailedQueriesAreNoted) {
  Testing::CFakeDevice unreadable = MakeFakeDevice("bad", "SN-bad");
  unreadable.failID = true;
  Testing::CFakeDevice partial = MakeFakeDevice("d1", "SN1");
  partial.failingCommands = {GenTL::DEVICE_INFO_SERIAL_NUMBER};
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {unreadable, partial}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_THAT(Serials(records), ElementsAre(""));
  const CEnumerationReport report = cti.LastEnumeration();
  EXPECT_TRUE(report.succeeded);
  EXPECT_EQ(report.devicesListed, 1u);
  ASSERT_EQ(report.interfaces.size(), 1u);
  EXPECT_EQ(report.interfaces[0].deviceCount, 2u);
  EXPECT_EQ(report.interfaces[0].devicesListed, 1u);
  EXPECT_THAT(Rules(report), ElementsAre(DiscoveryRule::DeviceIDFailed, DiscoveryRule::InfoQueryFailed));
  EXPECT_EQ(report.notes[0].errorCode, GenTL::GC_ERR_ERROR);
  EXPECT_THAT(report.notes[0].text, HasSubstr("device index 0"));
  EXPECT_EQ(report.notes[1].deviceID, "d1");
  EXPECT_EQ(report.notes[1].interfaceID, "nic0");
  EXPECT_THAT(report.notes[1].text, HasSubstr("command 7"));
}

TEST_F(CtiDiagnosticsTest, ADeviceIDTooLongIsNotedBeforeTheEnumerationEnds) {
  Testing::CFakeDevice device = MakeFakeDevice("d0", "SN0");
  device.claimedIDSize = kGenTLIDBufferSize;
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {device}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  EXPECT_THROW(cti.Discover(&records), std::out_of_range);
  EXPECT_THAT(Rules(cti.LastEnumeration()), ElementsAre(DiscoveryRule::DeviceIDTooLong));
}

TEST_F(CtiDiagnosticsTest, TheLoadReportNamesEveryOpenStepWithTheProducersText) {
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  State().lastErrorText = "cable unplugged";
  State().lastErrorCode = GenTL::GC_ERR_IO;
  const std::pair<EFakeFailure, int32_t> cases[] = {
      {EFakeFailure::InitLib, -1},          {EFakeFailure::TLOpen, -2},         {EFakeFailure::UpdateInterfaceList, -3},
      {EFakeFailure::GetNumInterfaces, -4}, {EFakeFailure::GetInterfaceID, -6}, {EFakeFailure::OpenInterface, -7},
  };
  for (const auto& [failure, status] : cases) {
    State().failure = failure;
    CCti cti("TalvirFake.cti", FakeEnvironment());
    EXPECT_FALSE(cti.Load());
    const ProducerReport report = cti.LoadReport();
    EXPECT_EQ(report.state, ProducerState::OpenFailed) << status;
    EXPECT_EQ(report.openStatus, status);
    EXPECT_EQ(report.openStatusText, OpenProducerStatusText(status));
    EXPECT_NE(report.errorCode, 0) << status;
    EXPECT_EQ(report.lastErrorText, "cable unplugged") << status;
    EXPECT_TRUE(report.missingFunction.empty());
  }
  // The step each status names is in its text.
  EXPECT_THAT(OpenProducerStatusText(-1), HasSubstr("GCInitLib"));
  EXPECT_THAT(OpenProducerStatusText(-2), HasSubstr("TLOpen"));
  EXPECT_THAT(OpenProducerStatusText(-3), HasSubstr("TLUpdateInterfaceList"));
  EXPECT_THAT(OpenProducerStatusText(-4), HasSubstr("TLGetNumInterfaces"));
  EXPECT_THAT(OpenProducerStatusText(-5), HasSubstr("no interface"));
  EXPECT_THAT(OpenProducerStatusText(-6), HasSubstr("TLGetInterfaceID"));
  EXPECT_THAT(OpenProducerStatusText(-7), HasSubstr("TLOpenInterface"));
}

TEST_F(CtiDiagnosticsTest, TheLoadReportOfAProducerWithoutInterfacesHasNoFailedCall) {
  CCti cti("TalvirFake.cti", FakeEnvironment());
  EXPECT_FALSE(cti.Load());
  EXPECT_EQ(cti.LoadReport().state, ProducerState::OpenFailed);
  EXPECT_EQ(cti.LoadReport().openStatus, OpenProducerStatus::NoInterface);
  EXPECT_EQ(cti.LoadReport().errorCode, 0);
}

TEST_F(CtiDiagnosticsTest, TheLoadReportNamesAMissingFileAndAMissingFunction) {
  CCti missing("NoSuchProducer.cti", FakeEnvironment());
  EXPECT_FALSE(missing.Load());
  EXPECT_EQ(missing.LoadReport().state, ProducerState::FileNotLoadable);
  EXPECT_THAT(missing.LoadReport().loaderError, HasSubstr("NoSuchProducer.cti"));
  EXPECT_EQ(missing.LoadReport().path, CFakeProducerModule::Directory() + "NoSuchProducer.cti");

  CFakeProducerModule noQueue("TalvirFakeNoQueue.cti");
  CCti cti("TalvirFakeNoQueue.cti", FakeEnvironment());
  EXPECT_FALSE(cti.Load());
  EXPECT_EQ(cti.LoadReport().state, ProducerState::FunctionMissing);
  EXPECT_EQ(cti.LoadReport().missingFunction, "DSQueueBuffer");

  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  CCti good("TalvirFake.cti", FakeEnvironment());
  EXPECT_TRUE(good.Load());
  EXPECT_EQ(good.LoadReport().state, ProducerState::Loaded);
  EXPECT_EQ(good.LoadReport().openStatus, 0);
}

TEST_F(CtiDiagnosticsTest, TheCallbackIsOffByDefault) {
  EXPECT_FALSE(CDiagnosticSink::Enabled());
  {
    CCollectedFailures collected;
    EXPECT_TRUE(CDiagnosticSink::Enabled());
  }
  EXPECT_FALSE(CDiagnosticSink::Enabled());
}

TEST_F(CtiDiagnosticsTest, TheCallbackGetsOneLinePerFailedCall) {
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  State().interfaces.push_back(MakeFakeInterface("nic1", "GEV", {MakeFakeDevice("d1", "SN1")}));
  State().interfaces[1].failUpdate = true;
  State().lastErrorText = "adapter down";
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  CCollectedFailures collected;
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_TRUE(records.empty());
  const std::vector<CCollectedFailures::CEntry> entries = collected.Entries();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].producer, "TalvirFake.cti");
  EXPECT_EQ(entries[0].function, "IFUpdateDeviceList");
  EXPECT_EQ(entries[0].handleKind, "interface");
  EXPECT_EQ(entries[0].handle, Testing::FakeInterfaceHandle(1));
  EXPECT_EQ(entries[0].code, GenTL::GC_ERR_ERROR);
  EXPECT_EQ(entries[0].errorName, "GC_ERR_ERROR");
  EXPECT_EQ(entries[0].lastError, "adapter down");
  EXPECT_THAT(entries[0].line, HasSubstr("TalvirFake.cti"));
  EXPECT_THAT(entries[0].line, HasSubstr("IFUpdateDeviceList on interface"));
  EXPECT_THAT(entries[0].line, HasSubstr("-1001 (GC_ERR_ERROR): adapter down"));
}

TEST_F(CtiDiagnosticsTest, TheCallbackSeesFailuresWhileTheProducerOpens) {
  State().failure = EFakeFailure::TLOpen;
  CCollectedFailures collected;
  CCti cti("TalvirFake.cti", FakeEnvironment());
  EXPECT_FALSE(cti.Load());
  const std::vector<CCollectedFailures::CEntry> entries = collected.Entries();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].function, "TLOpen");
  EXPECT_EQ(entries[0].handleKind, "system");
  EXPECT_EQ(entries[0].handle, nullptr);
  EXPECT_TRUE(entries[0].lastError.empty()) << "the fake has no text to give";
}

TEST_F(CtiDiagnosticsTest, SuccessfulCallsAreNotReported) {
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  CCollectedFailures collected;
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  // Calls through the raw pointer are never reported, successful or not.
  GenTL::INFO_DATATYPE type = 0;
  size_t size = 0;
  EXPECT_EQ(cti.Api().TLGetInfo.Raw()(cti.SystemHandle(), GenTL::TL_INFO_ID, &type, nullptr, &size),
            GenTL::GC_ERR_NOT_IMPLEMENTED);
  EXPECT_TRUE(collected.Entries().empty());
  EXPECT_EQ(cti.Api().TLGetInfo(cti.SystemHandle(), GenTL::TL_INFO_ID, &type, nullptr, &size),
            GenTL::GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(collected.Entries().size(), 1u);
}

// A callback that replaces itself and makes a failing call: neither may deadlock or recurse.
struct CReentrantCallback {
  const CGenTLFunctionTable* api = nullptr;
  void* systemHandle = nullptr;
  std::atomic<int> calls{0};

  static void Receive(const GenTLCallFailure&, void* context) {
    auto* self = static_cast<CReentrantCallback*>(context);
    ++self->calls;
    CDiagnosticSink::Set(nullptr, nullptr);
    GenTL::INFO_DATATYPE type = 0;
    size_t size = 0;
    self->api->TLGetInfo(self->systemHandle, GenTL::TL_INFO_ID, &type, nullptr, &size);
  }
};

TEST_F(CtiDiagnosticsTest, CallsFromInsideTheCallbackNeitherRecurseNorDeadlock) {
  State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  CReentrantCallback callback;
  callback.api = &cti.Api();
  callback.systemHandle = cti.SystemHandle();
  CDiagnosticSink::Set(&CReentrantCallback::Receive, &callback);
  GenTL::INFO_DATATYPE type = 0;
  size_t size = 0;
  cti.Api().TLGetInfo(cti.SystemHandle(), GenTL::TL_INFO_ID, &type, nullptr, &size);
  EXPECT_EQ(callback.calls.load(), 1);
  EXPECT_TRUE(CDiagnosticSink::Enabled()) << "the change from inside the callback is ignored";
  CDiagnosticSink::Set(nullptr, nullptr);
  EXPECT_FALSE(CDiagnosticSink::Enabled());
}

TEST(GenTLErrorText, NamesEveryStandardCodeAndTheProducerRange) {
  EXPECT_STREQ(GenTLErrorCodeName(0), "GC_ERR_SUCCESS");
  EXPECT_STREQ(GenTLErrorCodeName(-1010), "GC_ERR_IO");
  EXPECT_STREQ(GenTLErrorCodeName(-1023), "GC_ERR_AMBIGUOUS");
  EXPECT_STREQ(GenTLErrorCodeName(-10000), "GC_ERR_CUSTOM");
  EXPECT_STREQ(GenTLErrorCodeName(-12345), "GC_ERR_CUSTOM");
  EXPECT_STREQ(GenTLErrorCodeName(-1024), "GC_ERR_UNKNOWN");
  EXPECT_STREQ(GenTLErrorCodeName(5), "GC_ERR_UNKNOWN");
  for (int32_t code = -1023; code <= -1001; ++code) {
    EXPECT_STRNE(GenTLErrorCodeName(code), "GC_ERR_UNKNOWN") << code;
  }
}

TEST(GenTLFunctionTable, HandleKindsFollowTheFunctionFamilies) {
  EXPECT_STREQ(GenTLHandleKind(kGenTL_GCInitLib), "library");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_GCReadPort), "port");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_GCRegisterEvent), "event source");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_EventGetData), "event");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_TLOpen), "system");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_IFGetDeviceInfo), "interface");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_DevOpenDataStream), "device");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_DSQueueBuffer), "data stream");
  EXPECT_STREQ(GenTLHandleKind(kGenTL_DSGetBufferPartInfo), "data stream");
}

}  // namespace
}  // namespace TALVIR

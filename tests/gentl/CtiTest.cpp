#include "gentl/Cti.h"

#include "gentl/CameraInfo.h"

#include "FakeProducerModule.h"

#include <talvir/TLType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace TALVIR {
namespace {

using Testing::CFakeProducerModule;
using Testing::EFakeFailure;
using ::testing::ElementsAre;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

// Remembers the status of the open that Load runs.
class CRecordingCti final : public CCti {
public:
  using CCti::CCti;
  int32_t OpenProducer() override {
    m_status = CCti::OpenProducer();
    return m_status;
  }
  int32_t m_status = 1;
};

CCtiEnvironment FakeEnvironment() {
  CCtiEnvironment environment;
  environment.directory = CFakeProducerModule::Directory();
  environment.clProtocolDescriptor = [] { return std::string("/lib/./CLProtocol/X#driver#M#F"); };
  return environment;
}

std::vector<std::string> Serials(const std::list<ICameraInfo*>& records) {
  std::vector<std::string> serials;
  for (ICameraInfo* record : records) {
    serials.emplace_back(record->GetSerialNumber());
  }
  return serials;
}

void GiveBack(std::list<ICameraInfo*>& records) {
  for (ICameraInfo* record : records) {
    record->Destroy();
  }
  records.clear();
}

class CtiTest : public ::testing::Test {
protected:
  CFakeProducerModule m_fake;
  Testing::CFakeProducerState& State() { return m_fake.State(); }

  void TwoInterfacesWithDevices() {
    State().interfaces.push_back(
        MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN0"), MakeFakeDevice("d1", "SN1")}));
    State().interfaces.push_back(MakeFakeInterface("if1", "GEV", {MakeFakeDevice("d2", "SN2")}));
  }

  int32_t OpenStatus() {
    CRecordingCti cti("TalvirFake.cti", FakeEnvironment());
    const bool loaded = cti.Load();
    EXPECT_EQ(loaded, cti.m_status == 0);
    return cti.m_status;
  }
};

TEST_F(CtiTest, LoadOpensTheSystemAndEveryInterface) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  EXPECT_TRUE(cti.IsLoaded());
  EXPECT_EQ(cti.SystemHandle(), Testing::FakeSystemHandle());
  ASSERT_EQ(cti.InterfaceCount(), 2u);
  EXPECT_EQ(cti.Interface(0)->Handle(), Testing::FakeInterfaceHandle(0));
  EXPECT_EQ(cti.Interface(1)->Handle(), Testing::FakeInterfaceHandle(1));
  ASSERT_NE(cti.SystemModule(), nullptr);
  EXPECT_EQ(cti.SystemModule()->Handle(), Testing::FakeSystemHandle());
  // Without a port factory the records carry no node map.
  EXPECT_EQ(cti.SystemModule()->Xml(), nullptr);
  EXPECT_EQ(cti.ProducerTLType(), TLType::GEV);
  EXPECT_NE(cti.Api().GCGetInfo, nullptr);
  EXPECT_NE(cti.Api().DSGetBufferPartInfo, nullptr);
}

TEST_F(CtiTest, TheModulePortFactoryMakesEveryModuleRecord) {
  TwoInterfacesWithDevices();
  CCtiEnvironment environment = FakeEnvironment();
  std::vector<void*> made;
  environment.makeModulePort = [&made](CCti&, void* handle) {
    made.push_back(handle);
    return std::make_unique<CBareModule>(handle);
  };
  CCti cti("TalvirFake.cti", std::move(environment));
  ASSERT_TRUE(cti.Load());
  EXPECT_THAT(
      made, ElementsAre(Testing::FakeSystemHandle(), Testing::FakeInterfaceHandle(0), Testing::FakeInterfaceHandle(1)));
}

TEST_F(CtiTest, OpenStatusNamesTheStepThatFailed) {
  TwoInterfacesWithDevices();
  EXPECT_EQ(OpenStatus(), OpenProducerStatus::Ok);
  const std::pair<EFakeFailure, int32_t> cases[] = {
      {EFakeFailure::InitLib, -1},          {EFakeFailure::TLOpen, -2},         {EFakeFailure::UpdateInterfaceList, -3},
      {EFakeFailure::GetNumInterfaces, -4}, {EFakeFailure::GetInterfaceID, -6}, {EFakeFailure::OpenInterface, -7},
  };
  for (const auto& [failure, status] : cases) {
    State().failure = failure;
    EXPECT_EQ(OpenStatus(), status);
  }
}

TEST_F(CtiTest, AProducerWithoutInterfacesFailsToOpen) { EXPECT_EQ(OpenStatus(), OpenProducerStatus::NoInterface); }

TEST_F(CtiTest, TheInterfaceIDSizeCarriesOverFromCallToCall) {
  State().interfaces.push_back(MakeFakeInterface("a-long-id", "GEV", {MakeFakeDevice("d0", "SN0")}));
  State().interfaces.push_back(MakeFakeInterface("b", "GEV", {MakeFakeDevice("d1", "SN1")}));
  State().interfaces.push_back(MakeFakeInterface("ccc", "GEV", {MakeFakeDevice("d2", "SN2")}));
  EXPECT_EQ(OpenStatus(), OpenProducerStatus::GetInterfaceIDFailed);
  std::vector<std::string> idCalls;
  for (const std::string& call : State().calls) {
    if (call.rfind("TLGetInterfaceID", 0) == 0) {
      idCalls.push_back(call);
    }
  }
  EXPECT_THAT(idCalls,
              ElementsAre("TLGetInterfaceID 0 size 1024", "TLGetInterfaceID 1 size 10", "TLGetInterfaceID 2 size 2"));
}

TEST_F(CtiTest, InterfaceIDsOfFallingLengthOpen) {
  State().interfaces.push_back(MakeFakeInterface("ccc", "GEV", {MakeFakeDevice("d0", "SN0")}));
  State().interfaces.push_back(MakeFakeInterface("bb", "GEV", {MakeFakeDevice("d1", "SN1")}));
  State().interfaces.push_back(MakeFakeInterface("a", "GEV", {MakeFakeDevice("d2", "SN2")}));
  EXPECT_EQ(OpenStatus(), OpenProducerStatus::Ok);
}

TEST_F(CtiTest, AMissingFileFailsTheLoad) {
  CCti cti("NoSuchProducer.cti", FakeEnvironment());
  EXPECT_FALSE(cti.Load());
  EXPECT_FALSE(cti.IsLoaded());
}

TEST_F(CtiTest, AMissingRequiredFunctionFailsTheLoadBeforeOpening) {
  CFakeProducerModule noQueue("TalvirFakeNoQueue.cti");
  noQueue.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN0")}));
  {
    CCti cti("TalvirFakeNoQueue.cti", FakeEnvironment());
    EXPECT_FALSE(cti.Load());
    // Functions after the missing one stay unbound.
    EXPECT_NE(cti.Api().DSRevokeBuffer, nullptr);
    EXPECT_EQ(cti.Api().DSQueueBuffer, nullptr);
    EXPECT_EQ(cti.Api().DSGetBufferInfo, nullptr);
    EXPECT_EQ(cti.Api().GCGetNumPortURLs, nullptr);
  }
  EXPECT_EQ(noQueue.State().CountCalls("GCInitLib"), 0u);
  EXPECT_EQ(noQueue.State().CountCalls("TLOpen"), 0u);
}

TEST_F(CtiTest, MissingInformationFunctionsDoNotFailTheLoad) {
  CFakeProducerModule noInfo("TalvirFakeNoInfo.cti");
  noInfo.State().interfaces.push_back(MakeFakeInterface("if0", "U3V", {MakeFakeDevice("d0", "SN0")}));
  CCti cti("TalvirFakeNoInfo.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  EXPECT_EQ(cti.Api().GCGetInfo, nullptr);
  EXPECT_EQ(cti.Api().GCGetLastError, nullptr);
  EXPECT_NE(cti.Api().GCInitLib, nullptr);
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_THAT(Serials(records), ElementsAre("SN0"));
  GiveBack(records);
}

TEST_F(CtiTest, DiscoverListsDevicesOfEveryInterfaceInOrder) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_THAT(Serials(records), ElementsAre("SN0", "SN1", "SN2"));
  auto* first = dynamic_cast<CCameraInfo*>(records.front());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->Producer(), &cti);
  EXPECT_EQ(first->Interface(), cti.Interface(0));
  EXPECT_EQ(dynamic_cast<CCameraInfo*>(records.back())->Interface(), cti.Interface(1));
  EXPECT_STREQ(first->GetCustomInfo(CustomInfo::ProducerFile), "TalvirFake.cti");
  // One reference for the cache, one for the caller.
  EXPECT_EQ(first->ReferenceCount(), 2u);
  GiveBack(records);
  EXPECT_EQ(first->ReferenceCount(), 1u);
}

TEST_F(CtiTest, FillCameraInfoStoresTheStandardFields) {
  State().interfaces.push_back(MakeFakeInterface("if0", "U3V", {MakeFakeDevice("d0", "SN0")}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 1u);
  const ICameraInfo& info = *records.front();
  EXPECT_EQ(info.GetTLType(), TLType::U3V);
  EXPECT_EQ(info.GetAccessStatus(), 5u);
  EXPECT_STREQ(info.GetDeviceID(), "d0");
  EXPECT_STREQ(info.GetSerialNumber(), "SN0");
  EXPECT_STREQ(info.GetVendor(), "Vendor of d0");
  EXPECT_STREQ(info.GetModel(), "Model of d0");
  EXPECT_STREQ(info.GetDisplayName(), "Display of d0");
  EXPECT_STREQ(info.GetUserDefinedName(), "User of d0");
  EXPECT_STREQ(info.GetVersion(), "Version of d0");
  EXPECT_EQ(info.GetTimestampFrequency(), 125000000u);
  GiveBack(records);
}

TEST_F(CtiTest, AFailingQueryLeavesItsFieldEmpty) {
  Testing::CFakeDevice device = MakeFakeDevice("d0", "SN0");
  device.failingCommands = {GenTL::DEVICE_INFO_VENDOR, GenTL::DEVICE_INFO_TLTYPE, GenTL::DEVICE_INFO_ACCESS_STATUS};
  // A text longer than the 256-byte answer buffer is refused by the producer as too long.
  device.model = std::string(300, 'm');
  State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {device}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_STREQ(records.front()->GetVendor(), "");
  EXPECT_STREQ(records.front()->GetModel(), "");
  EXPECT_EQ(records.front()->GetTLType(), 0u);
  EXPECT_EQ(records.front()->GetAccessStatus(), 0u);
  EXPECT_STREQ(records.front()->GetSerialNumber(), "SN0");
  GiveBack(records);
}

TEST_F(CtiTest, TheTLTypeNameMustMatchExactly) {
  Testing::CFakeDevice device = MakeFakeDevice("d0", "SN0");
  State().interfaces.push_back(MakeFakeInterface("if0", "Custom", {device}));
  State().interfaces[0].devices[0].tlType = "gev";
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  EXPECT_EQ(cti.ProducerTLType(), 0u);
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records.front()->GetTLType(), 0u);
  GiveBack(records);
}

TEST_F(CtiTest, CameraLinkGrabbersGetTheirProducerTexts) {
  Testing::CFakeDevice device = MakeFakeDevice("grabber0", "CL0");
  device.numberInfo = {{1201, 18446744073709551615ull}, {1230, 0}, {1202, 115200}};
  device.textInfo = {{1205, "text1205"}, {1203, "text1203"},          {1207, "text1207"},
                     {1231, "text1231"}, {1209, "producer protocol"}, {1208, "COM7"}};
  Testing::CFakeDevice quiet = MakeFakeDevice("grabber1", "CL1");
  quiet.numberInfo = {{1201, 7}};
  quiet.failingCommands = {1201};
  State().interfaces.push_back(MakeFakeInterface("if0", "CL", {device, quiet}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 2u);
  const ICameraInfo& info = *records.front();
  EXPECT_STREQ(info.GetCustomInfo(21), "18446744073709551615");
  EXPECT_STREQ(info.GetCustomInfo(30), "0");
  EXPECT_STREQ(info.GetCustomInfo(22), "115200");
  EXPECT_STREQ(info.GetCustomInfo(25), "text1205");
  EXPECT_STREQ(info.GetCustomInfo(23), "text1203");
  EXPECT_STREQ(info.GetCustomInfo(27), "text1207");
  EXPECT_STREQ(info.GetCustomInfo(31), "text1231");
  // The grabber's protocol answer only says that the protocol item applies; the text is our driver's.
  EXPECT_STREQ(info.GetCustomInfo(28), "/lib/./CLProtocol/X#driver#M#F");
  EXPECT_STREQ(info.GetCustomInfo(29), "KORIX#CL_GRABBER#SERIALCOM7");
  // No GigE or U3V items.
  EXPECT_EQ(info.GetCustomInfo(8), nullptr);
  EXPECT_EQ(info.GetCustomInfo(1), nullptr);
  // Commands a device does not answer add nothing.
  const ICameraInfo& silent = *records.back();
  EXPECT_EQ(silent.GetCustomInfo(21), nullptr);
  EXPECT_EQ(silent.GetCustomInfo(28), nullptr);
  EXPECT_EQ(silent.GetCustomInfo(29), nullptr);
  GiveBack(records);
}

TEST_F(CtiTest, Usb3VisionDevicesGetTheirProducerTexts) {
  Testing::CFakeDevice device = MakeFakeDevice("U3V dev 0", "U0");
  device.textInfo = {{1101, "t1101"}, {1100, "t1100"}, {1102, "t1102"}};
  Testing::CFakeDevice noBlank = MakeFakeDevice("u3vdev1", "U1");
  State().interfaces.push_back(MakeFakeInterface("if0", "U3V", {device, noBlank}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 2u);
  const ICameraInfo& info = *records.front();
  EXPECT_STREQ(info.GetCustomInfo(8), "dev 0");
  EXPECT_STREQ(info.GetCustomInfo(10), "t1101");
  EXPECT_STREQ(info.GetCustomInfo(11), "t1100");
  EXPECT_STREQ(info.GetCustomInfo(9), "t1102");
  EXPECT_EQ(records.back()->GetCustomInfo(8), nullptr);
  EXPECT_EQ(records.back()->GetCustomInfo(10), nullptr);
  GiveBack(records);
}

TEST_F(CtiTest, OtherProducerTypesAskNoProducerSpecificCommand) {
  Testing::CFakeDevice device = MakeFakeDevice("d0", "SN0");
  device.numberInfo = {{1201, 1}};
  device.textInfo = {{1101, "t"}};
  State().interfaces.push_back(MakeFakeInterface("if0", "CXP", {device}));
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records.front()->GetCustomInfo(21), nullptr);
  EXPECT_EQ(records.front()->GetCustomInfo(10), nullptr);
  GiveBack(records);
}

TEST_F(CtiTest, OneEmptyInterfaceKeepsTheEarlierDeviceList) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  cti.Discover(nullptr);
  State().interfaces[1].devices.clear();
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_TRUE(records.empty());
  // The cache still holds the first enumeration's devices, the first interface's included.
  for (const char* serial : {"SN0", "SN1", "SN2"}) {
    ICameraInfo* found = cti.FindBySerial(serial);
    ASSERT_NE(found, nullptr) << serial;
    found->Destroy();
  }
}

TEST_F(CtiTest, AFailingInterfaceKeepsTheEarlierDeviceList) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  cti.Discover(nullptr);
  for (int step = 0; step < 2; ++step) {
    State().interfaces[0].failUpdate = step == 0;
    State().interfaces[0].failCount = step == 1;
    std::list<ICameraInfo*> records;
    cti.Discover(&records);
    EXPECT_TRUE(records.empty());
    ICameraInfo* found = cti.FindBySerial("SN2");
    ASSERT_NE(found, nullptr);
    found->Destroy();
  }
}

TEST_F(CtiTest, ADeviceWhoseIDCannotBeReadIsSkipped) {
  TwoInterfacesWithDevices();
  State().interfaces[0].devices[0].failID = true;
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  EXPECT_THAT(Serials(records), ElementsAre("SN1", "SN2"));
  GiveBack(records);
}

TEST_F(CtiTest, ADeviceIDWithoutRoomForItsTerminatorIsFatal) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  cti.Discover(nullptr);
  State().interfaces[1].devices[0].claimedIDSize = 1024;
  std::list<ICameraInfo*> records;
  EXPECT_THROW(cti.Discover(&records), std::out_of_range);
  EXPECT_TRUE(records.empty());
  // The records made before the bad ID are given up; the earlier cache stays.
  ICameraInfo* found = cti.FindBySerial("SN0");
  ASSERT_NE(found, nullptr);
  found->Destroy();
  // 1023 bytes leave room for the zero.
  State().interfaces[1].devices[0].claimedIDSize = 1023;
  cti.Discover(&records);
  EXPECT_EQ(records.size(), 3u);
  GiveBack(records);
}

TEST_F(CtiTest, ANewEnumerationReplacesTheCacheWhileCallersKeepTheirRecords) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> first;
  cti.Discover(&first);
  State().interfaces[0].devices[0].serial = "SN0-renamed";
  std::list<ICameraInfo*> second;
  cti.Discover(&second);
  EXPECT_THAT(Serials(second), ElementsAre("SN0-renamed", "SN1", "SN2"));
  // The first records now have only the caller's reference, and still read correctly.
  EXPECT_EQ(dynamic_cast<CCameraInfo*>(first.front())->ReferenceCount(), 1u);
  EXPECT_STREQ(first.front()->GetSerialNumber(), "SN0");
  ICameraInfo* old = cti.FindBySerial("SN0");
  EXPECT_EQ(old, nullptr);
  GiveBack(first);
  GiveBack(second);
}

TEST_F(CtiTest, FindBySerialComparesWholeStringsExactly) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  EXPECT_EQ(cti.FindBySerial("SN1"), nullptr) << "nothing is cached before the first discovery";
  cti.Discover(nullptr);
  EXPECT_EQ(cti.FindBySerial("sn1"), nullptr);
  EXPECT_EQ(cti.FindBySerial("SN"), nullptr);
  EXPECT_EQ(cti.FindBySerial("SN1 "), nullptr);
  EXPECT_EQ(cti.FindBySerial(""), nullptr);
  ICameraInfo* found = cti.FindBySerial("SN1");
  ASSERT_NE(found, nullptr);
  EXPECT_STREQ(found->GetDeviceID(), "d1");
  EXPECT_EQ(dynamic_cast<CCameraInfo*>(found)->ReferenceCount(), 2u);
  found->Destroy();
}

TEST_F(CtiTest, DestructionClosesInterfacesThenSystemThenLibrary) {
  TwoInterfacesWithDevices();
  {
    CCti cti("TalvirFake.cti", FakeEnvironment());
    ASSERT_TRUE(cti.Load());
    cti.Discover(nullptr);
    State().calls.clear();
  }
  EXPECT_THAT(State().calls, ElementsAre("IFClose 0", "IFClose 1", "TLClose", "GCCloseLib"));
}

TEST_F(CtiTest, AFailedOpenStillClosesWhatWasOpened) {
  TwoInterfacesWithDevices();
  State().failure = EFakeFailure::UpdateInterfaceList;
  {
    CCti cti("TalvirFake.cti", FakeEnvironment());
    EXPECT_FALSE(cti.Load());
    State().calls.clear();
  }
  EXPECT_THAT(State().calls, ElementsAre("TLClose", "GCCloseLib"));
}

TEST_F(CtiTest, ConcurrentDiscoveriesOfOneProducerLoseNoRecord) {
  TwoInterfacesWithDevices();
  CCti cti("TalvirFake.cti", FakeEnvironment());
  ASSERT_TRUE(cti.Load());
  std::vector<std::list<ICameraInfo*>> lists(4);
  std::vector<std::thread> threads;
  for (auto& list : lists) {
    threads.emplace_back([&cti, &list] {
      for (int i = 0; i < 20; ++i) {
        std::list<ICameraInfo*> records;
        cti.Discover(&records);
        list.splice(list.end(), records);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (auto& list : lists) {
    EXPECT_EQ(list.size(), 60u);
    for (ICameraInfo* record : list) {
      EXPECT_EQ(std::string(record->GetSerialNumber()).rfind("SN", 0), 0u);
    }
    GiveBack(list);
  }
}

}  // namespace
}  // namespace TALVIR

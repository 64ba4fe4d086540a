// The exported functions of the real library, loaded from a folder laid out by each test, with the scriptable
// producer linked in under the names a test needs.
#include "LibraryUnderTest.h"

#include "FakeProducerModule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace TALVIR {
namespace {

using Testing::CFakeProducerModule;
using Testing::CLibraryUnderTest;
using ::testing::ElementsAre;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

std::vector<std::string> SerialsAndGiveBack(std::list<ICameraInfo*> records) {
  std::vector<std::string> serials;
  for (ICameraInfo* record : records) {
    serials.emplace_back(record->GetSerialNumber());
    record->Destroy();
  }
  return serials;
}

class EntryPointsTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_fake.State().interfaces.push_back(
        MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN0"), MakeFakeDevice("d1", "SN1")}));
    m_fake.State().interfaces.push_back(MakeFakeInterface("if1", "GEV", {MakeFakeDevice("d2", "SN2")}));
  }
  void LinkFake(const std::string& as) { m_library.Link(CFakeProducerModule::Directory() + "TalvirFake.cti", as); }
  size_t Enumerations() { return m_fake.State().CountCalls("IFUpdateDeviceList 0"); }

  CFakeProducerModule m_fake;
  CLibraryUnderTest m_library;
};

TEST_F(EntryPointsTest, BeforeInitEveryEntryPointIsEmpty) {
  LinkFake("Fake.cti");
  m_library.Load();
  EXPECT_TRUE(m_library.Discovery(nullptr).empty());
  EXPECT_TRUE(m_library.Discovery("Fake.cti").empty());
  EXPECT_TRUE(m_library.DiscoveryByTLType(511).empty());
  EXPECT_EQ(m_library.CreateCamera(nullptr), nullptr);
  EXPECT_EQ(m_library.CreateCameraBySN("SN0"), nullptr);
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 0u);
  m_library.UnInit();  // without Init: harmless
}

TEST_F(EntryPointsTest, AfterUnInitEveryEntryPointIsEmptyAgain) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_THAT(SerialsAndGiveBack(m_library.Discovery(nullptr)), ElementsAre("SN0", "SN1", "SN2"));
  m_library.UnInit();
  EXPECT_EQ(m_fake.State().CountCalls("GCCloseLib"), 1u) << "UnInit closes the producers";
  EXPECT_TRUE(m_library.Discovery(nullptr).empty());
  EXPECT_TRUE(m_library.DiscoveryByTLType(511).empty());
  EXPECT_EQ(m_library.CreateCameraBySN("SN0"), nullptr);
  m_library.UnInit();
  EXPECT_EQ(m_fake.State().CountCalls("GCCloseLib"), 1u);
}

TEST_F(EntryPointsTest, InitTwiceKeepsTheFirstManager) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  SerialsAndGiveBack(m_library.Discovery(nullptr));
  m_library.Init();
  SerialsAndGiveBack(m_library.Discovery(nullptr));
  // A second manager would have loaded the producer a second time.
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 1u);
  EXPECT_EQ(Enumerations(), 2u);
}

TEST_F(EntryPointsTest, InitAfterUnInitStartsAfresh) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  SerialsAndGiveBack(m_library.Discovery(nullptr));
  m_library.UnInit();
  m_library.Init();
  EXPECT_THAT(SerialsAndGiveBack(m_library.Discovery(nullptr)), ElementsAre("SN0", "SN1", "SN2"));
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 2u);
}

TEST_F(EntryPointsTest, ProducersAreFoundBesideTheLibraryByExtension) {
  LinkFake("Fake.cti");
  LinkFake("Fake.ctix");
  LinkFake("Fake.cti.bak");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_EQ(records.size(), 3u) << "only Fake.cti is a producer";
  EXPECT_STREQ(records.front()->GetCustomInfo(CustomInfo::ProducerFile), "Fake.cti");
  SerialsAndGiveBack(std::move(records));
}

TEST_F(EntryPointsTest, AnEmptyConfiguredListFindsNothing) {
  LinkFake("Fake.cti");
  m_library.WriteConfig("");
  m_library.Load();
  m_library.Init();
  EXPECT_TRUE(m_library.Discovery(nullptr).empty());
  EXPECT_TRUE(m_library.DiscoveryByTLType(511).empty());
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 0u);
  // A name given by the caller still works.
  EXPECT_EQ(SerialsAndGiveBack(m_library.Discovery("Fake.cti")).size(), 3u);
}

TEST_F(EntryPointsTest, ConfiguredNamesAreUsedVerbatim) {
  LinkFake("Fake.cti");
  m_library.WriteConfig("Missing.cti; Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_TRUE(m_library.Discovery(nullptr).empty()) << "' Fake.cti' is not 'Fake.cti'";
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 0u);
}

TEST_F(EntryPointsTest, ANameListedTwiceLoadsOnce) {
  LinkFake("Fake.cti");
  m_library.WriteConfig("Fake.cti;Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_EQ(SerialsAndGiveBack(m_library.Discovery(nullptr)).size(), 6u);
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 1u);
}

TEST_F(EntryPointsTest, TheMaskSelectsByTheProducersType) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_EQ(SerialsAndGiveBack(m_library.DiscoveryByTLType(511)).size(), 3u);
  EXPECT_EQ(SerialsAndGiveBack(m_library.DiscoveryByTLType(TLType::GEV)).size(), 3u);
  EXPECT_TRUE(m_library.DiscoveryByTLType(TLType::U3V | TLType::CXP).empty());
  EXPECT_TRUE(m_library.DiscoveryByTLType(512).empty());
  EXPECT_TRUE(m_library.DiscoveryByTLType(TLType::CLSerialOnly).empty());
}

TEST_F(EntryPointsTest, OneEmptyInterfaceEmptiesTheWholeProducersResult) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_EQ(SerialsAndGiveBack(m_library.Discovery(nullptr)).size(), 3u);
  m_fake.State().interfaces[1].devices.clear();
  EXPECT_TRUE(m_library.Discovery(nullptr).empty());
}

TEST_F(EntryPointsTest, CreateCameraBySNWithoutASerialRunsNoDiscovery) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_EQ(m_library.CreateCameraBySN(nullptr), nullptr);
  EXPECT_EQ(m_library.CreateCameraBySN(""), nullptr);
  EXPECT_EQ(Enumerations(), 0u);
}

TEST_F(EntryPointsTest, CreateCameraBySNRunsExactlyOneFullDiscoveryForAnUnknownDevice) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  ICamera* const camera = m_library.CreateCameraBySN("SN2");
  ASSERT_NE(camera, nullptr);
  EXPECT_STREQ(camera->GetCameraInfo()->GetSerialNumber(), "SN2");
  EXPECT_EQ(Enumerations(), 1u);
  // Now the device is known: no further discovery, and the same camera again.
  EXPECT_EQ(m_library.CreateCameraBySN("SN2"), camera);
  EXPECT_EQ(Enumerations(), 1u);
  // An absent device: one more discovery each time.
  EXPECT_EQ(m_library.CreateCameraBySN("SN9"), nullptr);
  EXPECT_EQ(Enumerations(), 2u);
  // The camera still alive is released by UnInit (the leak checker watches).
}

TEST_F(EntryPointsTest, CreateCameraGivesOneCameraPerDevice) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_EQ(m_library.CreateCamera(nullptr), nullptr);
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_EQ(records.size(), 3u);
  ICamera* const first = m_library.CreateCamera(records.front());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->GetCameraInfo(), records.front());
  EXPECT_EQ(m_library.CreateCamera(records.front()), first);
  ICamera* const second = m_library.CreateCamera(records.back());
  EXPECT_NE(second, first);
  // A record of a later discovery for the same device finds the same camera.
  std::list<ICameraInfo*> again = m_library.Discovery(nullptr);
  EXPECT_EQ(m_library.CreateCamera(again.front()), first);
  second->Release();
  SerialsAndGiveBack(std::move(records));
  SerialsAndGiveBack(std::move(again));
  // The camera holds its record: still readable after the caller gave its reference back.
  EXPECT_STREQ(first->GetCameraInfo()->GetSerialNumber(), "SN0");
}

TEST_F(EntryPointsTest, RecordsOutliveANewerDiscoveryUntilGivenBack) {
  LinkFake("Fake.cti");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> first = m_library.Discovery(nullptr);
  std::list<ICameraInfo*> second = m_library.Discovery(nullptr);
  ASSERT_EQ(first.size(), 3u);
  EXPECT_STREQ(first.front()->GetSerialNumber(), "SN0");
  EXPECT_STREQ(first.front()->GetVendor(), "Vendor of d0");
  EXPECT_NE(first.front(), second.front());
  SerialsAndGiveBack(std::move(first));
  SerialsAndGiveBack(std::move(second));
}

TEST_F(EntryPointsTest, ConcurrentDiscoveriesAndDestroysShareRecordsSafely) {
  LinkFake("Fake.cti");
  LinkFake("Again.cti");
  m_library.Load();
  m_library.Init();
  // Both producers loaded before the threads start: get-or-load is not what this test is about.
  SerialsAndGiveBack(m_library.Discovery(nullptr));
  std::atomic<size_t> seen{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([this, &seen] {
      for (int i = 0; i < 10; ++i) {
        std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
        for (ICameraInfo* record : records) {
          seen += std::string(record->GetSerialNumber()).size() == 3 ? 1 : 0;
        }
        std::vector<std::thread> destroyers;
        for (ICameraInfo* record : records) {
          destroyers.emplace_back([record] { record->Destroy(); });
        }
        for (std::thread& destroyer : destroyers) {
          destroyer.join();
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(seen, 4u * 10u * 6u);
}

}  // namespace
}  // namespace TALVIR

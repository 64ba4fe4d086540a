#include "front/Discovery.h"

#include "front/CtiManager.h"
#include "front/EntryPoints.h"
#include "gentl/CameraInfo.h"

#include "FakeProducerFolder.h"

#include <talvir/TLType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace TALVIR {
namespace {

using Testing::CFakeProducerFolder;
using Testing::CFakeProducerModule;
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

TEST(ProducerSelectedByMask, AllNineBitsSelectEveryProducer) {
  EXPECT_TRUE(ProducerSelectedByMask(0, 511));
  EXPECT_TRUE(ProducerSelectedByMask(TLType::GEV, 511));
  EXPECT_TRUE(ProducerSelectedByMask(0, 0xFFFFFFFFFFFFFFFFull));
  EXPECT_TRUE(ProducerSelectedByMask(0, 511 | 0x10000));
}

TEST(ProducerSelectedByMask, OtherwiseTheProducersTypeMustShareABit) {
  EXPECT_TRUE(ProducerSelectedByMask(TLType::GEV, TLType::GEV));
  EXPECT_TRUE(ProducerSelectedByMask(TLType::U3V, TLType::GEV | TLType::U3V));
  EXPECT_FALSE(ProducerSelectedByMask(TLType::U3V, TLType::GEV));
  EXPECT_FALSE(ProducerSelectedByMask(0, 510));
  EXPECT_FALSE(ProducerSelectedByMask(TLType::GEV, 0));
  EXPECT_FALSE(ProducerSelectedByMask(TLType::GEV, 512));
  EXPECT_FALSE(ProducerSelectedByMask(TLType::PCI, 512));
}

// Two fake producer builds with separate state, linked into one folder under several names.
class DiscoveryTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_gev.State().interfaces.push_back(
        MakeFakeInterface("if0", "GEV", {MakeFakeDevice("g0", "G0"), MakeFakeDevice("g1", "G1")}));
    m_u3v.State().interfaces.push_back(MakeFakeInterface("if0", "U3V", {MakeFakeDevice("u0", "U0")}));
    m_folder.LinkProducer("Gev.cti", "TalvirFake.cti");
    m_folder.LinkProducer("Usb.cti", "TalvirFakeNoInfo.cti");
  }

  CFakeProducerModule m_gev{"TalvirFake.cti"};
  CFakeProducerModule m_u3v{"TalvirFakeNoInfo.cti"};
  CFakeProducerFolder m_folder;
};

TEST_F(DiscoveryTest, NoProducerGivesAnEmptyList) { EXPECT_TRUE(DiscoverWithProducers({}).empty()); }

TEST_F(DiscoveryTest, ConfiguredProducersAreJoinedInConfiguredOrder) {
  m_folder.WriteConfig("[User]\nCtiNames=Usb.cti;Gev.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, nullptr)), ElementsAre("U0", "G0", "G1"));
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, "")), ElementsAre("U0", "G0", "G1"));
}

TEST_F(DiscoveryTest, ANameRestrictsDiscoveryToThatFile) {
  CCtiManager manager(m_folder.Directory());
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, "Usb.cti")), ElementsAre("U0"));
  // The other producer was not even loaded.
  EXPECT_EQ(m_gev.State().CountCalls("GCInitLib"), 0u);
}

TEST_F(DiscoveryTest, AFileThatFailsToLoadGivesNothingAndIsNotRetried) {
  m_folder.LinkProducer("Broken.cti", "TalvirFakeNoQueue.cti");
  m_folder.LinkProducer("Refusing.cti", "TalvirFake.cti");
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(DiscoverByName(manager, "Broken.cti").empty());
  EXPECT_TRUE(manager.HasFailed("Broken.cti"));
  m_gev.State().failure = Testing::EFakeFailure::InitLib;
  EXPECT_TRUE(DiscoverByName(manager, "Refusing.cti").empty());
  m_gev.State().failure = Testing::EFakeFailure::None;
  EXPECT_TRUE(DiscoverByName(manager, "Refusing.cti").empty());
  EXPECT_EQ(m_gev.State().CountCalls("GCInitLib"), 1u);
}

TEST_F(DiscoveryTest, AnEmptyConfiguredListFindsNothingDespiteProducerFiles) {
  m_folder.WriteConfig("[User]\nCtiNames=\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(DiscoverByName(manager, nullptr).empty());
  EXPECT_TRUE(DiscoverByTLType(manager, 511).empty());
  EXPECT_EQ(m_gev.State().CountCalls("GCInitLib"), 0u);
}

TEST_F(DiscoveryTest, ABlankAfterASeparatorBelongsToTheNextName) {
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti; Usb.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, nullptr)), ElementsAre("G0", "G1"));
  EXPECT_TRUE(manager.HasFailed(" Usb.cti"));
  // Unless a file of that name exists.
  m_folder.LinkProducer(" Usb.cti", "TalvirFakeNoInfo.cti");
  CCtiManager again(m_folder.Directory());
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(again, nullptr)), ElementsAre("G0", "G1", "U0"));
}

TEST_F(DiscoveryTest, ANameListedTwiceLoadsOneProducer) {
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti;Gev.cti\n");
  CCtiManager manager(m_folder.Directory());
  // The producer takes part once per listing.
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, nullptr)), ElementsAre("G0", "G1", "G0", "G1"));
  EXPECT_EQ(m_gev.State().CountCalls("GCInitLib"), 1u);
}

TEST_F(DiscoveryTest, TheSameDeviceThroughTwoProducersIsListedTwice) {
  // Two names for one build: two producers that see the same devices.
  m_folder.LinkProducer("GevAgain.cti", "TalvirFake.cti");
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti;GevAgain.cti\n");
  CCtiManager manager(m_folder.Directory());
  std::list<ICameraInfo*> records = DiscoverByName(manager, nullptr);
  ASSERT_EQ(records.size(), 4u);
  auto* first = dynamic_cast<CCameraInfo*>(records.front());
  auto* third = dynamic_cast<CCameraInfo*>(*std::next(records.begin(), 2));
  EXPECT_STREQ(first->GetSerialNumber(), third->GetSerialNumber());
  EXPECT_NE(first->Producer(), third->Producer());
  EXPECT_FALSE(SameDevice(*first, third));
  SerialsAndGiveBack(std::move(records));
}

TEST_F(DiscoveryTest, TheMaskSelectsProducersByTheirInterfaceType) {
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti;Usb.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByTLType(manager, TLType::U3V)), ElementsAre("U0"));
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByTLType(manager, TLType::GEV)), ElementsAre("G0", "G1"));
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByTLType(manager, TLType::GEV | TLType::U3V)), ElementsAre("G0", "G1", "U0"));
  EXPECT_TRUE(DiscoverByTLType(manager, TLType::CXP).empty());
  EXPECT_TRUE(DiscoverByTLType(manager, 512).empty());
}

TEST_F(DiscoveryTest, AllNineBitsAlsoSelectAProducerOfUnknownType) {
  m_u3v.State().interfaces[0].tlType = "Custom";
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti;Usb.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByTLType(manager, 511)), ElementsAre("G0", "G1", "U0"));
  // Eight of the nine bits: only the type match counts.
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByTLType(manager, 511 & ~uint64_t{TLType::U3V})), ElementsAre("G0", "G1"));
}

TEST_F(DiscoveryTest, TheSerialPortMaskTouchesNoProducer) {
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(DiscoverByTLType(manager, TLType::CLSerialOnly).empty());
  EXPECT_EQ(m_gev.State().CountCalls("GCInitLib"), 0u);
  EXPECT_EQ(m_u3v.State().CountCalls("GCInitLib"), 0u);
}

TEST_F(DiscoveryTest, ParallelDiscoveryGivesEveryCallerItsOwnReference) {
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti;Usb.cti\n");
  CCtiManager manager(m_folder.Directory());
  std::list<ICameraInfo*> records = DiscoverByName(manager, nullptr);
  ASSERT_EQ(records.size(), 3u);
  for (ICameraInfo* record : records) {
    EXPECT_EQ(dynamic_cast<CCameraInfo*>(record)->ReferenceCount(), 2u);
  }
  SerialsAndGiveBack(std::move(records));
}

TEST_F(DiscoveryTest, ADeviceIDWithoutRoomForItsTerminatorEndsAParallelDiscovery) {
  // The range check throws inside a discovery thread, which ends the process.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  m_folder.WriteConfig("[User]\nCtiNames=Gev.cti;Usb.cti\n");
  m_u3v.State().interfaces[0].devices[0].claimedIDSize = 1024;
  CCtiManager manager(m_folder.Directory());
  EXPECT_DEATH(DiscoverByName(manager, nullptr), "");
}

TEST_F(DiscoveryTest, ADeviceIDWithoutRoomForItsTerminatorReachesTheCallerOfASingleProducerDiscovery) {
  m_u3v.State().interfaces[0].devices[0].claimedIDSize = 1024;
  CCtiManager manager(m_folder.Directory());
  EXPECT_THROW(DiscoverByName(manager, "Usb.cti"), std::out_of_range);
  // The producer itself stays usable.
  m_u3v.State().interfaces[0].devices[0].claimedIDSize = 0;
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, "Usb.cti")), ElementsAre("U0"));
}

// CreateCameraBySN's lookup, with a factory that records what it is given.
class CreateBySerialTest : public DiscoveryTest {
protected:
  size_t Enumerations() {
    return m_gev.State().CountCalls("IFUpdateDeviceList 0") + m_u3v.State().CountCalls("IFUpdateDeviceList 0");
  }
  CameraFactory Recorder() {
    return [this](ICameraInfo* info) {
      m_asked.emplace_back(info->GetSerialNumber());
      m_askedReferences.push_back(dynamic_cast<CCameraInfo*>(info)->ReferenceCount());
      return m_camera;
    };
  }
  std::vector<std::string> m_asked;
  std::vector<uint64_t> m_askedReferences;
  ICamera* m_camera = reinterpret_cast<ICamera*>(uintptr_t{0x1234});
};

TEST_F(CreateBySerialTest, NullOrEmptySerialsRunNoDiscovery) {
  CCtiManager manager(m_folder.Directory());
  EXPECT_EQ(CreateCameraBySerial(manager, nullptr, Recorder()), nullptr);
  EXPECT_EQ(CreateCameraBySerial(manager, "", Recorder()), nullptr);
  EXPECT_TRUE(m_asked.empty());
  EXPECT_EQ(Enumerations(), 0u);
}

TEST_F(CreateBySerialTest, AnUnknownSerialRunsExactlyOneFullDiscovery) {
  CCtiManager manager(m_folder.Directory());
  EXPECT_EQ(CreateCameraBySerial(manager, "U0", Recorder()), m_camera);
  EXPECT_EQ(Enumerations(), 2u) << "one enumeration of each producer";
  EXPECT_THAT(m_asked, ElementsAre("U0"));
  // The cache's reference and the lookup's; the discovery's own references were given back.
  EXPECT_THAT(m_askedReferences, ElementsAre(2u));
  ICameraInfo* record = manager.FindBySerial("U0");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(dynamic_cast<CCameraInfo*>(record)->ReferenceCount(), 2u) << "the lookup's reference was dropped";
  record->Destroy();
}

TEST_F(CreateBySerialTest, AKnownSerialNeedsNoDiscovery) {
  CCtiManager manager(m_folder.Directory());
  SerialsAndGiveBack(DiscoverByName(manager, nullptr));
  const size_t before = Enumerations();
  EXPECT_EQ(CreateCameraBySerial(manager, "G1", Recorder()), m_camera);
  EXPECT_EQ(Enumerations(), before);
  EXPECT_THAT(m_asked, ElementsAre("G1"));
}

TEST_F(CreateBySerialTest, AnAbsentDeviceGivesNullAfterOneDiscovery) {
  CCtiManager manager(m_folder.Directory());
  EXPECT_EQ(CreateCameraBySerial(manager, "g0", Recorder()), nullptr);
  EXPECT_EQ(Enumerations(), 2u);
  EXPECT_TRUE(m_asked.empty());
}

}  // namespace
}  // namespace TALVIR

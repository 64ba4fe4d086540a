#include "front/CtiManager.h"

#include "camera/CameraRegistry.h"
#include "gentl/GevCti.h"

#include "FakeProducerFolder.h"

#include <talvir/ICameraInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace TALVIR {
namespace {

using Testing::CFakeProducerFolder;
using Testing::CFakeProducerModule;
using ::testing::ElementsAre;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;
using ::testing::UnorderedElementsAre;

class CtiManagerTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_fake.State().interfaces.push_back(
        MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN0"), MakeFakeDevice("d1", "SN1")}));
  }

  CFakeProducerModule m_fake;
  CFakeProducerFolder m_folder;
};

TEST_F(CtiManagerTest, WithoutConfigurationTheFolderIsSearched) {
  m_folder.LinkProducer("A.cti");
  m_folder.LinkProducer("B.CTI");
  m_folder.LinkProducer("C.ctix");
  m_folder.WriteFile("notes.txt", "x");
  std::filesystem::create_directory(m_folder.Path() / "folder.cti");
  CCtiManager manager(m_folder.Directory());
  EXPECT_FALSE(manager.ConfigurationLoaded());
  EXPECT_THAT(manager.ProducerNames(), UnorderedElementsAre("A.cti", "B.CTI"));
  EXPECT_THAT(manager.SearchProducerFiles(), UnorderedElementsAre("A.cti", "B.CTI"));
  EXPECT_NE(manager.Registry(), nullptr);
}

TEST_F(CtiManagerTest, AReadableConfigurationReplacesTheSearch) {
  m_folder.LinkProducer("A.cti");
  m_folder.WriteConfig("[User]\nCtiNames=Z.cti;A.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(manager.ConfigurationLoaded());
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("Z.cti", "A.cti"));
}

TEST_F(CtiManagerTest, AnEmptyValueConfiguresOneEmptyName) {
  m_folder.LinkProducer("A.cti");
  m_folder.WriteConfig("[User]\nCtiNames=\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_TRUE(manager.ConfigurationLoaded());
  EXPECT_THAT(manager.ProducerNames(), ElementsAre(""));
  EXPECT_EQ(manager.GetOrLoadProducer(""), nullptr);
  EXPECT_TRUE(manager.HasFailed(""));
}

TEST_F(CtiManagerTest, AnUnparsableConfigurationFallsBackToTheSearch) {
  if (Testing::kWindows) {
    GTEST_SKIP() << "Windows' own INI reader accepts any text as INI";
  }
  m_folder.LinkProducer("A.cti");
  m_folder.WriteConfig("[User\nCtiNames=Z.cti\n");
  CCtiManager manager(m_folder.Directory());
  EXPECT_FALSE(manager.ConfigurationLoaded());
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("A.cti"));
}

TEST_F(CtiManagerTest, AProducerIsLoadedOnceAndKeptUntilTheManagerGoes) {
  m_folder.LinkProducer("A.cti");
  {
    CCtiManager manager(m_folder.Directory());
    EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 0u) << "producers load lazily";
    CCti* first = manager.GetOrLoadProducer("A.cti");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(manager.GetOrLoadProducer("A.cti"), first);
    EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 1u);
    EXPECT_EQ(dynamic_cast<CGevCti*>(first), nullptr);
    EXPECT_EQ(m_fake.State().CountCalls("GCCloseLib"), 0u);
  }
  EXPECT_EQ(m_fake.State().CountCalls("GCCloseLib"), 1u);
  EXPECT_EQ(m_fake.State().CountCalls("TLClose"), 1u);
}

TEST_F(CtiManagerTest, AFailedNameIsNeverTriedAgain) {
  CCtiManager manager(m_folder.Directory());
  EXPECT_EQ(manager.GetOrLoadProducer("Late.cti"), nullptr);
  EXPECT_TRUE(manager.HasFailed("Late.cti"));
  // The file appears afterwards: the manager still does not load it.
  m_folder.LinkProducer("Late.cti");
  EXPECT_EQ(manager.GetOrLoadProducer("Late.cti"), nullptr);
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 0u);
  // A fresh manager does.
  CCtiManager fresh(m_folder.Directory());
  EXPECT_NE(fresh.GetOrLoadProducer("Late.cti"), nullptr);
}

TEST_F(CtiManagerTest, AProducerThatFailsToOpenIsUnloadedAndRemembered) {
  m_folder.LinkProducer("Broken.cti");
  m_fake.State().failure = Testing::EFakeFailure::TLOpen;
  CCtiManager manager(m_folder.Directory());
  EXPECT_EQ(manager.GetOrLoadProducer("Broken.cti"), nullptr);
  EXPECT_EQ(manager.GetOrLoadProducer("Broken.cti"), nullptr);
  EXPECT_EQ(m_fake.State().CountCalls("GCInitLib"), 1u);
  EXPECT_EQ(m_fake.State().CountCalls("GCCloseLib"), 1u);
}

TEST_F(CtiManagerTest, GEVTLInTheNameSelectsTheGigEProducerWhateverTheExtension) {
  m_folder.LinkProducer("MyGEVTL.cti");
  m_folder.LinkProducer("GEVTL_odd.bin");
  // Windows file names ignore case, so there the lower-case name cannot sit beside the first one.
  const std::string lowerCaseName = Testing::kWindows ? "other-mygevtl.cti" : "mygevtl.cti";
  m_folder.LinkProducer(lowerCaseName);
  CCtiManager manager(m_folder.Directory());
  EXPECT_NE(dynamic_cast<CGevCti*>(manager.GetOrLoadProducer("MyGEVTL.cti")), nullptr);
  EXPECT_NE(dynamic_cast<CGevCti*>(manager.GetOrLoadProducer("GEVTL_odd.bin")), nullptr);
  CCti* lowerCase = manager.GetOrLoadProducer(lowerCaseName);
  ASSERT_NE(lowerCase, nullptr);
  EXPECT_EQ(dynamic_cast<CGevCti*>(lowerCase), nullptr);
}

TEST_F(CtiManagerTest, ProducersGetPortsWithNodeMapSupport) {
  m_folder.LinkProducer("A.cti");
  CCtiManager manager(m_folder.Directory());
  CCti* producer = manager.GetOrLoadProducer("A.cti");
  ASSERT_NE(producer, nullptr);
  ASSERT_NE(producer->SystemModule(), nullptr);
  EXPECT_NE(producer->SystemModule()->Xml(), nullptr);
  ASSERT_EQ(producer->InterfaceCount(), 1u);
  EXPECT_NE(producer->Interface(0)->Xml(), nullptr);
}

TEST_F(CtiManagerTest, FindBySerialLooksThroughEveryLoadedProducer) {
  CFakeProducerModule second("TalvirFakeNoInfo.cti");
  second.State().interfaces.push_back(MakeFakeInterface("if0", "U3V", {MakeFakeDevice("u0", "U-SN")}));
  m_folder.LinkProducer("A.cti");
  m_folder.LinkProducer("B.cti", "TalvirFakeNoInfo.cti");
  CCtiManager manager(m_folder.Directory());
  EXPECT_EQ(manager.FindBySerial("U-SN"), nullptr);
  manager.GetOrLoadProducer("A.cti")->Discover(nullptr);
  manager.GetOrLoadProducer("B.cti")->Discover(nullptr);
  ICameraInfo* found = manager.FindBySerial("U-SN");
  ASSERT_NE(found, nullptr);
  EXPECT_STREQ(found->GetDeviceID(), "u0");
  found->Destroy();
  found = manager.FindBySerial("SN1");
  ASSERT_NE(found, nullptr);
  found->Destroy();
  EXPECT_EQ(manager.FindBySerial("SN9"), nullptr);
}

}  // namespace
}  // namespace TALVIR

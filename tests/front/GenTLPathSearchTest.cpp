// The opt-in search of the GENICAM_GENTL64_PATH folders, and the opt-in skipping of empty interfaces, as the
// manager applies them.
#include "front/CtiManager.h"

#include "front/Discovery.h"
#include "gentl/GevCti.h"

#include "FakeProducerFolder.h"

#include "support/ScopedEnvironmentVariable.h"
#include "support/TestSystem.h"

#include <talvir/CustomInfo.h>
#include <talvir/ICameraInfo.h>
#include <talvir/TLType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TALVIR {
namespace {

using Testing::CFakeProducerFolder;
using Testing::CFakeProducerModule;
using ::testing::ElementsAre;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;
using ::testing::UnorderedElementsAre;

constexpr const char* kVariable = "GENICAM_GENTL64_PATH";

// Sets the variable for one test and restores what was there.
class CScopedGenTLPath : public Testing::CScopedEnvironmentVariable {
public:
  explicit CScopedGenTLPath(const std::string& value) : CScopedEnvironmentVariable(kVariable, value) {}
};

// A search-path value: the folders joined with this platform's separator.
std::string PathList(const std::vector<std::string>& folders) {
  std::string value;
  for (size_t i = 0; i < folders.size(); ++i) {
    value += (i == 0 ? "" : std::string(1, Testing::kPathListSeparator)) + folders[i];
  }
  return value;
}

std::vector<std::string> SerialsAndGiveBack(std::list<ICameraInfo*> records) {
  std::vector<std::string> serials;
  for (ICameraInfo* record : records) {
    serials.emplace_back(record->GetSerialNumber());
    record->Destroy();
  }
  return serials;
}

class GenTLPathSearchTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN-beside")}));
    m_noInfo.State().interfaces.push_back(MakeFakeInterface("if0", "U3V", {MakeFakeDevice("u0", "SN-elsewhere")}));
    m_library.LinkProducer("Beside.cti");
    // A different build, so that the loader sees a different file.
    m_installed.LinkProducer("Installed.cti", "TalvirFakeNoInfo.cti");
    m_installed.LinkProducer("Installed.ctix", "TalvirFakeNoInfo.cti");
    std::filesystem::create_directory(m_installed.Path() / "folder.cti");
  }

  std::string InstalledPath() const { return m_installed.Directory() + "Installed.cti"; }

  CFakeProducerModule m_fake;
  CFakeProducerModule m_noInfo{"TalvirFakeNoInfo.cti"};
  CFakeProducerFolder m_library;
  CFakeProducerFolder m_installed;
};

TEST_F(GenTLPathSearchTest, ByDefaultTheVariableIsIgnored) {
  CScopedGenTLPath path(m_installed.Path().string());
  CCtiManager withoutFile(m_library.Directory());
  EXPECT_THAT(withoutFile.ProducerNames(), ElementsAre("Beside.cti"));
  m_library.WriteConfig("[User]\nCtiNames=Beside.cti\nSearchGenTLPath=0\n");
  CCtiManager switchedOff(m_library.Directory());
  EXPECT_THAT(switchedOff.ProducerNames(), ElementsAre("Beside.cti"));
}

TEST_F(GenTLPathSearchTest, TheSwitchAddsTheVariablesFoldersWithTheSameRules) {
  CScopedGenTLPath path(m_installed.Path().string());
  m_library.WriteConfig("[User]\nSearchGenTLPath=1\n");
  CCtiManager manager(m_library.Directory());
  // Without CtiNames the folder beside the library is still searched; the ctix file and the folder are not taken.
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("Beside.cti", InstalledPath()));
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, nullptr)), ElementsAre("SN-beside", "SN-elsewhere"));
  CCti* installed = manager.GetOrLoadProducer(InstalledPath());
  ASSERT_NE(installed, nullptr);
  EXPECT_EQ(installed->FileName(), InstalledPath());
}

TEST_F(GenTLPathSearchTest, ConfiguredNamesComeFirstThenTheVariablesFolders) {
  CScopedGenTLPath path(m_installed.Path().string());
  m_library.WriteConfig("[User]\nCtiNames=Missing.cti;Beside.cti\nSearchGenTLPath=yes\n");
  CCtiManager manager(m_library.Directory());
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("Missing.cti", "Beside.cti", InstalledPath()));
}

TEST_F(GenTLPathSearchTest, EachFileIsTakenOnceWhateverTheFoldersAndLinks) {
  CFakeProducerFolder links;
  // A link to the producer beside the library, and the same folder twice: nothing new. Only a symbolic link names
  // the same file for the manager (a hard link is a file of its own), so where none can be made (Windows without
  // the privilege, Wine) the links folder stays empty and the folders are checked alone.
  if (Testing::CanMakeSymbolicLinks()) {
    std::filesystem::create_symlink(m_library.Path() / "Beside.cti", links.Path() / "AlsoBeside.cti");
  }
  CScopedGenTLPath path(PathList({"", m_installed.Path().string(), "", m_installed.Directory(),
                                  m_library.Path().string(), links.Path().string(), "/no/such/folder"}));
  m_library.WriteConfig("[User]\nSearchGenTLPath=on\n");
  CCtiManager manager(m_library.Directory());
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("Beside.cti", InstalledPath()));
  EXPECT_THAT(CCtiManager::GenTLPathFolders(),
              ElementsAre(m_installed.Path().string(), m_installed.Directory(), m_library.Path().string(),
                          links.Path().string(), "/no/such/folder"));
}

TEST_F(GenTLPathSearchTest, GEVTLInTheFileNameNotInTheFolderSelectsTheGigEProducer) {
  CFakeProducerFolder gigeFolder;
  std::filesystem::create_directory(gigeFolder.Path() / "VendorGEVTL");
  Testing::LinkFile(CFakeProducerModule::Directory() + "TalvirFakeNoInfo.cti",
                    gigeFolder.Path() / "VendorGEVTL" / "plain.cti");
  CFakeProducerFolder other;
  other.LinkProducer("VendorGEVTL.cti");
  CScopedGenTLPath path(PathList({(gigeFolder.Path() / "VendorGEVTL").string(), other.Path().string()}));
  m_library.WriteConfig("[User]\nCtiNames=\nSearchGenTLPath=1\n");
  CCtiManager manager(m_library.Directory());
  const std::vector<std::string> names = manager.ProducerNames();
  ASSERT_EQ(names.size(), 3u);
  EXPECT_EQ(names[0], "");
  CCti* plain = manager.GetOrLoadProducer(names[1]);
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(dynamic_cast<CGevCti*>(plain), nullptr);
  CCti* gige = manager.GetOrLoadProducer(names[2]);
  EXPECT_NE(dynamic_cast<CGevCti*>(gige), nullptr);
  CCti* loaded = nullptr;
  const ProducerReport report = manager.ProducerStatus(names[2], loaded);
  EXPECT_EQ(loaded, gige);
  EXPECT_EQ(report.state, ProducerState::Loaded);
  EXPECT_EQ(report.path, other.Directory() + "VendorGEVTL.cti");
  EXPECT_EQ(report.origin, "GENICAM_GENTL64_PATH");
}

TEST_F(GenTLPathSearchTest, AnUnsetOrEmptyVariableAddsNothing) {
  m_library.WriteConfig("[User]\nSearchGenTLPath=1\n");
  {
    CScopedGenTLPath path("");
    path.Set(std::nullopt);
    CCtiManager manager(m_library.Directory());
    EXPECT_THAT(manager.ProducerNames(), ElementsAre("Beside.cti"));
  }
  CScopedGenTLPath empty(PathList({"", "", ""}));
  CCtiManager manager(m_library.Directory());
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("Beside.cti"));
}

TEST_F(GenTLPathSearchTest, RecordsFromTheVariablesFoldersNameTheirProducerByPath) {
  CScopedGenTLPath path(m_installed.Path().string());
  m_library.WriteConfig("[User]\nCtiNames=\nSearchGenTLPath=1\n");
  CCtiManager manager(m_library.Directory());
  std::list<ICameraInfo*> records = DiscoverByName(manager, nullptr);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_STREQ(records.front()->GetCustomInfo(CustomInfo::ProducerFile), InstalledPath().c_str());
  SerialsAndGiveBack(std::move(records));
}

class SkipEmptyInterfacesTest : public ::testing::Test {
protected:
  void SetUp() override {
    // Two network cards: a camera behind the first, none behind the second.
    m_fake.State().interfaces.push_back(MakeFakeInterface("nic0", "GEV", {MakeFakeDevice("d0", "SN0")}));
    m_fake.State().interfaces.push_back(MakeFakeInterface("nic1", "GEV", {}));
    m_folder.LinkProducer("Two.cti");
  }
  CFakeProducerModule m_fake;
  CFakeProducerFolder m_folder;
};

TEST_F(SkipEmptyInterfacesTest, ByDefaultTheProducerListsNothing) {
  CCtiManager withoutFile(m_folder.Directory());
  EXPECT_TRUE(SerialsAndGiveBack(DiscoverByName(withoutFile, nullptr)).empty());
  m_folder.WriteConfig("[User]\nCtiNames=Two.cti\nSkipEmptyInterfaces=0\n");
  CCtiManager switchedOff(m_folder.Directory());
  EXPECT_TRUE(SerialsAndGiveBack(DiscoverByName(switchedOff, nullptr)).empty());
}

TEST_F(SkipEmptyInterfacesTest, TheSwitchListsTheCamerasOfTheOtherInterfaces) {
  m_folder.WriteConfig("[User]\nSkipEmptyInterfaces=1\n");
  CCtiManager manager(m_folder.Directory());
  // Only a switch in the file: the folder is still searched.
  EXPECT_THAT(manager.ProducerNames(), ElementsAre("Two.cti"));
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByName(manager, nullptr)), ElementsAre("SN0"));
  EXPECT_THAT(SerialsAndGiveBack(DiscoverByTLType(manager, TLType::GEV)), ElementsAre("SN0"));
}

}  // namespace
}  // namespace TALVIR

#include "cl/CLProtocolTemplate.h"

#include "platform/SelfPath.h"

#include "support/TempDirectory.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace TALVIR {
namespace {

// Runs the test from a fresh temporary folder and returns to the previous one afterwards.
class CLProtocolTemplateTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_previous = std::filesystem::current_path();
    m_folder = std::make_unique<Testing::CTempDirectory>();
    std::filesystem::current_path(m_folder->Path());
  }
  void TearDown() override {
    // Back first: a folder that is the current one cannot be removed on every system.
    std::filesystem::current_path(m_previous);
    m_folder.reset();
  }

  // The driver file of this platform in the driver folder `platformFolder` under "CLProtocol" of the current folder.
  static void PlaceDriver(const std::string& platformFolder) {
    std::filesystem::create_directories("CLProtocol/" + platformFolder);
    std::ofstream("CLProtocol/" + platformFolder + "/" + Testing::ModuleFileName("TavCLProtocolGenCP")) << "x";
  }
  // The template's part after the library's folder, with the driver folder "./" (beside) or "../" (parent).
  static std::string TemplateAfter(const std::string& folder) {
    return folder + "CLProtocol/" + Testing::CLProtocolPlatformFolder() + "#" +
           Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02";
  }

  std::filesystem::path m_previous;
  std::unique_ptr<Testing::CTempDirectory> m_folder;
};

TEST_F(CLProtocolTemplateTest, ModuleDirectoryIsOurOwnFolderWithItsSeparator) {
  const std::string directory = GetModuleDirectory();
  ASSERT_FALSE(directory.empty());
  EXPECT_EQ(directory.back(), Testing::kPathSeparator);
  EXPECT_EQ(directory, Platform::OwnModuleDirectory());
}

TEST_F(CLProtocolTemplateTest, WithoutTheDriverBesideUsTheParentFolderIsNamed) {
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(), GetModuleDirectory() + TemplateAfter("../"));
}

TEST_F(CLProtocolTemplateTest, TheDriverFoundFromTheCurrentFolderSelectsTheFolderBesideUs) {
  PlaceDriver(Testing::CLProtocolPlatformFolder());
  // Rooted at the library's folder, not at the current folder where the driver was found.
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(), GetModuleDirectory() + TemplateAfter("./"));
}

TEST_F(CLProtocolTemplateTest, AFolderOfTheWrongPlatformDoesNotCount) {
  std::filesystem::create_directories("CLProtocol/Win64_x64");
  std::ofstream("CLProtocol/Win64_x64/libTavCLProtocolGenCP.so") << "x";
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(), GetModuleDirectory() + TemplateAfter("../"));
}

}  // namespace
}  // namespace TALVIR

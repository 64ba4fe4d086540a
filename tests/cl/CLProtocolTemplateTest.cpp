#include "cl/CLProtocolTemplate.h"

#include "platform/SelfPath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <stdlib.h>
#include <unistd.h>

namespace TALVIR {
namespace {

// Runs the test from a fresh temporary folder and returns to the previous one afterwards.
class CLProtocolTemplateTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_previous = std::filesystem::current_path();
    std::string pattern = (std::filesystem::temp_directory_path() / "talvir-cl-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    m_folder = pattern;
    std::filesystem::current_path(m_folder);
  }
  void TearDown() override {
    std::filesystem::current_path(m_previous);
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }

  std::filesystem::path m_previous;
  std::filesystem::path m_folder;
};

TEST_F(CLProtocolTemplateTest, ModuleDirectoryIsOurOwnFolderWithItsSeparator) {
  const std::string directory = GetModuleDirectory();
  ASSERT_FALSE(directory.empty());
  EXPECT_EQ(directory.back(), '/');
  EXPECT_EQ(directory, Platform::OwnModuleDirectory());
}

TEST_F(CLProtocolTemplateTest, WithoutTheDriverBesideUsTheParentFolderIsNamed) {
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(),
            GetModuleDirectory() + "../CLProtocol/Linux64_x64#libTavCLProtocolGenCP.so#KORIX#GENCP02");
}

TEST_F(CLProtocolTemplateTest, TheDriverFoundFromTheCurrentFolderSelectsTheFolderBesideUs) {
  std::filesystem::create_directories("CLProtocol/Linux64_x64");
  std::ofstream("CLProtocol/Linux64_x64/libTavCLProtocolGenCP.so") << "x";
  // Rooted at the library's folder, not at the current folder where the driver was found.
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(),
            GetModuleDirectory() + "./CLProtocol/Linux64_x64#libTavCLProtocolGenCP.so#KORIX#GENCP02");
}

TEST_F(CLProtocolTemplateTest, AFolderOfTheWrongPlatformDoesNotCount) {
  std::filesystem::create_directories("CLProtocol/Win64_x64");
  std::ofstream("CLProtocol/Win64_x64/libTavCLProtocolGenCP.so") << "x";
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(),
            GetModuleDirectory() + "../CLProtocol/Linux64_x64#libTavCLProtocolGenCP.so#KORIX#GENCP02");
}

}  // namespace
}  // namespace TALVIR

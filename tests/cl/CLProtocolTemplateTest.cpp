#include "cl/CLProtocolTemplate.h"

#include "platform/SelfPath.h"

#include "../platform/TempDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace TALVIR {
namespace {

// The driver's folder and file on this platform, and the folder of the other platform.
#ifdef _WIN32
constexpr const char* kPlatformFolder = "Win64_x64";
constexpr const char* kDriverFile = "TavCLProtocolGenCP.dll";
constexpr const char* kOtherPlatformFolder = "Linux64_x64";
#else
constexpr const char* kPlatformFolder = "Linux64_x64";
constexpr const char* kDriverFile = "libTavCLProtocolGenCP.so";
constexpr const char* kOtherPlatformFolder = "Win64_x64";
#endif

std::string Expected(const char* relativeFolder) {
  return GetModuleDirectory() + relativeFolder + kPlatformFolder + "#" + kDriverFile + "#KORIX#GENCP02";
}

// Runs the test from a fresh temporary folder and returns to the previous one afterwards.
class CLProtocolTemplateTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_previous = std::filesystem::current_path();
    m_folder = std::make_unique<Testing::CTempDirectory>();
    std::filesystem::current_path(m_folder->Path());
  }
  void TearDown() override {
    std::filesystem::current_path(m_previous);
    m_folder.reset();
  }

  static void PutDriver(const std::string& platformFolder) {
    std::filesystem::create_directories(std::filesystem::path("CLProtocol") / platformFolder);
    std::ofstream(std::filesystem::path("CLProtocol") / platformFolder / kDriverFile) << "x";
  }

  std::filesystem::path m_previous;
  std::unique_ptr<Testing::CTempDirectory> m_folder;
};

TEST_F(CLProtocolTemplateTest, ModuleDirectoryIsOurOwnFolderWithItsSeparator) {
  const std::string directory = GetModuleDirectory();
  ASSERT_FALSE(directory.empty());
#ifdef _WIN32
  EXPECT_EQ(directory.back(), '\\');
#else
  EXPECT_EQ(directory.back(), '/');
#endif
  EXPECT_EQ(directory, Platform::OwnModuleDirectory());
}

TEST_F(CLProtocolTemplateTest, WithoutTheDriverBesideUsTheParentFolderIsNamed) {
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(), Expected("../CLProtocol/"));
}

TEST_F(CLProtocolTemplateTest, TheDriverFoundFromTheCurrentFolderSelectsTheFolderBesideUs) {
  PutDriver(kPlatformFolder);
  // Rooted at the library's folder, not at the current folder where the driver was found.
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(), Expected("./CLProtocol/"));
}

TEST_F(CLProtocolTemplateTest, AFolderOfTheWrongPlatformDoesNotCount) {
  PutDriver(kOtherPlatformFolder);
  EXPECT_EQ(GetCLProtocolDeviceIDTemplate(), Expected("../CLProtocol/"));
}

}  // namespace
}  // namespace TALVIR

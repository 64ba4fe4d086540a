#include "platform/CLProtocolLocation.h"

#include "support/TempDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace TALVIR::Platform {
namespace {

TEST(CLProtocolPlatformFolder, NamesThisPlatformsDriverFolder) {
#ifdef _WIN32
  EXPECT_STREQ(CLProtocolPlatformFolder(), "Win64_x64");
#else
  EXPECT_STREQ(CLProtocolPlatformFolder(), "Linux64_x64");
#endif
}

TEST(IsFoundBySystemSearch, FindsARelativePathFromTheCurrentFolderOnly) {
  Testing::CTempDirectory folder;
  std::filesystem::create_directories(folder.Path() / "CLProtocol" / "Here");
  std::ofstream(folder.Path() / "CLProtocol" / "Here" / "driver.dll") << "x";
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const bool found = IsFoundBySystemSearch("./CLProtocol/Here/driver.dll");
  const bool otherFile = IsFoundBySystemSearch("./CLProtocol/Here/other.dll");
  const bool otherFolder = IsFoundBySystemSearch("./CLProtocol/There/driver.dll");
  std::filesystem::current_path(previous);
  const bool fromElsewhere = IsFoundBySystemSearch("./CLProtocol/Here/driver.dll");
  EXPECT_TRUE(found);
  EXPECT_FALSE(otherFile);
  EXPECT_FALSE(otherFolder);
  EXPECT_FALSE(fromElsewhere) << "the search starts from the current folder, not from where the file once was";
}

}  // namespace
}  // namespace TALVIR::Platform

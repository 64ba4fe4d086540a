#include "platform/DirectoryListing.h"
#include "platform/Environment.h"
#include "platform/ModuleNames.h"
#include "platform/SelfPath.h"
#include "platform/SystemError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace GenICam {
namespace Platform {
namespace {

using ::testing::ElementsAre;

// A fresh folder under the system's temporary folder, removed at the end of the test.
class CScratchFolder {
public:
  CScratchFolder() {
    std::random_device seed;
    m_path = std::filesystem::temp_directory_path() /
             ("talvir-genicam-" + std::to_string(seed()) + std::to_string(seed()));
    std::filesystem::create_directory(m_path);
  }
  ~CScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  CScratchFolder(const CScratchFolder&) = delete;
  CScratchFolder& operator=(const CScratchFolder&) = delete;
  const std::filesystem::path& Path() const { return m_path; }
  void Touch(const std::string& name) const { std::ofstream(m_path / name) << "x"; }

private:
  std::filesystem::path m_path;
};

TEST(ListFiles, KeepsFilesWithThePrefixAndSuffixSortedAndSkipsFolders) {
  CScratchFolder folder;
  const std::string suffix = ModuleFileSuffix();
  folder.Touch("clserb" + suffix);
  folder.Touch("clsera" + suffix);
  folder.Touch("clsera" + suffix + "x");
  folder.Touch("other" + suffix);
  std::filesystem::create_directory(folder.Path() / ("clserdir" + suffix));
  EXPECT_THAT(ListFiles(folder.Path().string(), "clser", suffix), ElementsAre("clsera" + suffix, "clserb" + suffix));
  EXPECT_THAT(ListFiles(folder.Path().string() + kPathSeparator, "clser", suffix),
              ElementsAre("clsera" + suffix, "clserb" + suffix))
      << "a trailing separator is harmless";
  EXPECT_TRUE(ListFiles((folder.Path() / "missing").string(), "", suffix).empty());
}

TEST(ListFiles, ComparesPrefixAndSuffixExactly) {
  // The Windows wildcard ignores case; the listing does not, on either platform.
  CScratchFolder folder;
  folder.Touch("CLSERX.dll");
  folder.Touch("clsery.DLL");
  folder.Touch("clserz.dll");
  EXPECT_THAT(ListFiles(folder.Path().string(), "clser", ".dll"), ElementsAre("clserz.dll"));
}

TEST(ModuleNames, NameThisPlatformsDriverFolderAndModuleEnding) {
#ifdef _WIN32
  EXPECT_STREQ(CLProtocolPlatformFolder(), "Win64_x64");
  EXPECT_STREQ(ModuleFileSuffix(), ".dll");
  EXPECT_EQ(kPathSeparator, '\\');
#else
  EXPECT_STREQ(CLProtocolPlatformFolder(), "Linux64_x64");
  EXPECT_STREQ(ModuleFileSuffix(), ".so");
  EXPECT_EQ(kPathSeparator, '/');
#endif
}

TEST(SelfPath, DirectoryIsThePathCutAfterItsLastSeparator) {
  const std::string path = OwnModulePath();
  const std::string directory = OwnModuleDirectory();
  ASSERT_FALSE(directory.empty());
  EXPECT_EQ(directory.back(), kPathSeparator);
  EXPECT_EQ(directory, path.substr(0, path.find_last_of(kPathSeparator) + 1));
  EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
}

TEST(Environment, SetReadAndRemoveAVariable) {
  SetEnvironmentVariable("TALVIR_GENICAM_TEST_VALUE", "x=1");
  EXPECT_EQ(EnvironmentVariable("TALVIR_GENICAM_TEST_VALUE"), std::optional<std::string>("x=1"));
  SetEnvironmentVariable("TALVIR_GENICAM_TEST_VALUE", "");
  EXPECT_FALSE(EnvironmentVariable("TALVIR_GENICAM_TEST_VALUE").has_value()) << "an empty value removes it";
}

TEST(Environment, PathListsSplitAtThePlatformsSeparators) {
#ifdef _WIN32
  SetEnvironmentVariable("TALVIR_GENICAM_TEST_LIST", "C:\\drivers;;D:\\more;");
  EXPECT_THAT(EnvironmentPathList("TALVIR_GENICAM_TEST_LIST"), ElementsAre("C:\\drivers", "D:\\more"))
      << "a drive letter's colon separates nothing";
#else
  SetEnvironmentVariable("TALVIR_GENICAM_TEST_LIST", "/a:/b;;/c:");
  EXPECT_THAT(EnvironmentPathList("TALVIR_GENICAM_TEST_LIST"), ElementsAre("/a", "/b", "/c"));
#endif
  SetEnvironmentVariable("TALVIR_GENICAM_TEST_LIST", "");
  EXPECT_TRUE(EnvironmentPathList("TALVIR_GENICAM_TEST_LIST").empty());
}

TEST(SystemError, GivesTextForACodeAndAFallbackForAnUnknownOne) {
#ifdef _WIN32
  const unsigned long notFound = 2;  // ERROR_FILE_NOT_FOUND
#else
  const unsigned long notFound = 2;  // ENOENT
#endif
  const std::string text = SystemErrorText(notFound);
  EXPECT_FALSE(text.empty());
  EXPECT_NE(text.back(), '\n');
  EXPECT_FALSE(SystemErrorText(0x7FFFFFF0ul).empty());
}

}  // namespace
}  // namespace Platform
}  // namespace GenICam

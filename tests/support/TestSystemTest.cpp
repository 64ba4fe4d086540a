// The test system itself: the tests of every area rely on it to clean up, to restore the environment and to name
// the build's files, so each of its promises is checked here on the platform it runs on.
#include "support/TestSystem.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace TALVIR::Testing {
namespace {

std::string ReadAll(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string text(static_cast<size_t>(std::filesystem::file_size(file)), '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(in.gcount()));
  return text;
}

TEST(TempDirectory, IsAFreshEmptyFolderRemovedWithItsContents) {
  std::filesystem::path kept;
  {
    CTempDirectory first;
    CTempDirectory second;
    kept = first.Path();
    EXPECT_NE(first.Path(), second.Path());
    ASSERT_TRUE(std::filesystem::is_directory(first.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(first.Path()));
    std::filesystem::create_directories(first.Path() / "a" / "b");
    first.WriteFile("a/b/file.txt", "x");
  }
  EXPECT_FALSE(std::filesystem::exists(kept));
}

TEST(TempDirectory, WritesFilesByteForByteAndNamesItselfWithASeparator) {
  CTempDirectory folder;
  const std::string bytes("line\r\nnext\n\0end", 15);
  const std::filesystem::path file = folder.WriteFile("data.bin", bytes);
  EXPECT_EQ(file, folder.Path() / "data.bin");
  EXPECT_EQ(ReadAll(file), bytes);
  ASSERT_FALSE(folder.Directory().empty());
  EXPECT_EQ(folder.Directory().back(), kPathSeparator);
  EXPECT_EQ(folder.Directory(), folder.Path().string() + kPathSeparator);
}

TEST(Environment, SetsReadsAndRemovesIncludingAnEmptyValue) {
  const std::string name = "TALVIR_TEST_SUPPORT_VALUE";
  SetEnvironmentValue(name, "a=b;c");
  EXPECT_EQ(EnvironmentValue(name), std::optional<std::string>("a=b;c"));
  SetEnvironmentValue(name, "");
  EXPECT_EQ(EnvironmentValue(name), std::optional<std::string>("")) << "set but empty differs from unset";
  UnsetEnvironmentValue(name);
  EXPECT_FALSE(EnvironmentValue(name).has_value());
}

TEST(ScopedEnvironmentVariable, PutsBackTheValueOrTheAbsenceFromBefore) {
  const std::string name = "TALVIR_TEST_SUPPORT_SCOPED";
  UnsetEnvironmentValue(name);
  {
    CScopedEnvironmentVariable scoped(name, std::string("first"));
    EXPECT_EQ(EnvironmentValue(name), std::optional<std::string>("first"));
    scoped.Set(std::string("second"));
    EXPECT_EQ(EnvironmentValue(name), std::optional<std::string>("second"));
  }
  EXPECT_FALSE(EnvironmentValue(name).has_value());

  SetEnvironmentValue(name, "outer");
  {
    CScopedEnvironmentVariable removed(name, std::nullopt);
    EXPECT_FALSE(EnvironmentValue(name).has_value());
  }
  EXPECT_EQ(EnvironmentValue(name), std::optional<std::string>("outer"));
  UnsetEnvironmentValue(name);
}

TEST(FileNames, NameTheFilesOfThisBuild) {
  EXPECT_EQ(ThisProgramPath().filename().string(), ProgramFileName("test_support_tests"));
  EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::path(TALVIR_BIN_DIR) / ModuleFileName("Talvir")))
      << ModuleFileName("Talvir");
  EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::path(TALVIR_BIN_DIR) / ModuleFileName("genicam")))
      << ModuleFileName("genicam");
  EXPECT_NE(ModuleFileName("Talvir"), ModuleFileName("genicam"));
  EXPECT_STRNE(CLProtocolPlatformFolder(), OtherCLProtocolPlatformFolder());
}

TEST(LinkFile, TheLinkNamesTheSameFile) {
  CTempDirectory folder;
  const std::filesystem::path target = folder.WriteFile("target.cti", "before");
  LinkFile(target, folder.Path() / "link.cti");
  EXPECT_TRUE(std::filesystem::equivalent(target, folder.Path() / "link.cti"));
  std::ofstream(target, std::ios::binary) << "after";
  EXPECT_EQ(ReadAll(folder.Path() / "link.cti"), "after");
  EXPECT_THROW(LinkFile(target, folder.Path() / "link.cti"), std::runtime_error) << "the link name is taken";
}

TEST(RunProgram, GivesTheOutputAndTheExitStatus) {
  const SProgramRun listing =
      RunProgram("\"" + ThisProgramPath().string() + "\" --gtest_list_tests --gtest_filter=RunProgram.*");
  EXPECT_EQ(listing.status, 0);
  EXPECT_THAT(listing.output, ::testing::HasSubstr("GivesTheOutputAndTheExitStatus"));
  EXPECT_THAT(listing.output, ::testing::Not(::testing::HasSubstr("TheLinkNamesTheSameFile")));
  EXPECT_EQ(RunProgram("exit 3").status, 3);
}

}  // namespace
}  // namespace TALVIR::Testing

#include "platform/FileStatus.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace TALVIR::Platform {
namespace {

TEST(PathExists, SeesFilesAndFoldersButNotMissingPaths) {
  Testing::CTempDirectory folder;
  const auto file = folder.WriteFile("present.txt", "x");
  EXPECT_TRUE(PathExists(file.string()));
  EXPECT_TRUE(PathExists(folder.Path().string()));
  EXPECT_FALSE(PathExists((folder.Path() / "absent.txt").string()));
  EXPECT_FALSE(PathExists(""));
}

TEST(PathExists, CountsRelativePathsFromTheCurrentFolder) {
  Testing::CTempDirectory folder;
  folder.WriteFile("relative.txt", "x");
  char previous[4096] = {};
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(folder.Path().c_str()), 0);
  const bool found = PathExists("relative.txt");
  const bool missing = PathExists("other.txt");
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_TRUE(found);
  EXPECT_FALSE(missing);
}

TEST(CanonicalPath, ResolvesLinksDotsAndDoubledSeparators) {
  Testing::CTempDirectory folder;
  const auto file = folder.WriteFile("target.cti", "x");
  std::filesystem::create_directory(folder.Path() / "sub");
  std::filesystem::create_symlink(file, folder.Path() / "sub" / "link.cti");
  const std::optional<std::string> direct = CanonicalPath(file.string());
  ASSERT_TRUE(direct.has_value());
  EXPECT_EQ(direct->front(), '/');
  EXPECT_EQ(CanonicalPath((folder.Path() / "sub" / "link.cti").string()), direct);
  EXPECT_EQ(CanonicalPath(folder.Path().string() + "//sub/../target.cti"), direct);
  EXPECT_NE(CanonicalPath((folder.Path() / "sub").string()), direct);
}

TEST(CanonicalPath, GivesNothingForMissingPaths) {
  Testing::CTempDirectory folder;
  EXPECT_FALSE(CanonicalPath((folder.Path() / "absent.cti").string()).has_value());
  EXPECT_FALSE(CanonicalPath("").has_value());
}

}  // namespace
}  // namespace TALVIR::Platform

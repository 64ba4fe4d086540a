#include "platform/FileStatus.h"

#include "support/TempDirectory.h"
#include "support/Skips.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>

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
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const bool found = PathExists("relative.txt");
  const bool missing = PathExists("other.txt");
  std::filesystem::current_path(previous);
  EXPECT_TRUE(found);
  EXPECT_FALSE(missing);
}

TEST(CanonicalPath, ResolvesDotsAndDoubledSeparators) {
  Testing::CTempDirectory folder;
  const auto file = folder.WriteFile("target.cti", "x");
  std::filesystem::create_directory(folder.Path() / "sub");
  const std::optional<std::string> direct = CanonicalPath(file.string());
  ASSERT_TRUE(direct.has_value());
  EXPECT_TRUE(std::filesystem::path(*direct).is_absolute()) << *direct;
  if (!Testing::kWindows) {
    EXPECT_EQ(direct->front(), '/');
  }
  EXPECT_EQ(CanonicalPath(folder.Path().string() + "//sub/../target.cti"), direct);
  EXPECT_EQ(CanonicalPath((folder.Path() / "sub" / ".." / "." / "target.cti").string()), direct);
  EXPECT_NE(CanonicalPath((folder.Path() / "sub").string()), direct);
}

TEST(CanonicalPath, ResolvesSymbolicLinks) {
  TALVIR_SKIP_WITHOUT_SYMBOLIC_LINKS();
  Testing::CTempDirectory folder;
  const auto file = folder.WriteFile("target.cti", "x");
  std::filesystem::create_directory(folder.Path() / "sub");
  std::filesystem::create_symlink(file, folder.Path() / "sub" / "link.cti");
  const std::optional<std::string> direct = CanonicalPath(file.string());
  ASSERT_TRUE(direct.has_value());
  EXPECT_EQ(CanonicalPath((folder.Path() / "sub" / "link.cti").string()), direct);
}

TEST(CanonicalPath, GivesNothingForMissingPaths) {
  Testing::CTempDirectory folder;
  EXPECT_FALSE(CanonicalPath((folder.Path() / "absent.cti").string()).has_value());
  EXPECT_FALSE(CanonicalPath("").has_value());
}

}  // namespace
}  // namespace TALVIR::Platform

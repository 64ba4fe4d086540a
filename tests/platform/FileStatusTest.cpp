#include "platform/FileStatus.h"

#include "support/TempDirectory.h"

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
#ifdef _WIN32
  // A drive path such as "C:\...\target.cti", without the "\\?\" prefix of the system's final names.
  ASSERT_GE(direct->size(), 3u);
  EXPECT_EQ(direct->substr(1, 2), ":\\") << *direct;
  EXPECT_EQ(CanonicalPath(folder.Path().string() + "\\\\sub\\..\\target.cti"), direct);
  EXPECT_EQ(CanonicalPath(folder.Path().string() + "/sub/../target.cti"), direct) << "either separator";
#else
  EXPECT_EQ(direct->front(), '/');
  EXPECT_EQ(CanonicalPath(folder.Path().string() + "//sub/../target.cti"), direct);
#endif
  EXPECT_NE(CanonicalPath((folder.Path() / "sub").string()), direct);
}

TEST(CanonicalPath, ResolvesLinks) {
#ifdef _WIN32
  GTEST_SKIP() << "symbolic links need a privilege on Windows that test runs do not have";
#else
  Testing::CTempDirectory folder;
  const auto file = folder.WriteFile("target.cti", "x");
  std::filesystem::create_directory(folder.Path() / "sub");
  std::filesystem::create_symlink(file, folder.Path() / "sub" / "link.cti");
  EXPECT_EQ(CanonicalPath((folder.Path() / "sub" / "link.cti").string()), CanonicalPath(file.string()));
#endif
}

TEST(CanonicalPath, GivesNothingForMissingPaths) {
  Testing::CTempDirectory folder;
  EXPECT_FALSE(CanonicalPath((folder.Path() / "absent.cti").string()).has_value());
  EXPECT_FALSE(CanonicalPath("").has_value());
}

}  // namespace
}  // namespace TALVIR::Platform

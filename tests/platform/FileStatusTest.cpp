#include "platform/FileStatus.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace TALVIR::Platform

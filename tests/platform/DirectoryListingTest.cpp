#include "platform/DirectoryListing.h"

#include "support/TempDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace TALVIR::Platform {
namespace {

std::vector<std::string> Sorted(std::vector<std::string> names) {
  std::sort(names.begin(), names.end());
  return names;
}

TEST(ListFilesWithExtension, KeepsOnlyThreeCharacterExtensionsIgnoringCase) {
  Testing::CTempDirectory folder;
  for (const char* name :
       {"a.cti", "B.CTI", "c.Cti", "d.ctix", "e.cti.bak", "f.txt", "cti", ".cti", "g.ct", "h.x.cti"}) {
    folder.WriteFile(name, "x");
  }
  EXPECT_EQ(Sorted(ListFilesWithExtension(folder.Path().string(), "cti")),
            (std::vector<std::string>{".cti", "B.CTI", "a.cti", "c.Cti", "h.x.cti"}));
}

TEST(ListFilesWithExtension, SkipsFolders) {
  Testing::CTempDirectory folder;
  std::filesystem::create_directory(folder.Path() / "dir.cti");
  folder.WriteFile("real.cti", "x");
  EXPECT_EQ(ListFilesWithExtension(folder.Path().string(), "cti"), (std::vector<std::string>{"real.cti"}));
}

TEST(ListFilesWithExtension, AcceptsATrailingSeparator) {
  Testing::CTempDirectory folder;
  folder.WriteFile("p.cti", "x");
  EXPECT_EQ(ListFilesWithExtension(folder.Path().string() + "/", "cti"), (std::vector<std::string>{"p.cti"}));
#ifdef _WIN32
  EXPECT_EQ(ListFilesWithExtension(folder.Path().string() + "\\", "cti"), (std::vector<std::string>{"p.cti"}));
#endif
}

TEST(ListFilesWithExtension, AFolderNamedLikeAProducerAndALongerExtensionAreNoProducers) {
  // The Windows wildcard "*.cti" matches both; neither is a producer file.
  Testing::CTempDirectory folder;
  std::filesystem::create_directory(folder.Path() / "x.cti");
  folder.WriteFile("x.ctix", "x");
  folder.WriteFile("y.cti", "x");
  EXPECT_EQ(ListFilesWithExtension(folder.Path().string(), "cti"), (std::vector<std::string>{"y.cti"}));
}

TEST(ListFilesWithExtension, LinksToFilesCountButLinksToFoldersDoNot) {
#ifdef _WIN32
  GTEST_SKIP() << "symbolic links need a privilege on Windows that test runs do not have";
#endif
  Testing::CTempDirectory folder;
  const auto target = folder.WriteFile("target.bin", "x");
  std::filesystem::create_symlink(target, folder.Path() / "linked.cti");
  std::filesystem::create_directory(folder.Path() / "sub");
  std::filesystem::create_directory_symlink(folder.Path() / "sub", folder.Path() / "folderlink.cti");
  EXPECT_EQ(ListFilesWithExtension(folder.Path().string(), "cti"), (std::vector<std::string>{"linked.cti"}));
}

TEST(ListFilesWithExtension, MissingOrEmptyFolderGivesNothing) {
  Testing::CTempDirectory folder;
  EXPECT_TRUE(ListFilesWithExtension(folder.Path().string(), "cti").empty());
  EXPECT_TRUE(ListFilesWithExtension((folder.Path() / "missing").string(), "cti").empty());
}

}  // namespace
}  // namespace TALVIR::Platform

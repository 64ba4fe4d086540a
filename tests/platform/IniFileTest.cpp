#include "platform/IniFile.h"
#include "platform/SelfPath.h"

#include "support/TempDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace TALVIR::Platform {
namespace {

TEST(IniFile, ReadsSectionAndKeyNamesIgnoringCase) {
  Testing::CTempDirectory folder;
  const auto path = folder.WriteFile("settings.ini", "[User]\nCtiNames=A.cti;B.cti\n[Other]\nKey = spaced value \n");
  const CIniFile file(path.string());
  ASSERT_TRUE(file.IsLoaded());
  EXPECT_EQ(file.Value("User", "CtiNames"), std::optional<std::string>("A.cti;B.cti"));
  EXPECT_EQ(file.Value("uSeR", "ctinames"), std::optional<std::string>("A.cti;B.cti"));
  EXPECT_EQ(file.Value("USER", "CTINAMES"), std::optional<std::string>("A.cti;B.cti"));
  EXPECT_EQ(file.Value("other", "KEY"), std::optional<std::string>("spaced value")) << "blanks around a value go";
}

TEST(IniFile, AnAbsentKeyDiffersFromAnEmptyValue) {
  Testing::CTempDirectory folder;
  const auto path = folder.WriteFile("settings.ini", "[User]\nEmpty=\n");
  const CIniFile file(path.string());
  ASSERT_TRUE(file.IsLoaded());
  EXPECT_EQ(file.Value("User", "Empty"), std::optional<std::string>(""));
  EXPECT_FALSE(file.Value("User", "Absent").has_value());
  EXPECT_FALSE(file.Value("Absent", "Empty").has_value());
  EXPECT_FALSE(file.Value("User", "Emp").has_value()) << "a key name is compared whole";
}

TEST(IniFile, AMissingFileIsNotLoaded) {
  Testing::CTempDirectory folder;
  const CIniFile file((folder.Path() / "absent.ini").string());
  EXPECT_FALSE(file.IsLoaded());
  EXPECT_FALSE(file.Value("User", "CtiNames").has_value());
}

TEST(IniFile, AnEmptyFileIsLoadedWithoutKeys) {
  Testing::CTempDirectory folder;
  const CIniFile file(folder.WriteFile("empty.ini", "").string());
  EXPECT_TRUE(file.IsLoaded());
  EXPECT_FALSE(file.Value("User", "CtiNames").has_value());
}

TEST(IniFile, ADoubledSeparatorBeforeTheNameIsHarmless) {
  // The configuration path is a folder ending with its separator followed by the name with one of its own.
  Testing::CTempDirectory folder;
  folder.WriteFile("DiscoveryCfg.ini", "[User]\nCtiNames=X.cti\n");
  const std::string doubled = folder.Path().string() + kPathSeparator + kPathSeparator + "DiscoveryCfg.ini";
  const CIniFile file(doubled);
  ASSERT_TRUE(file.IsLoaded());
  EXPECT_EQ(file.Value("User", "CtiNames"), std::optional<std::string>("X.cti"));
}

TEST(IniFile, ARelativePathCountsFromTheCurrentFolder) {
  // Windows' own reader would look for a bare name in the Windows folder.
  Testing::CTempDirectory folder;
  folder.WriteFile("relative.ini", "[User]\nCtiNames=R.cti\n");
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const CIniFile file("relative.ini");
  const std::optional<std::string> value = file.Value("User", "CtiNames");
  std::filesystem::current_path(previous);
  EXPECT_TRUE(file.IsLoaded());
  EXPECT_EQ(value, std::optional<std::string>("R.cti"));
}

TEST(IniFile, LongValuesAreReadWhole) {
  Testing::CTempDirectory folder;
  std::string value;
  for (int i = 0; i < 400; ++i) {
    value += "Producer" + std::to_string(i) + ".cti;";
  }
  const CIniFile file(folder.WriteFile("long.ini", "[User]\r\nCtiNames=" + value + "\r\n").string());
  EXPECT_EQ(file.Value("User", "CtiNames"), std::optional<std::string>(value));
}

TEST(IniFile, TheFirstOfTwoEntriesCounts) {
  Testing::CTempDirectory folder;
  const CIniFile file(folder.WriteFile("twice.ini", "[User]\nKey=first\nKEY=second\n").string());
  EXPECT_EQ(file.Value("User", "Key"), std::optional<std::string>("first"));
}

}  // namespace
}  // namespace TALVIR::Platform

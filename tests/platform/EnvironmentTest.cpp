#include "platform/Environment.h"

#include "support/TestSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TALVIR::Platform {
namespace {

TEST(EnvironmentVariable, ReadsASetValueIncludingAnEmptyOne) {
  Testing::SetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE", "a=b;c");
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE"), std::optional<std::string>("a=b;c"));
  Testing::SetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE", "");
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE"), std::optional<std::string>(""))
      << "set but empty differs from unset";
  Testing::UnsetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE");
}

TEST(EnvironmentVariable, UnsetGivesNothing) {
  Testing::UnsetEnvironmentValue("TALVIR_PLATFORM_TEST_UNSET");
  EXPECT_FALSE(EnvironmentVariable("TALVIR_PLATFORM_TEST_UNSET").has_value());
  EXPECT_FALSE(EnvironmentVariable("").has_value());
}

// A search-path value written with this platform's separator in place of every '|'.
std::string PathList(std::string text) {
  for (char& c : text) {
    if (c == '|') {
      c = Testing::kPathListSeparator;
    }
  }
  return text;
}

TEST(SplitPathList, KeepsFoldersInOrderAndDropsEmptyEntries) {
  using ::testing::ElementsAre;
  EXPECT_EQ(PathListSeparator(), Testing::kPathListSeparator);
  EXPECT_THAT(SplitPathList(PathList("/a|/b c|/a")), ElementsAre("/a", "/b c", "/a"));
  EXPECT_THAT(SplitPathList(PathList("||/a||")), ElementsAre("/a"));
  EXPECT_THAT(SplitPathList("relative"), ElementsAre("relative"));
  EXPECT_TRUE(SplitPathList("").empty());
  EXPECT_TRUE(SplitPathList(PathList("|")).empty());
}

TEST(SplitPathList, SplitsOnlyAtThisPlatformsSeparator) {
  using ::testing::ElementsAre;
  if (Testing::kWindows) {
    // A drive letter's colon is part of the folder.
    EXPECT_THAT(SplitPathList("C:\\a;D:\\b c"), ElementsAre("C:\\a", "D:\\b c"));
  } else {
    EXPECT_THAT(SplitPathList("/a;b:/c"), ElementsAre("/a;b", "/c"));
  }
}

}  // namespace
}  // namespace TALVIR::Platform

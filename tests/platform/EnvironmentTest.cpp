#include "platform/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdlib.h>

namespace TALVIR::Platform {
namespace {

TEST(EnvironmentVariable, ReadsASetValueIncludingAnEmptyOne) {
  ASSERT_EQ(setenv("TALVIR_PLATFORM_TEST_VALUE", "a=b;c", 1), 0);
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE"), std::optional<std::string>("a=b;c"));
  ASSERT_EQ(setenv("TALVIR_PLATFORM_TEST_VALUE", "", 1), 0);
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE"), std::optional<std::string>(""))
      << "set but empty differs from unset";
  unsetenv("TALVIR_PLATFORM_TEST_VALUE");
}

TEST(EnvironmentVariable, UnsetGivesNothing) {
  unsetenv("TALVIR_PLATFORM_TEST_UNSET");
  EXPECT_FALSE(EnvironmentVariable("TALVIR_PLATFORM_TEST_UNSET").has_value());
  EXPECT_FALSE(EnvironmentVariable("").has_value());
}

TEST(SplitPathList, KeepsFoldersInOrderAndDropsEmptyEntries) {
  using ::testing::ElementsAre;
  EXPECT_EQ(PathListSeparator(), ':');
  EXPECT_THAT(SplitPathList("/a:/b c:/a"), ElementsAre("/a", "/b c", "/a"));
  EXPECT_THAT(SplitPathList("::/a::"), ElementsAre("/a"));
  EXPECT_THAT(SplitPathList("relative"), ElementsAre("relative"));
  EXPECT_TRUE(SplitPathList("").empty());
  EXPECT_TRUE(SplitPathList(":").empty());
}

}  // namespace
}  // namespace TALVIR::Platform

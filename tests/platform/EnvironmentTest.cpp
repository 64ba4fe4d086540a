#include "platform/Environment.h"

#include "support/TestSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TALVIR::Platform {
namespace {

using ::testing::ElementsAre;

TEST(EnvironmentVariable, ReadsASetValue) {
  Testing::SetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE", "a=b;c");
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE"), std::optional<std::string>("a=b;c"));
  Testing::UnsetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE");
  EXPECT_FALSE(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE").has_value());
}

TEST(EnvironmentVariable, ReadsAnEmptyValueAsSetButEmpty) {
#ifdef _WIN32
  GTEST_SKIP() << "the C runtime of Windows removes a variable that is given an empty value";
#else
  Testing::SetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE", "");
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_VALUE"), std::optional<std::string>(""))
      << "set but empty differs from unset";
  Testing::UnsetEnvironmentValue("TALVIR_PLATFORM_TEST_VALUE");
#endif
}

TEST(EnvironmentVariable, ReadsALongValueWhole) {
  const std::string value(5000, 'v');
  Testing::SetEnvironmentValue("TALVIR_PLATFORM_TEST_LONG", value);
  EXPECT_EQ(EnvironmentVariable("TALVIR_PLATFORM_TEST_LONG"), std::optional<std::string>(value));
  Testing::UnsetEnvironmentValue("TALVIR_PLATFORM_TEST_LONG");
}

TEST(EnvironmentVariable, UnsetGivesNothing) {
  Testing::UnsetEnvironmentValue("TALVIR_PLATFORM_TEST_UNSET");
  EXPECT_FALSE(EnvironmentVariable("TALVIR_PLATFORM_TEST_UNSET").has_value());
  EXPECT_FALSE(EnvironmentVariable("").has_value());
}

#ifdef _WIN32
TEST(SplitPathList, SplitsAtSemicolonsOnlySoThatDriveLettersStay) {
  EXPECT_EQ(PathListSeparator(), ';');
  EXPECT_THAT(SplitPathList("C:\\a;D:\\b c;C:\\a"), ElementsAre("C:\\a", "D:\\b c", "C:\\a"));
  EXPECT_THAT(SplitPathList(";;C:\\a;;"), ElementsAre("C:\\a"));
  EXPECT_THAT(SplitPathList("relative"), ElementsAre("relative"));
  EXPECT_TRUE(SplitPathList("").empty());
  EXPECT_TRUE(SplitPathList(";").empty());
}
#else
TEST(SplitPathList, KeepsFoldersInOrderAndDropsEmptyEntries) {
  EXPECT_EQ(PathListSeparator(), ':');
  EXPECT_THAT(SplitPathList("/a:/b c:/a"), ElementsAre("/a", "/b c", "/a"));
  EXPECT_THAT(SplitPathList("::/a::"), ElementsAre("/a"));
  EXPECT_THAT(SplitPathList("relative"), ElementsAre("relative"));
  EXPECT_TRUE(SplitPathList("").empty());
  EXPECT_TRUE(SplitPathList(":").empty());
}
#endif

}  // namespace
}  // namespace TALVIR::Platform

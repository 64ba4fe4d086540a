#include "front/DiscoveryConfig.h"

#include "../platform/TempDirectory.h"

#include <ini.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TALVIR {
namespace {

using ::testing::ElementsAre;

TEST(SplitProducerNames, KeepsEveryPieceAsItStands) {
  EXPECT_THAT(SplitProducerNames("a.cti;b.cti"), ElementsAre("a.cti", "b.cti"));
  EXPECT_THAT(SplitProducerNames("a.cti; b.cti"), ElementsAre("a.cti", " b.cti"));
  EXPECT_THAT(SplitProducerNames("a.cti ;b.cti"), ElementsAre("a.cti ", "b.cti"));
  EXPECT_THAT(SplitProducerNames("a;;b"), ElementsAre("a", "", "b"));
  EXPECT_THAT(SplitProducerNames(";a"), ElementsAre("", "a"));
}

TEST(SplitProducerNames, TheRestAfterTheLastSeparatorIsAlwaysANameEvenWhenEmpty) {
  EXPECT_THAT(SplitProducerNames(""), ElementsAre(""));
  EXPECT_THAT(SplitProducerNames("a;"), ElementsAre("a", ""));
  EXPECT_THAT(SplitProducerNames(";"), ElementsAre("", ""));
  EXPECT_THAT(SplitProducerNames("only.cti"), ElementsAre("only.cti"));
}

TEST(ParseDiscoveryConfig, ReadsTheUserSectionsCtiNames) {
  const auto names = ParseDiscoveryConfig("[User]\nCtiNames=A.cti;B.cti\n");
  ASSERT_TRUE(names.has_value());
  EXPECT_THAT(*names, ElementsAre("A.cti", "B.cti"));
}

TEST(ParseDiscoveryConfig, SectionAndKeyIgnoreCase) {
  const auto names = ParseDiscoveryConfig("[uSeR]\nctinames = A.cti\n");
  ASSERT_TRUE(names.has_value());
  EXPECT_THAT(*names, ElementsAre("A.cti"));
}

TEST(ParseDiscoveryConfig, AMissingKeyOrSectionReadsAsOneEmptyName) {
  const auto noKey = ParseDiscoveryConfig("[User]\nOther=x\n");
  ASSERT_TRUE(noKey.has_value());
  EXPECT_THAT(*noKey, ElementsAre(""));
  const auto otherSection = ParseDiscoveryConfig("[System]\nCtiNames=A.cti\n");
  ASSERT_TRUE(otherSection.has_value());
  EXPECT_THAT(*otherSection, ElementsAre(""));
  const auto empty = ParseDiscoveryConfig("");
  ASSERT_TRUE(empty.has_value());
  EXPECT_THAT(*empty, ElementsAre(""));
}

TEST(ParseDiscoveryConfig, ASemicolonAfterABlankSeparatesNamesAndStartsNoComment) {
  const auto names = ParseDiscoveryConfig("[User]\nCtiNames=A.cti ; B.cti;C.cti\n");
  ASSERT_TRUE(names.has_value());
  EXPECT_THAT(*names, ElementsAre("A.cti ", " B.cti", "C.cti"));
}

TEST(ParseDiscoveryConfig, LongValuesAreReadWhole) {
  std::string value;
  for (int i = 0; i < 100; ++i) {
    value += "Producer" + std::to_string(i) + ".cti;";
  }
  value += "Last.cti";
  const auto names = ParseDiscoveryConfig("[User]\r\nCtiNames=" + value + "\r\n");
  ASSERT_TRUE(names.has_value());
  ASSERT_EQ(names->size(), 101u);
  EXPECT_EQ(names->front(), "Producer0.cti");
  EXPECT_EQ(names->back(), "Last.cti");
}

TEST(ParseDiscoveryConfig, TheFirstOfTwoEntriesWins) {
  const auto names = ParseDiscoveryConfig("[User]\nCtiNames=first.cti\n[USER]\nCTINAMES=second.cti\n");
  ASSERT_TRUE(names.has_value());
  EXPECT_THAT(*names, ElementsAre("first.cti"));
}

TEST(ParseDiscoveryConfig, TextThatIsNotIniIsRefused) {
  EXPECT_FALSE(ParseDiscoveryConfig("[User]\nCtiNames=A.cti\nthis line has no value\n").has_value());
  EXPECT_FALSE(ParseDiscoveryConfig("[User\nCtiNames=A.cti\n").has_value());
}

TEST(ParseDiscoveryConfig, LeavesTheReadersProcessWideOptionsAsItFoundThem) {
  const bool inlineComments = ini_allow_inline_comments;
  const bool multiline = ini_allow_multiline;
  const bool useStack = ini_use_stack;
  const bool allowRealloc = ini_allow_realloc;
  const int maxLine = ini_max_line;
  ParseDiscoveryConfig("[User]\nCtiNames=A.cti\n");
  EXPECT_EQ(ini_allow_inline_comments, inlineComments);
  EXPECT_EQ(ini_allow_multiline, multiline);
  EXPECT_EQ(ini_use_stack, useStack);
  EXPECT_EQ(ini_allow_realloc, allowRealloc);
  EXPECT_EQ(ini_max_line, maxLine);
}

TEST(ReadDiscoveryConfig, ReadsAFileAndRefusesAMissingOne) {
  Testing::CTempDirectory folder;
  const auto path = folder.WriteFile("DiscoveryCfg.ini", "[User]\nCtiNames=X.cti;\n");
  const auto names = ReadDiscoveryConfig(path.string());
  ASSERT_TRUE(names.has_value());
  EXPECT_THAT(*names, ElementsAre("X.cti", ""));
  EXPECT_FALSE(ReadDiscoveryConfig((folder.Path() / "absent.ini").string()).has_value());
  // A doubled separator in the path is harmless.
  EXPECT_TRUE(ReadDiscoveryConfig(folder.Path().string() + "//DiscoveryCfg.ini").has_value());
}

} // namespace
} // namespace TALVIR

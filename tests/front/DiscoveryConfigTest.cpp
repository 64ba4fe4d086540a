#include "front/DiscoveryConfig.h"

#include "support/TempDirectory.h"

#ifndef _WIN32
#include <ini.h>
#endif

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TALVIR {
namespace {

using ::testing::ElementsAre;

// The settings of INI text, read as the library reads its configuration: from a file.
std::optional<CDiscoveryConfig> ParseDiscoveryConfigText(const std::string& text) {
  Testing::CTempDirectory folder;
  return ReadDiscoveryConfig(folder.WriteFile(kDiscoveryConfigFileName, text).string());
}

// Only the producer names of INI text.
std::optional<std::list<std::string>> ParseDiscoveryConfig(const std::string& text) {
  std::optional<CDiscoveryConfig> config = ParseDiscoveryConfigText(text);
  if (!config) {
    return std::nullopt;
  }
  return std::move(config->ctiNames);
}

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
#ifdef _WIN32
  GTEST_SKIP() << "Windows' own INI reader accepts any text as INI";
#endif
  EXPECT_FALSE(ParseDiscoveryConfig("[User]\nCtiNames=A.cti\nthis line has no value\n").has_value());
  EXPECT_FALSE(ParseDiscoveryConfig("[User\nCtiNames=A.cti\n").has_value());
}

TEST(ParseDiscoveryConfig, LeavesTheReadersProcessWideOptionsAsItFoundThem) {
#ifdef _WIN32
  GTEST_SKIP() << "the INI reader with process-wide options is the Linux one; Windows reads INI files itself";
#else
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
#endif
}

// The reader's options are process-wide: an application that uses the same reader may have changed any of them.
// Our configuration reads the same whatever they are.
TEST(ParseDiscoveryConfig, ReadsTheSameWhateverOptionsTheApplicationGaveTheReader) {
#ifdef _WIN32
  GTEST_SKIP() << "the INI reader with process-wide options is the Linux one; Windows reads INI files itself";
#else
  const bool bom = ini_allow_bom;
  char* const commentPrefixes = ini_start_comment_prefixes;
  const bool noValue = ini_allow_no_value;
  const bool stopOnFirstError = ini_stop_on_first_error;
  const int initialAlloc = ini_initial_alloc;
  static char hashOnly[] = "#";
  ini_allow_bom = false;
  ini_start_comment_prefixes = hashOnly;
  ini_allow_no_value = true;
  ini_stop_on_first_error = true;
  ini_initial_alloc = 1;

  const auto withBomAndComment = ParseDiscoveryConfig("\xEF\xBB\xBF[User]\n; producers\nCtiNames=A.cti;B.cti\n");
  // A line without '=' is not INI, as with the reader's defaults.
  const auto keyWithoutValue = ParseDiscoveryConfig("[User]\nCtiNames\n");
  const bool bomAfter = ini_allow_bom;
  char* const commentPrefixesAfter = ini_start_comment_prefixes;
  const bool noValueAfter = ini_allow_no_value;

  ini_allow_bom = bom;
  ini_start_comment_prefixes = commentPrefixes;
  ini_allow_no_value = noValue;
  ini_stop_on_first_error = stopOnFirstError;
  ini_initial_alloc = initialAlloc;

  ASSERT_TRUE(withBomAndComment.has_value());
  EXPECT_THAT(*withBomAndComment, ElementsAre("A.cti", "B.cti"));
  EXPECT_FALSE(keyWithoutValue.has_value());
  // And the application's options are given back.
  EXPECT_FALSE(bomAfter);
  EXPECT_EQ(commentPrefixesAfter, hashOnly);
  EXPECT_TRUE(noValueAfter);
#endif
}

TEST(ReadDiscoveryConfig, ReadsAFileAndRefusesAMissingOne) {
  Testing::CTempDirectory folder;
  const auto path = folder.WriteFile("DiscoveryCfg.ini", "[User]\nCtiNames=X.cti;\n");
  const auto config = ReadDiscoveryConfig(path.string());
  ASSERT_TRUE(config.has_value());
  EXPECT_THAT(config->ctiNames, ElementsAre("X.cti", ""));
  EXPECT_FALSE(ReadDiscoveryConfig((folder.Path() / "absent.ini").string()).has_value());
  // A doubled separator in the path is harmless.
  EXPECT_TRUE(ReadDiscoveryConfig(folder.Path().string() + "//DiscoveryCfg.ini").has_value());
}

TEST(ParseDiscoveryConfigText, TheOptInSwitchesAreOffByDefault) {
  const auto config = ParseDiscoveryConfigText("[User]\nCtiNames=A.cti\n");
  ASSERT_TRUE(config.has_value());
  EXPECT_TRUE(config->ctiNamesGiven);
  EXPECT_FALSE(config->skipEmptyInterfaces);
  EXPECT_FALSE(config->searchGenTLPath);
  const auto none = ParseDiscoveryConfigText("[User]\n");
  ASSERT_TRUE(none.has_value());
  EXPECT_FALSE(none->ctiNamesGiven);
  EXPECT_THAT(none->ctiNames, ElementsAre(""));
}

TEST(ParseDiscoveryConfigText, ReadsTheSwitchesOfTheUserSectionIgnoringCase) {
  const auto config = ParseDiscoveryConfigText("[user]\nskipemptyinterfaces = Yes\nSEARCHGENTLPATH=1\n");
  ASSERT_TRUE(config.has_value());
  EXPECT_TRUE(config->skipEmptyInterfaces);
  EXPECT_TRUE(config->searchGenTLPath);
  EXPECT_FALSE(config->ctiNamesGiven);
  const auto otherSection = ParseDiscoveryConfigText("[System]\nSkipEmptyInterfaces=1\nSearchGenTLPath=1\n");
  ASSERT_TRUE(otherSection.has_value());
  EXPECT_FALSE(otherSection->skipEmptyInterfaces);
  EXPECT_FALSE(otherSection->searchGenTLPath);
  // The first occurrence of a key wins.
  const auto twice = ParseDiscoveryConfigText("[User]\nSkipEmptyInterfaces=0\nSkipEmptyInterfaces=1\n");
  ASSERT_TRUE(twice.has_value());
  EXPECT_FALSE(twice->skipEmptyInterfaces);
}

TEST(ParseConfigSwitch, OnlyTheUsualWordsForYesAreTrue) {
  for (const char* yes : {"1", "true", "TRUE", "yes", "On"}) {
    EXPECT_TRUE(ParseConfigSwitch(yes)) << yes;
  }
  for (const char* no : {"0", "false", "no", "off", "", "2", "yes please", " 1"}) {
    EXPECT_FALSE(ParseConfigSwitch(no)) << no;
  }
}

}  // namespace
}  // namespace TALVIR

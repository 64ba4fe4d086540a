// The discovery configuration read through the INI reader library of the Linux build: the reader's options are
// process-wide, and an application may use the same reader with options of its own.
#include "front/DiscoveryConfig.h"

#include <ini.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TALVIR {
namespace {

using ::testing::ElementsAre;

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

// The reader's options are process-wide: an application that uses the same reader may have changed any of them.
// Our configuration reads the same whatever they are.
TEST(ParseDiscoveryConfig, ReadsTheSameWhateverOptionsTheApplicationGaveTheReader) {
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
}

}  // namespace
}  // namespace TALVIR

// The settings text: escaping, comments, line endings, and every kind of line that cannot be loaded.
#include "PersistenceFixture.h"
#include "TestDescription.h"

#include <gtest/gtest.h>

namespace PersistenceTest {
namespace {

TEST(FeatureText, EscapesAndUnescapesTheSeparators) {
  const GenApi::gcstring raw("a\tb\nc\rd\\e");
  const GenApi::gcstring escaped = GenApi::EscapeFeatureValue(raw);
  EXPECT_EQ(escaped, "a\\tb\\nc\\rd\\\\e");
  GenApi::gcstring back;
  ASSERT_TRUE(GenApi::UnescapeFeatureValue(escaped, back));
  EXPECT_EQ(back, raw);
  EXPECT_FALSE(GenApi::UnescapeFeatureValue("bad\\x", back));
  EXPECT_FALSE(GenApi::UnescapeFeatureValue("trailing\\", back));
}

TEST(FeatureText, ReportsEveryBadLineWithItsNumberAndGoesOn) {
  CDevice device(kDescription, 3);
  device.Set("WidthReg", "1");
  device.Set("OffsetXReg", "0");
  const std::string text = "# comment\n"
                           "\n"
                           "NoSuchFeature\t1\n"     // 3
                           "Serial\t5\n"            // 4: read-only
                           "Gain\t5000\n"           // 5: above Max
                           "Gain\tloud\n"           // 6: not a number
                           "GainSelector\tGreen\n"  // 7: no such entry
                           "Width 12\n"             // 8: no TAB
                           "\t12\n"                 // 9: no name
                           "Label\tbad\\q\n"        // 10: bad escape
                           "Reset\t1\n"             // 11: a command has no value to set
                           "Width\t12\r\n";         // 12: set, despite the carriage return
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(device.Map(), text);
  ASSERT_EQ(result.Failures.size(), 9u);
  const size_t lines[] = {3, 4, 5, 6, 7, 8, 9, 10, 11};
  for (size_t index = 0; index < 9; ++index) {
    EXPECT_EQ(result.Failures[index].Line, lines[index]);
    EXPECT_FALSE(result.Failures[index].Reason.empty());
  }
  EXPECT_EQ(result.Failures[0].Reason, "no such feature");
  EXPECT_NE(result.Failures[1].Reason.find("RO"), std::string::npos) << result.Failures[1].Reason;
  EXPECT_NE(result.Failures[2].Reason.find("5000"), std::string::npos) << result.Failures[2].Reason;
  EXPECT_EQ(result.Failures[2].Value, "5000");
  EXPECT_EQ(result.Applied, 1u);
  EXPECT_EQ(device.Get("Width"), "12");
}

TEST(FeatureText, EmptyTextSetsNothing) {
  CDevice device(kDescription, 3);
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(device.Map(), "");
  EXPECT_EQ(result.Applied, 0u);
  EXPECT_TRUE(result.Failures.empty());
}

TEST(FeatureText, NamesTheDeviceInTheFirstLine) {
  CDevice device(kDescription, 3);
  const std::string text = GenApi::SaveFeatures(device.Map());
  EXPECT_EQ(text.rfind("# Settings of TestVendor PersistenceModel", 0), 0u) << text;
}

TEST(FeatureText, UnreadableFeaturesAreListedAsSkipped) {
  CDevice device(kDescription, 3);
  device.Set("LUTSelector", "Luminance");
  device.Set("LUTIndex", "0");
  device.Set("GainSelectorReg", "7");  // no entry has the value 7: the selector cannot be read
  std::vector<GenApi::SFeatureIssue> skipped;
  const std::string text = GenApi::SaveFeatures(device.Map(), GenApi::fsStreamable, &skipped);
  ASSERT_EQ(skipped.size(), 1u);
  EXPECT_EQ(skipped[0].Name, "GainSelector");
  EXPECT_FALSE(skipped[0].Reason.empty());
  EXPECT_EQ(text.find("GainSelector\t"), std::string::npos) << text;
  EXPECT_NE(text.find("Width\t"), std::string::npos) << text;
}

}  // namespace
}  // namespace PersistenceTest

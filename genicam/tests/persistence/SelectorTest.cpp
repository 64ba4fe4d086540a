// Saving and loading features behind selectors, nested selectors, and what is left out.
#include "PersistenceFixture.h"
#include "TestDescription.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

namespace PersistenceTest {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line[0] != '#') {
      lines.push_back(line);
    }
  }
  return lines;
}

size_t IndexOf(const std::vector<std::string>& lines, const std::string& line, size_t from = 0) {
  const auto found = std::find(lines.begin() + static_cast<std::ptrdiff_t>(from), lines.end(), line);
  return static_cast<size_t>(found - lines.begin());
}

// Width and OffsetX limit each other; seeded registers can hold a pair that no load could get out of.
void Consistent(CDevice& device) {
  device.Set("WidthReg", "1");
  device.Set("OffsetXReg", "0");
}

class SavedSettings : public ::testing::Test {
protected:
  SavedSettings() : m_device(kDescription, 1) {
    m_device.Set("WidthReg", "1");
    m_device.Set("OffsetX", "20");
    m_device.Set("Width", "80");
    for (const auto& [selector, gain] : {std::pair{"All", "10"}, {"Red", "20"}, {"Blue", "30"}}) {
      m_device.Set("GainSelector", selector);
      m_device.Set("Gain", gain);
    }
    m_device.Set("GainSelector", "Red");
    for (int selector = 0; selector < 2; ++selector) {
      m_device.Set("LUTSelector", selector == 0 ? "Luminance" : "Red");
      for (int index = 0; index < 4; ++index) {
        m_device.Set("LUTIndex", std::to_string(index));
        m_device.Set("LUTValue", std::to_string(100 * (selector + 1) + index));
      }
    }
    m_device.Set("LUTSelector", "Red");
    m_device.Set("LUTIndex", "2");
    m_device.Set("Label", "tab\there \\ end");
    m_device.Set("Hidden", "7");
  }
  CDevice m_device;
};

TEST_F(SavedSettings, WritesEachSelectedValueAfterItsSelectorAndRestoresTheSelector) {
  const std::vector<std::string> lines = Lines(GenApi::SaveFeatures(m_device.Map()));
  const size_t all = IndexOf(lines, "GainSelector\tAll");
  ASSERT_LT(all, lines.size()) << ::testing::PrintToString(lines);
  EXPECT_EQ(lines[all + 1], "Gain\t10");
  EXPECT_EQ(lines[all + 2], "GainSelector\tRed");
  EXPECT_EQ(lines[all + 3], "Gain\t20");
  EXPECT_EQ(lines[all + 4], "GainSelector\tBlue");
  EXPECT_EQ(lines[all + 5], "Gain\t30");
  EXPECT_EQ(lines[all + 6], "GainSelector\tRed");  // the value found last, so that loading leaves it there
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Gain\t20"), 1);
  EXPECT_EQ(m_device.Get("GainSelector"), "Red");
  EXPECT_EQ(m_device.Get("Gain"), "20");
  EXPECT_EQ(m_device.Get("LUTSelector"), "Red");
  EXPECT_EQ(m_device.Get("LUTIndex"), "2");
}

TEST_F(SavedSettings, NestedSelectorsKeepEveryCombination) {
  const std::vector<std::string> lines = Lines(GenApi::SaveFeatures(m_device.Map()));
  const size_t red = IndexOf(lines, "LUTSelector\tRed");
  ASSERT_LT(red, lines.size());
  EXPECT_EQ(lines[red + 1], "LUTIndex\t0");
  EXPECT_EQ(lines[red + 2], "LUTValue\t200");
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const std::string& line) { return line.rfind("LUTValue\t", 0) == 0; }),
            8);

  CDevice other(kDescription, 2);
  Consistent(other);
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(other.Map(), GenApi::SaveFeatures(m_device.Map()));
  EXPECT_TRUE(result.Failures.empty()) << result.Failures.front().Name << ": " << result.Failures.front().Reason;
  for (int selector = 0; selector < 2; ++selector) {
    other.Set("LUTSelector", selector == 0 ? "Luminance" : "Red");
    for (int index = 0; index < 4; ++index) {
      other.Set("LUTIndex", std::to_string(index));
      EXPECT_EQ(other.Get("LUTValue"), std::to_string(100 * (selector + 1) + index));
    }
  }
}

TEST_F(SavedSettings, LoadsBackIntoAnotherDeviceAndLeavesSelectorsWhereTheyWere) {
  const GenApi::gcstring saved = GenApi::SaveFeatures(m_device.Map());
  CDevice other(kDescription, 2);
  Consistent(other);
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(other.Map(), saved);
  EXPECT_TRUE(result.Failures.empty());
  EXPECT_EQ(result.Applied, Lines(saved).size());
  EXPECT_EQ(other.Get("GainSelector"), "Red");
  EXPECT_EQ(other.Get("Gain"), "20");
  EXPECT_EQ(other.Get("LUTSelector"), "Red");
  EXPECT_EQ(other.Get("LUTIndex"), "2");
  EXPECT_EQ(other.Get("Width"), "80");
  EXPECT_EQ(other.Get("OffsetX"), "20");
  EXPECT_EQ(other.Get("Label"), "tab\there \\ end");
  EXPECT_EQ(GenApi::SaveFeatures(other.Map()).substr(0), saved);
}

TEST_F(SavedSettings, LeavesOutReadOnlyCommandsAndWhatIsNotStreamableUnlessAskedFor) {
  const std::vector<std::string> lines = Lines(GenApi::SaveFeatures(m_device.Map()));
  for (const std::string& line : lines) {
    EXPECT_NE(line.rfind("Serial\t", 0), 0u);
    EXPECT_NE(line.rfind("Reset\t", 0), 0u);
    EXPECT_NE(line.rfind("Hidden\t", 0), 0u);
  }
  const std::vector<std::string> every = Lines(GenApi::SaveFeatures(m_device.Map(), GenApi::fsAllWritable));
  EXPECT_LT(IndexOf(every, "Hidden\t7"), every.size());
  EXPECT_EQ(IndexOf(every, "Reset\t0"), every.size());
  // LUTIndex is not Streamable, but it selects: its lines are what make LUTValue's lines load.
  EXPECT_LT(IndexOf(lines, "LUTIndex\t3"), lines.size());
}

TEST_F(SavedSettings, DependentLimitsLoadInALaterPass) {
  CDevice other(kDescription, 2);
  other.Set("WidthReg", "10");
  other.Set("OffsetXReg", "85");  // Width 80 does not fit until OffsetX is 20
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(other.Map(), "Width\t80\nOffsetX\t20\n");
  EXPECT_TRUE(result.Failures.empty());
  EXPECT_EQ(result.Applied, 2u);
  EXPECT_EQ(other.Get("Width"), "80");
  EXPECT_EQ(other.Get("OffsetX"), "20");
}

}  // namespace
}  // namespace PersistenceTest

// Focused checks of engine behaviour that the differential comparison found wrong, each on a minimal description.
#include "InspectNodeMap.h"

#include <gtest/gtest.h>

using namespace TALVIR::Tools;

namespace {
std::string Description(const std::string& nodes) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Findings" VendorName="Talvir" StandardNameSpace="None" SchemaMajorVersion="1"
    SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="00000000-0000-0000-0000-000000000000" VersionGuid="00000000-0000-0000-0000-000000000001">
)" + nodes +
         "\n</RegisterDescription>\n";
}

// A frame rate shown as 1e6 / interval: the conversion reverses the order, so the smallest interval gives the
// largest rate. Min and Max must come out ordered (Min = FormulaFrom(target Max), Max = FormulaFrom(target Min)).
const char* const kDecreasingConverter = R"(
  <Converter Name="FrameRate">
    <FormulaTo>1000000 / FROM</FormulaTo>
    <FormulaFrom>1000000 / TO</FormulaFrom>
    <pValue>Interval</pValue>
    <Slope>Decreasing</Slope>
  </Converter>
  <Integer Name="Interval">
    <Value>500</Value>
    <Min>100</Min>
    <Max>1000</Max>
  </Integer>
  <Float Name="ShownRate">
    <pValue>FrameRate</pValue>
  </Float>)";
}  // namespace

TEST(EngineFindings, ConverterWithDecreasingSlopeReportsOrderedMinAndMax) {
  CSparseRegisterSpace registers;
  CInspectNodeMap nodeMap(registers);
  nodeMap.Load(Description(kDecreasingConverter));
  GenApi::CFloatPtr rate(nodeMap.NodeMap()._GetNode("FrameRate"));
  ASSERT_TRUE(rate.IsValid());
  EXPECT_DOUBLE_EQ(rate->GetValue(), 2000.0);
  EXPECT_DOUBLE_EQ(rate->GetMin(), 1000.0);
  EXPECT_DOUBLE_EQ(rate->GetMax(), 10000.0);
  // A Float taking its range from the converter inherits the ordered range.
  GenApi::CFloatPtr shown(nodeMap.NodeMap()._GetNode("ShownRate"));
  ASSERT_TRUE(shown.IsValid());
  EXPECT_DOUBLE_EQ(shown->GetMin(), 1000.0);
  EXPECT_DOUBLE_EQ(shown->GetMax(), 10000.0);
}

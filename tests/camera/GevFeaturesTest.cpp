// The rules by which a GigE camera reads its features, on descriptions written for each rule.
#include "camera/GevFeatures.h"

#include <gtest/gtest.h>

#include <string>

namespace TALVIR {
namespace {

std::string Description(const std::string& nodes) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"GEV\" SchemaMajorVersion=\"1\" "
         "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
         "SubMinorVersion=\"0\">\n" +
         nodes + "\n</RegisterDescription>\n";
}

class CFeatures {
public:
  explicit CFeatures(const std::string& nodes) { m_map._LoadXMLFromString(Description(nodes).c_str()); }
  GenApi::INodeMap& Map() { return *static_cast<GenApi::INodeMap*>(m_map); }

private:
  GenApi::CNodeMapRef m_map{"Device"};
};

TEST(GevFeatures, PacketSizeLimitsOfMinusOneBecomeZeroAndAnIncrementOfOneBecomesFour) {
  CFeatures features("<Integer Name='GevSCPSPacketSize'><Value>1500</Value><Min>-1</Min><Max>-1</Max><Inc>1</Inc>"
                     "</Integer>");
  SPacketSizeLimits limits;
  ASSERT_TRUE(CGevFeatures::ReadPacketSizeLimits(features.Map(), limits));
  EXPECT_EQ(limits.minimum, 0);
  EXPECT_EQ(limits.maximum, 0);
  EXPECT_EQ(limits.increment, 4);
}

TEST(GevFeatures, PacketSizeLimitsAreTakenAsTheyStandOtherwise) {
  CFeatures features("<Integer Name='GevSCPSPacketSize'><Value>1500</Value><Min>576</Min><Max>9000</Max><Inc>8</Inc>"
                     "</Integer>");
  SPacketSizeLimits limits;
  ASSERT_TRUE(CGevFeatures::ReadPacketSizeLimits(features.Map(), limits));
  EXPECT_EQ(limits.minimum, 576);
  EXPECT_EQ(limits.maximum, 9000);
  EXPECT_EQ(limits.increment, 8);
}

TEST(GevFeatures, APacketSizeThatIsNoIntegerIsALogicalError) {
  CFeatures missing("<Integer Name='Width'><Value>8</Value></Integer>");
  SPacketSizeLimits limits;
  EXPECT_FALSE(CGevFeatures::ReadPacketSizeLimits(missing.Map(), limits));
  CFeatures wrongType("<Float Name='GevSCPSPacketSize'><Value>1500</Value></Float>");
  EXPECT_THROW(CGevFeatures::ReadPacketSizeLimits(wrongType.Map(), limits), GenICam::LogicalErrorException);
}

TEST(GevFeatures, ExposureComesFromTheFirstPresentNodeAndOnlyAFloatCounts) {
  CFeatures both("<Float Name='ExposureTimeAbs'><Value>250.5</Value></Float>"
                 "<Float Name='ExposureTime'><Value>1000</Value></Float>");
  EXPECT_FLOAT_EQ(CGevFeatures::ReadHelperSettings(both.Map()).exposure, 1000.0f);
  CFeatures abs("<Float Name='ExposureTimeAbs'><Value>250.5</Value></Float>"
                "<Integer Name='ExposureTimeRaw'><Value>77</Value></Integer>");
  EXPECT_FLOAT_EQ(CGevFeatures::ReadHelperSettings(abs.Map()).exposure, 250.5f);
  CFeatures raw("<Integer Name='ExposureTimeRaw'><Value>77</Value></Integer>");
  EXPECT_EQ(CGevFeatures::ReadHelperSettings(raw.Map()).exposure, 0.0f) << "an integer exposure gives 0";
  CFeatures none("<Integer Name='Width'><Value>8</Value></Integer>");
  EXPECT_EQ(CGevFeatures::ReadHelperSettings(none.Map()).exposure, 0.0f);
}

TEST(GevFeatures, FrameRatePrefersResultingFrameRateAbs) {
  CFeatures both("<Float Name='ResultingFrameRateAbs'><Value>30</Value></Float>"
                 "<Float Name='ResultingFrameRate'><Value>60</Value></Float>");
  EXPECT_FLOAT_EQ(CGevFeatures::ReadHelperSettings(both.Map()).frameRate, 30.0f);
  CFeatures plain("<Float Name='ResultingFrameRate'><Value>60</Value></Float>");
  EXPECT_FLOAT_EQ(CGevFeatures::ReadHelperSettings(plain.Map()).frameRate, 60.0f);
  CFeatures wrong("<Integer Name='ResultingFrameRateAbs'><Value>60</Value></Integer>");
  EXPECT_EQ(CGevFeatures::ReadHelperSettings(wrong.Map()).frameRate, 0.0f) << "another node type gives 0";
}

TEST(GevFeatures, ALineScanCameraDividesItsLineRateByItsHeight) {
  CFeatures features("<Float Name='AcquisitionLineRate'><Value>20000</Value></Float>"
                     "<Float Name='ResultingLineRate'><Value>20000</Value></Float>"
                     "<Integer Name='Height'><Value>1000</Value></Integer>");
  const SHelperSettings settings = CGevFeatures::ReadHelperSettings(features.Map());
  EXPECT_TRUE(settings.lineScan);
  EXPECT_FLOAT_EQ(settings.frameRate, 20.0f);
  CFeatures noHeight("<Float Name='AcquisitionLineRate'><Value>20000</Value></Float>"
                     "<Float Name='ResultingLineRate'><Value>20000</Value></Float>");
  EXPECT_EQ(CGevFeatures::ReadHelperSettings(noHeight.Map()).frameRate, 0.0f);
}

TEST(GevFeatures, PacketDelayOfAnotherTypeGivesZero) {
  CFeatures integer("<Integer Name='GevSCPD'><Value>4321</Value></Integer>");
  EXPECT_EQ(CGevFeatures::ReadHelperSettings(integer.Map()).packetDelay, 4321u);
  CFeatures floating("<Float Name='GevSCPD'><Value>4321</Value></Float>");
  EXPECT_EQ(CGevFeatures::ReadHelperSettings(floating.Map()).packetDelay, 0u);
}

TEST(GevFeatures, WithoutATriggerSelectorNoTriggerIsPushed) {
  CFeatures features("<Integer Name='Width'><Value>8</Value></Integer>");
  const SHelperSettings settings = CGevFeatures::ReadHelperSettings(features.Map());
  EXPECT_EQ(settings.lineStartTrigger, 0);
  EXPECT_FALSE(settings.lineScan);
}

TEST(GevFeatures, PartialImageModesMapToTheirCodesAndUnknownNamesToNothing) {
  uint32_t code = 99;
  ASSERT_TRUE(CGevFeatures::PartialImageModeOf("PartialImageOutput", code));
  EXPECT_EQ(code, 0u);
  ASSERT_TRUE(CGevFeatures::PartialImageModeOf("PartialImageDiscard", code));
  EXPECT_EQ(code, 1u);
  ASSERT_TRUE(CGevFeatures::PartialImageModeOf("PartialImageFilled", code));
  EXPECT_EQ(code, 2u);
  EXPECT_FALSE(CGevFeatures::PartialImageModeOf("PartialImageSomethingElse", code));
  EXPECT_EQ(code, 2u) << "an unknown name leaves the previous code";
}

}  // namespace
}  // namespace TALVIR

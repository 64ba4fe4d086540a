// The round trip over the simulated cameras' descriptions (producers/sim/xml), on the seeded register space.
#include "RoundTrip.h"

#include <gtest/gtest.h>

namespace PersistenceTest {
namespace {

std::string SimDescription(const char* name) {
  return ReadFileBytes(std::string(TALVIR_SOURCE_DIR) + "/producers/sim/xml/" + name);
}

// A camera as an application leaves it: unlocked, a region of interest, a trigger per selector value, some chunks.
void Configure(CDevice& camera, bool alternative) {
  camera.Poke(0x0F40, std::vector<uint8_t>(16, 0xFF));  // the model offers every pixel format
  camera.Poke(0x0F28, {0, 0, 0, 1});                    // a GigE Vision camera: packet size and delay exist
  camera.Set("TLParamsLocked", "0");
  camera.Set("OffsetXReg", "0");
  camera.Set("OffsetYReg", "0");
  camera.Set("Width", alternative ? "320" : "640");
  camera.Set("Height", alternative ? "200" : "480");
  camera.Set("OffsetX", alternative ? "16" : "0");
  camera.Set("PixelFormat", alternative ? "Mono12" : "Mono8");
  camera.Set("ExposureTime", alternative ? "1234.5" : "5000");
  camera.Set("DeviceUserID", alternative ? "left\tcamera" : "");
  for (const char* selector : {"FrameStart", "LineStart"}) {
    camera.Set("TriggerSelector", selector);
    camera.Set("TriggerMode", alternative && selector[0] == 'F' ? "On" : "Off");
    camera.Set("TriggerSource", alternative && selector[0] == 'L' ? "Line0" : "Software");
  }
  camera.Set("TriggerSelector", alternative ? "LineStart" : "FrameStart");
  camera.Set("ChunkModeActive", alternative ? "1" : "0");
  for (const char* chunk : {"Timestamp", "FrameID", "ExposureTime"}) {
    camera.Set("ChunkSelector", chunk);
    camera.Set("ChunkEnable", alternative && chunk[0] != 'F' ? "1" : "0");
  }
  camera.Set("ChunkSelector", "Timestamp");
  camera.Set("Gain", alternative ? "6" : "0");
  camera.Set("BlackLevel", alternative ? "10" : "0");
  camera.Set("EventSelector", "ExposureEnd");
  camera.Set("AcquisitionMode", "MultiFrame");
  camera.Set("AcquisitionFrameCount", alternative ? "12" : "1");
  camera.Set("AcquisitionMode", alternative ? "MultiFrame" : "Continuous");
  if (GenApi::IsWritable(camera.Node("AcquisitionFrameRate"))) {  // area-scan models only
    camera.Set("AcquisitionFrameRate", alternative ? "25.5" : "100");
  }
  camera.Poke(0x02A4, {0x00, 0x00, 0x02, 0x40, 0x00, 0x00, 0x23, 0x28, 0x00, 0x00, 0x00, 0x04});  // 576..9000 step 4
  camera.Set("GevSCPSPacketSize", alternative ? "8192" : "1496");
  camera.Set("GevSCPD", alternative ? "100" : "0");
  camera.Set("PartialImageOutputMode", alternative ? "PartialImageDiscard" : "PartialImageOutput");
  camera.Set("EventNotification", alternative ? "On" : "Off");
}

TEST(SimDescriptionRoundTrip, TheCameraSettingsComeBackOnAnotherCamera) {
  const std::string description = SimDescription("remote.xml");
  CDevice first(description, 1);
  Configure(first, true);
  std::vector<GenApi::SFeatureIssue> skipped;
  const std::string saved = GenApi::SaveFeatures(first.Map(), GenApi::fsStreamable, &skipped);
  for (const GenApi::SFeatureIssue& issue : skipped) {
    ADD_FAILURE() << issue.Name << ": " << issue.Reason;
  }
  CDevice second(description, 2);
  Configure(second, false);
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(second.Map(), saved);
  for (const GenApi::SFeatureIssue& failure : result.Failures) {
    ADD_FAILURE() << "line " << failure.Line << " " << failure.Name << "=" << failure.Value << ": " << failure.Reason;
  }
  EXPECT_EQ(second.Get("Width"), "320");
  EXPECT_EQ(second.Get("OffsetX"), "16");
  EXPECT_EQ(second.Get("PixelFormat"), "Mono12");
  EXPECT_EQ(second.Get("ExposureTime"), "1234.5");
  EXPECT_EQ(second.Get("DeviceUserID"), "left\tcamera");
  EXPECT_EQ(second.Get("TriggerSelector"), "LineStart");
  EXPECT_EQ(second.Get("TriggerSource"), "Line0");
  second.Set("TriggerSelector", "FrameStart");
  EXPECT_EQ(second.Get("TriggerMode"), "On");
  EXPECT_EQ(second.Get("TriggerSource"), "Software");
  second.Set("ChunkSelector", "ExposureTime");
  EXPECT_EQ(second.Get("ChunkEnable"), "1");
  second.Set("ChunkSelector", "FrameID");
  EXPECT_EQ(second.Get("ChunkEnable"), "0");
  second.Set("TriggerSelector", "LineStart");
  second.Set("ChunkSelector", "Timestamp");
  EXPECT_EQ(std::string(GenApi::SaveFeatures(second.Map())), saved);
}

TEST(SimDescriptionRoundTrip, LockedParametersAreReportedNotLost) {
  const std::string description = SimDescription("remote.xml");
  CDevice first(description, 1);
  Configure(first, true);
  const std::string saved = GenApi::SaveFeatures(first.Map());
  CDevice second(description, 2);
  Configure(second, false);
  second.Set("TLParamsLocked", "1");  // as while the camera streams
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(second.Map(), saved);
  bool widthReported = false;
  for (const GenApi::SFeatureIssue& failure : result.Failures) {
    widthReported = widthReported || (failure.Name == "Width" && failure.Reason.find("RO") != std::string::npos);
  }
  EXPECT_TRUE(widthReported);
  EXPECT_EQ(second.Get("Width"), "640");
  EXPECT_EQ(second.Get("ExposureTime"), "1234.5");  // not locked: loaded all the same
}

TEST(SimDescriptionRoundTrip, EveryModuleDescriptionRoundTrips) {
  // The frame-grabber and GigE additions (device_cl, device_gev, stream_cxp) are fragments merged into these.
  for (const char* name : {"remote.xml", "device.xml", "interface.xml", "system.xml", "stream.xml"}) {
    SCOPED_TRACE(name);
    for (GenApi::EFeatureSelection selection : {GenApi::fsStreamable, GenApi::fsAllWritable}) {
      const SRoundTrip trip = RoundTrip(SimDescription(name), selection, [](CDevice& device) {
        if (device.Node("TLParamsLocked") != nullptr) {
          Configure(device, false);
        }
      });
      EXPECT_TRUE(trip.Lost.empty()) << trip.Lost.front();
    }
  }
}

}  // namespace
}  // namespace PersistenceTest

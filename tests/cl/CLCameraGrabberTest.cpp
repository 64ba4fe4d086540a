// A Camera Link camera of the simulated frame grabber (TalvirSimCL.cti), made the way the library makes it: the
// grabber streams while the camera's node map is open over the grabber's serial channel (clserkrx.so).
#include "../camera/SimRig.h"

#include "cl/CLCamera.h"

#include <talvir/CustomInfo.h>

#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <string>

namespace TALVIR {
namespace {

using Testing::CSimRig;
using Testing::SImageGuard;

constexpr uint64_t kMono8 = 0x01080001;
const char* const kSmallGrabber = R"({ "interfaces": [ { "devices": [
    { "width": 64, "height": 48, "frameRate": 0 }, { "width": 64, "height": 48, "frameRate": 0 } ] } ] })";

int64_t GrabberInteger(ICamera& camera, const char* name) {
  GenApi::CIntegerPtr node(camera.GetDeviceXml()->GetNodeMap()->GetNode(name));
  return node->GetValue();
}

int64_t CameraInteger(ICamera& camera, const char* name) {
  GenApi::CIntegerPtr node(CSimRig::Features(camera).GetNode(name));
  return node->GetValue();
}

int32_t OpenSerialOf(ICamera& camera) {
  ICameraInfo* const info = camera.GetCameraInfo();
  return camera.OpenSerial(info->GetCustomInfo(CustomInfo::CLGrabberSerialPort),
                           info->GetCustomInfo(CustomInfo::CLProtocolDescriptor));
}

TEST(CLCameraGrabber, TheRegistryMakesCameraLinkCamerasForGrabbers) {
  CSimRig rig("TalvirSimCL.cti", kSmallGrabber);
  ASSERT_EQ(rig.DeviceCount(), 2u);
  for (size_t index = 0; index < 2; ++index) {
    CCamera* camera = rig.Camera(index);
    EXPECT_NE(dynamic_cast<CCLCamera*>(camera), nullptr);
    EXPECT_EQ(std::string(camera->GetCameraInfo()->GetCustomInfo(CustomInfo::CLGrabberSerialPort)),
              "KORIX#CL_GRABBER#SERIAL0." + std::to_string(index));
  }
}

TEST(CLCameraGrabber, OpensTheGrabberWithoutItsRemoteDevice) {
  CSimRig rig("TalvirSimCL.cti", kSmallGrabber);
  CCamera* camera = rig.Camera(0);
  EXPECT_FALSE(camera->IsOnline());
  ASSERT_EQ(camera->Open(7), Status::Ok) << "any other mode opens exclusively";
  EXPECT_TRUE(camera->IsOpen());
  EXPECT_TRUE(camera->IsOnline());
  EXPECT_NE(camera->GetDeviceXml(), nullptr);
  EXPECT_NE(camera->GetStreamXml(), nullptr);
  EXPECT_EQ(camera->RemotePort(), nullptr);
  EXPECT_EQ(camera->GetRemoteXml(), nullptr) << "no serial link yet";
  EXPECT_FALSE(camera->IsSerialOnline());
  camera->Close();
  EXPECT_FALSE(camera->IsOnline());
  // Opened again read-only, the grabber still streams.
  ASSERT_EQ(camera->Open(AccessMode::ReadOnly), Status::Ok);
}

TEST(CLCameraGrabber, StreamsWithTheSerialNodeMapOpen) {
  CSimRig rig("TalvirSimCL.cti", kSmallGrabber);
  CCamera* camera = rig.Camera(0);
  // Every buffer carries a 1 MiB margin: a few are enough.
  camera->SetBufferCount(3);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(OpenSerialOf(*camera), 0);
  EXPECT_TRUE(camera->IsSerialOnline());

  // The camera's features over the serial link.
  CSimRig::SetInteger(*camera, "Width", 1024);
  EXPECT_EQ(CameraInteger(*camera, "Width"), 1024);
  GenApi::CFloatPtr exposure(CSimRig::Features(*camera).GetNode("ExposureTime"));
  ASSERT_TRUE(exposure.IsValid());
  exposure->SetValue(exposure->GetMin());
  EXPECT_DOUBLE_EQ(exposure->GetValue(), exposure->GetMin());

  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 3u);
  EXPECT_EQ(GrabberInteger(*camera, "TLParamsLocked"), 1);
  EXPECT_EQ(CameraInteger(*camera, "TLParamsLocked"), 1);
  uint64_t lastFrame = 0;
  for (int i = 0; i < 6; ++i) {
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    EXPECT_TRUE(image.image->IsComplete());
    EXPECT_EQ(image.image->GetWidth(), 64u);
    EXPECT_EQ(image.image->GetHeight(), 48u);
    EXPECT_EQ(image.image->GetPixelFormat(), kMono8);
    EXPECT_EQ(image.image->GetBufferSize(), 64u * 48u + CCLCamera::kBufferMargin);
    EXPECT_GT(image.image->GetFrameId(), lastFrame);
    lastFrame = image.image->GetFrameId();
  }
  // The serial link works while the grabber streams.
  exposure->SetValue(exposure->GetMax());
  EXPECT_DOUBLE_EQ(exposure->GetValue(), exposure->GetMax());

  camera->StopGrabbing();
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
  EXPECT_EQ(GrabberInteger(*camera, "TLParamsLocked"), 0);
  EXPECT_EQ(CameraInteger(*camera, "TLParamsLocked"), 0);

  // Closing the grabber closes the serial link too.
  camera->Close();
  EXPECT_EQ(camera->GetRemoteXml(), nullptr);
  EXPECT_FALSE(camera->IsSerialOnline());
}

TEST(CLCameraGrabber, TheGrabbersFormatSizesTheBuffers) {
  CSimRig rig("TalvirSimCL.cti", kSmallGrabber);
  CCamera* camera = rig.Camera(0);
  camera->SetBufferCount(2);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  GenApi::CEnumerationPtr format(camera->GetDeviceXml()->GetNodeMap()->GetNode("PixelFormat"));
  format->FromString("Mono16");
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  EXPECT_EQ(camera->PayloadSize(), 64u * 48u * 2u);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_EQ(image.image->GetBufferSize(), 64u * 48u * 2u + CCLCamera::kBufferMargin);
  // Locked while streaming.
  EXPECT_FALSE(GenApi::IsWritable(format));
  camera->StopGrabbing();
  EXPECT_TRUE(GenApi::IsWritable(format));
}

TEST(CLCameraGrabber, TheSecondChannelReachesTheSecondCamera) {
  CSimRig rig("TalvirSimCL.cti", kSmallGrabber);
  CCamera* first = rig.Camera(0);
  CCamera* second = rig.Camera(1);
  ASSERT_EQ(OpenSerialOf(*first), 0);
  ASSERT_EQ(OpenSerialOf(*second), 0);
  GenApi::CStringPtr serial0(CSimRig::Features(*first).GetNode("DeviceSerialNumber"));
  GenApi::CStringPtr serial1(CSimRig::Features(*second).GetNode("DeviceSerialNumber"));
  EXPECT_EQ(std::string(serial0->GetValue().c_str()), "CLG00001");
  EXPECT_EQ(std::string(serial1->GetValue().c_str()), "CLG00002");
}

}  // namespace
}  // namespace TALVIR

// Faults of the simulated cameras as they reach a camera: lost devices, failing registers, late and incomplete
// frames. Every call returns with a clear code, and no buffer is lost.
#include "SimRig.h"

#include <talvirsim/SimRegisters.h>

#include <gtest/gtest.h>

#include <chrono>

namespace TALVIR {
namespace {

using Testing::CSimRig;
using Testing::SImageGuard;

TEST(CameraFault, ADeviceLostMidStreamEndsEveryGrabModeCleanly) {
  for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
    SCOPED_TRACE(mode);
    CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [
        { "width": 64, "height": 64, "faults": { "loseAfterFrames": 5 } } ] } ] })");
    CCamera* camera = rig.Camera(0);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
    int delivered = 0;
    int32_t result = Status::Ok;
    for (int i = 0; i < 20 && result == Status::Ok; ++i) {
      SImageGuard image;
      result = camera->GetImage(&image.image, 500);
      delivered += result == Status::Ok ? 1 : 0;
    }
    EXPECT_LE(delivered, 5);
    EXPECT_TRUE(result == Status::FetchFailed || result == Status::Timeout) << result;
    // Further fetches keep returning instead of hanging.
    SImageGuard late;
    EXPECT_NE(camera->GetImage(&late.image, 50), Status::Ok);
    camera->StopGrabbing();
    EXPECT_FALSE(camera->IsGrabbing());
    EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u) << "the buffers could be revoked after the loss";
    EXPECT_NE(camera->StartGrabbing(mode, 0), Status::Ok) << "a lost device does not start again";
    EXPECT_FALSE(camera->IsGrabbing());
    camera->Close();
    EXPECT_FALSE(camera->IsOpen());
    camera->Release();
  }
}

TEST(CameraFault, ALostDeviceWithImagesStillHeldReleasesEverything) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  IImage* held = nullptr;
  ASSERT_EQ(camera->GetImage(&held, 2000), Status::Ok);
  CSimRig::Execute(*camera, "SimDeviceLost");
  camera->Release();  // stops, closes and frees while the image is still held
  EXPECT_EQ(held->GetHeight(), 480u);
  held->Release();
}

TEST(CameraFault, ARegisterThatCannotBeReadFailsTheFeatureNotTheCamera) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  CSimRig::SetInteger(*camera, "SimReadFailAddress", static_cast<int64_t>(TalvirSim::Remote::kPayloadSize));
  // Without a readable PayloadSize the payload is computed from the format.
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(camera->PayloadSize(), 640u * 480u);
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  GenApi::CIntegerPtr payload(CSimRig::Features(*camera).GetNode("PayloadSize"));
  EXPECT_THROW(payload->GetValue(true, true), GenICam::GenericException);
}

TEST(CameraFault, DiscardingTheOutputQueueGivesEveryFilledBufferBackToTheStream) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  CSimRig::SetEnum(*camera, "TriggerMode", "On");
  CSimRig::SetEnum(*camera, "TriggerSource", "Software");
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  for (int i = 0; i < 3; ++i) {
    CSimRig::Execute(*camera, "TriggerSoftware");
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (CSimRig::Counts(*camera).awaitingDelivery < 3 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
  }
  ASSERT_EQ(CSimRig::Counts(*camera).awaitingDelivery, 3u);
  camera->DiscardOutputQueue();
  const Testing::SStreamCounts counts = CSimRig::Counts(*camera);
  EXPECT_EQ(counts.awaitingDelivery, 0u);
  EXPECT_EQ(counts.queued, 8u) << "no buffer is lost to the acquisition";
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 0), Status::Timeout);
}

TEST(CameraFault, ALateFrameTimesOutOnceAndArrivesAfterwards) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [
      { "width": 64, "height": 64, "faults": { "lateFrameId": 3, "lateByMs": 400 } } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  camera->SetBufferCount(1 + 7);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  int timeouts = 0;
  int frames = 0;
  while (frames < 5) {
    SImageGuard image;
    const int32_t result = camera->GetImage(&image.image, 150);
    if (result == Status::Timeout) {
      ++timeouts;
      ASSERT_LT(timeouts, 10);
      continue;
    }
    ASSERT_EQ(result, Status::Ok);
    ++frames;
  }
  EXPECT_GE(timeouts, 1);
}

TEST(CameraFault, IncompleteFramesAreCountedNotLost) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [
      { "width": 64, "height": 64, "frameRate": 0, "faults": { "incompleteEveryN": 3 } } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  camera->SetBufferCount(4);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  int incomplete = 0;
  for (int i = 0; i < 30; ++i) {
    SImageGuard image;
    const int32_t result = camera->GetImage(&image.image, 2000);
    ASSERT_NE(image.image, nullptr);
    if (result == Status::ImageIncomplete) {
      ++incomplete;
      EXPECT_FALSE(image.image->IsComplete());
    } else {
      EXPECT_EQ(result, Status::Ok);
    }
  }
  EXPECT_EQ(incomplete, 10);
  // Newest mode never hands out an incomplete frame, and still loses no buffer.
  camera->StopGrabbing();
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  for (int i = 0; i < 10; ++i) {
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    EXPECT_TRUE(image.image->IsComplete());
  }
}

TEST(CameraFault, StoppingAfterTheStreamEndedByItselfWorks) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 2), Status::Ok);
  for (int i = 0; i < 2; ++i) {
    SImageGuard image;
    camera->GetImage(&image.image, 2000);
  }
  camera->StopGrabbing();
  camera->StopGrabbing();
  EXPECT_FALSE(camera->IsGrabbing());
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
}

}  // namespace
}  // namespace TALVIR

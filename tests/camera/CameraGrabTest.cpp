// Streaming from the simulated cameras in the three grab modes, and the buffer accounting behind it.
#include "SimRig.h"

#include <talvirsim/TestPattern.h>

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace TALVIR {
namespace {

using Testing::CSimRig;
using Testing::SImageGuard;
using Testing::SStreamCounts;
using Clock = std::chrono::steady_clock;

// Frames come only on TriggerSoftware: the stream holds still between the test's steps.
void UseSoftwareTrigger(ICamera& camera) {
  CSimRig::SetEnum(camera, "TriggerSelector", "FrameStart");
  CSimRig::SetEnum(camera, "TriggerMode", "On");
  CSimRig::SetEnum(camera, "TriggerSource", "Software");
}

// Polls the producer's counts until `done` holds (the grab thread works on its own), at most two seconds.
template <typename TCondition>
SStreamCounts WaitForCounts(CCamera& camera, TCondition done) {
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(2);
  SStreamCounts counts = CSimRig::Counts(camera);
  while (!done(counts) && Clock::now() < deadline) {
    std::this_thread::yield();
    counts = CSimRig::Counts(camera);
  }
  return counts;
}

// The frame's pixels are the simulator's test pattern for its frame ID.
void ExpectPattern(IImage& image) {
  const TalvirSim::SPixelFormat* format = TalvirSim::FindPixelFormat(static_cast<uint32_t>(image.GetPixelFormat()));
  ASSERT_NE(format, nullptr);
  const std::vector<uint8_t> expected = TalvirSim::MakeImage(*format, image.GetWidth(), image.GetHeight(),
                                                             image.GetFrameId());
  ASSERT_GE(image.GetBufferSize(), image.GetImageOffset() + expected.size());
  EXPECT_EQ(std::memcmp(image.GetBuffer() + image.GetImageOffset(), expected.data(), expected.size()), 0)
      << "frame " << image.GetFrameId();
}

TEST(CameraGrab, EveryModeOnEveryFlavourDeliversTheTestPattern) {
  for (const char* producer :
       {"TalvirSim.cti", "TalvirSimGEVTL.cti", "U3VTLTAV.cti", "TalvirSimCL.cti", "TalvirSimCXP.cti"}) {
    for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
      SCOPED_TRACE(std::string(producer) + " mode " + std::to_string(mode));
      CSimRig rig(producer, R"({ "interfaces": [ { "devices": [
          { "width": 64, "height": 48, "frameRate": 0 }, { "width": 64, "height": 48, "frameRate": 0 } ] } ] })");
      CCamera* camera = rig.Camera(mode % 2);
      camera->SetBufferCount(4);
      ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
      ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
      EXPECT_TRUE(camera->IsGrabbing());
      uint64_t lastFrame = 0;
      for (int i = 0; i < 5; ++i) {
        SImageGuard image;
        ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
        ASSERT_NE(image.image, nullptr);
        EXPECT_TRUE(image.image->IsComplete());
        EXPECT_EQ(image.image->GetWidth(), 64u);
        EXPECT_EQ(image.image->GetHeight(), 48u);
        EXPECT_GT(image.image->GetFrameId(), lastFrame);
        lastFrame = image.image->GetFrameId();
        ExpectPattern(*image.image);
        EXPECT_EQ(image.image->GetLinePitch(), 64u * image.image->GetPixelFactor() * image.image->GetPixelBits() / 8);
      }
      camera->StopGrabbing();
      EXPECT_FALSE(camera->IsGrabbing());
      EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u) << "every buffer is revoked";
      // A second acquisition starts from a clean stream.
      ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
      SImageGuard again;
      EXPECT_EQ(camera->GetImage(&again.image, 2000), Status::Ok);
      camera->StopGrabbing();
    }
  }
}

TEST(CameraGrab, StartingTwiceIsRefusedAndChangesNothing) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  const uint64_t announced = CSimRig::Counts(*camera).announced;
  EXPECT_EQ(announced, 8u);
  EXPECT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::AlreadyGrabbing);
  EXPECT_EQ(CSimRig::Counts(*camera).announced, announced);
  EXPECT_TRUE(camera->IsGrabbing());
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
}

TEST(CameraGrab, GetImageWithoutAcquisitionSaysSo) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  IImage* image = reinterpret_cast<IImage*>(0x1);
  EXPECT_EQ(camera->GetImage(&image, 0), Status::NotGrabbing);
  EXPECT_EQ(image, nullptr) << "the out-pointer is cleared first";
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_EQ(camera->GetImage(&image, 0), Status::NotGrabbing);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(camera->GetImage(nullptr, 0), Status::NotGrabbing);
  camera->StopGrabbing();
  EXPECT_EQ(camera->GetImage(&image, 0), Status::NotGrabbing);
  EXPECT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  camera->Close();
  EXPECT_FALSE(camera->IsGrabbing());
  EXPECT_EQ(camera->GetImage(&image, 0), Status::NotGrabbing);
}

TEST(CameraGrab, ReleasingAnImageWhileGrabbingQueuesExactlyItsOwnBuffer) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  UseSoftwareTrigger(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 8u);
  std::vector<IImage*> held;
  for (int i = 0; i < 3; ++i) {
    CSimRig::Execute(*camera, "TriggerSoftware");
    IImage* image = nullptr;
    ASSERT_EQ(camera->GetImage(&image, 2000), Status::Ok);
    held.push_back(image);
    const SStreamCounts counts = CSimRig::Counts(*camera);
    EXPECT_EQ(counts.announced, counts.queued + counts.awaitingDelivery + held.size());
  }
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 5u);
  held[1]->Release();
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 6u);
  held[0]->Release();
  held[2]->Release();
  const SStreamCounts counts = CSimRig::Counts(*camera);
  EXPECT_EQ(counts.queued, 8u);
  EXPECT_EQ(counts.awaitingDelivery, 0u);
}

TEST(CameraGrab, ImagesHeldAcrossStopStayReadableAndGiveNothingBack) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  std::vector<IImage*> held(3, nullptr);
  for (IImage*& image : held) {
    ASSERT_EQ(camera->GetImage(&image, 2000), Status::Ok);
  }
  camera->StopGrabbing();
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
  // The pixels are still the application's to read (the sanitizers watch the memory).
  for (IImage* image : held) {
    ExpectPattern(*image);
    image->Release();
  }
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 0u) << "nothing was queued after the stop";
  // The next acquisition is not disturbed by the late releases.
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 8u);
}

TEST(CameraGrab, ImagesOfAnEarlierAcquisitionNeverQueueTheBuffersOfALaterOne) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  UseSoftwareTrigger(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  CSimRig::Execute(*camera, "TriggerSoftware");
  IImage* old = nullptr;
  ASSERT_EQ(camera->GetImage(&old, 2000), Status::Ok);
  camera->StopGrabbing();
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  const SStreamCounts before = CSimRig::Counts(*camera);
  old->Release();
  const SStreamCounts after = CSimRig::Counts(*camera);
  EXPECT_EQ(after.queued, before.queued);
  EXPECT_EQ(after.announced, 8u);
}

TEST(CameraGrab, BufferCountZeroAnnouncesTheProducersMinimumButAtLeastEight) {
  {
    CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [ { "bufferAnnounceMin": 12 } ] } ] })");
    CCamera* camera = rig.Camera(0);
    camera->SetBufferCount(0);
    EXPECT_EQ(camera->GetBufferCount(), 0u);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
    EXPECT_EQ(CSimRig::Counts(*camera).announced, 12u);
  }
  {
    CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [ { "bufferAnnounceMin": 2 } ] } ] })");
    CCamera* camera = rig.Camera(0);
    camera->SetBufferCount(0);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
    EXPECT_EQ(CSimRig::Counts(*camera).announced, 8u);
  }
}

TEST(CameraGrab, TooFewBuffersForTheProducerFailToStartAndLeaveNothingAnnounced) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [ { "bufferAnnounceMin": 12 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  camera->SetBufferCount(3);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::StartStreamFailed);
  EXPECT_FALSE(camera->IsGrabbing());
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
  camera->SetBufferCount(12);
  EXPECT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
}

TEST(CameraGrab, ACountedAcquisitionEndsByItself) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [ { "frameRate": 0 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 3), Status::Ok);
  for (int i = 0; i < 3; ++i) {
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  }
  SImageGuard extra;
  EXPECT_EQ(camera->GetImage(&extra.image, 100), Status::Timeout);
  EXPECT_EQ(extra.image, nullptr);
}

TEST(CameraGrab, NewestModeTimesOutWhenNoImageComes) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  UseSoftwareTrigger(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  const Clock::time_point start = Clock::now();
  IImage* image = nullptr;
  EXPECT_EQ(camera->GetImage(&image, 300), Status::Timeout);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(300));
  EXPECT_EQ(image, nullptr);
  EXPECT_EQ(camera->GetImage(&image, 0), Status::Timeout);
}

TEST(CameraGrab, NewestModeWithTimeOutZeroStillTakesAWaitingImage) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  UseSoftwareTrigger(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  SImageGuard none;
  EXPECT_EQ(camera->GetImage(&none.image, 0), Status::Timeout) << "nothing waits yet";
  CSimRig::Execute(*camera, "TriggerSoftware");
  // Calls that never wait pick the frame up once the grab thread holds it.
  SImageGuard image;
  int32_t result = Status::Timeout;
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(2);
  while (result == Status::Timeout && Clock::now() < deadline) {
    result = camera->GetImage(&image.image, 0);
  }
  ASSERT_EQ(result, Status::Ok);
  ASSERT_NE(image.image, nullptr);
  ExpectPattern(*image.image);
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 7u) << "the one image handed out holds the one buffer";
}

TEST(CameraGrab, FreshModeDropsAnImageThatArrivedBeforeTheCall) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  UseSoftwareTrigger(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Fresh, 0), Status::Ok);
  CSimRig::Execute(*camera, "TriggerSoftware");
  ASSERT_EQ(
      WaitForCounts(*camera, [](const SStreamCounts& c) { return c.queued == 7 && c.awaitingDelivery == 0; }).queued,
      7u);
  SImageGuard stale;
  EXPECT_EQ(camera->GetImage(&stale.image, 100), Status::Timeout);
  EXPECT_EQ(stale.image, nullptr);
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 8u) << "the stale image's buffer went back";
  // A frame that comes while the call waits is handed out. The helper's trigger may still come before the call
  // begins (that frame is stale and goes back), so it triggers again every 50 ms until the call has returned.
  std::mutex mutex;
  std::condition_variable returned;
  bool done = false;
  std::thread trigger([&] {
    std::unique_lock<std::mutex> lock(mutex);
    do {
      lock.unlock();
      CSimRig::Execute(*camera, "TriggerSoftware");
      lock.lock();
    } while (!returned.wait_for(lock, std::chrono::milliseconds(50), [&] { return done; }));
  });
  SImageGuard fresh;
  const int32_t result = camera->GetImage(&fresh.image, 2000);
  {
    std::lock_guard<std::mutex> lock(mutex);
    done = true;
  }
  returned.notify_all();
  trigger.join();
  EXPECT_EQ(result, Status::Ok);
}

TEST(CameraGrab, NewestModeHandsOutOnlyTheNewestAndLosesNoBuffer) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [
      { "width": 64, "height": 64, "frameRate": 0 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  camera->SetBufferCount(4);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  uint64_t last = 0;
  bool skipped = false;
  for (int i = 0; i < 50; ++i) {
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    const uint64_t frame = image.image->GetFrameId();
    EXPECT_GT(frame, last);
    skipped = skipped || (last != 0 && frame > last + 1);
    last = frame;
    ExpectPattern(*image.image);
  }
  EXPECT_TRUE(skipped) << "a free-running camera outpaces the consumer: older frames are dropped";
  // Stop the frames and look at the stream once the grab thread has nothing more to fetch.
  UseSoftwareTrigger(*camera);
  const SStreamCounts counts =
      WaitForCounts(*camera, [](const SStreamCounts& c) { return c.awaitingDelivery == 0 && c.queued >= 3; });
  EXPECT_EQ(counts.awaitingDelivery, 0u);
  EXPECT_GE(counts.queued + 1, counts.announced) << "at most the newest image is held back";
  SImageGuard newest;
  camera->GetImage(&newest.image, 0);
  if (newest.image != nullptr) {
    newest.image->Release();
    newest.image = nullptr;
  }
  EXPECT_EQ(CSimRig::Counts(*camera).queued, 4u);
}

}  // namespace
}  // namespace TALVIR

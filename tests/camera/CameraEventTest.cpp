// Device events through registered callbacks, and notifications through the camera's handler.
#include "SimRig.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <vector>

namespace TALVIR {
namespace {

using Testing::CSimRig;

constexpr uint32_t kRemoteDeviceEvent = GenTL::EVENT_REMOTE_DEVICE;

// Collects events and lets the test wait for a number of them.
class CCollector final : public IEventCallback {
public:
  void OnEvent(const uint8_t* data, size_t deliveredSize) override {
    SDeviceEventRecord record;
    std::memcpy(&record, data, sizeof record);
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_records.push_back(record);
      m_sizes.push_back(deliveredSize);
    }
    m_arrived.notify_all();
  }
  bool WaitFor(size_t count) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_arrived.wait_for(lock, std::chrono::seconds(3), [&] { return m_records.size() >= count; });
  }
  std::vector<SDeviceEventRecord> Records() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_records;
  }
  size_t Count() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_records.size();
  }

private:
  std::mutex m_mutex;
  std::condition_variable m_arrived;
  std::vector<SDeviceEventRecord> m_records;
  std::vector<size_t> m_sizes;
};

void EnableExposureEndEvents(ICamera& camera) {
  CSimRig::SetEnum(camera, "EventSelector", "ExposureEnd");
  CSimRig::SetEnum(camera, "EventNotification", "On");
}

TEST(CameraEvent, TheNewBufferEventOfTheStreamIsRefused) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  CCollector collector;
  EXPECT_EQ(camera->SetEventCallback(EventModule::DataStream, 1, &collector), Status::Refused);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_EQ(camera->SetEventCallback(EventModule::DataStream, 1, &collector), Status::Refused);
  EXPECT_EQ(camera->SetEventCallback(EventModule::DataStream, 1, nullptr), Status::Refused);
}

TEST(CameraEvent, RegisteringNeedsAnOpenModuleOfAKnownKind) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  CCollector collector;
  EXPECT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, &collector), -2);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_EQ(camera->SetEventCallback(9, kRemoteDeviceEvent, &collector), -1);
  EXPECT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, nullptr), -1)
      << "nothing to remove";
}

void ExpectEventsOfLayout(int layout) {
  CSimRig rig("TalvirSim.cti", "{ \"interfaces\": [ { \"devices\": [ { \"eventLayoutVersion\": " +
                                   std::to_string(layout) + " } ] } ] }");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  CCollector collector;
  ASSERT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, &collector), Status::Ok);
  EXPECT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, &collector), -1)
      << "registered once";
  EnableExposureEndEvents(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  std::vector<uint64_t> frames;
  for (int i = 0; i < 3; ++i) {
    Testing::SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    frames.push_back(image.image->GetFrameId());
  }
  ASSERT_TRUE(collector.WaitFor(3));
  const std::vector<SDeviceEventRecord> records = collector.Records();
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(records[i].eventId, 0x9001);
    EXPECT_EQ(records[i].blockId, static_cast<uint16_t>(frames[i]));
    EXPECT_EQ(records[i].blockId64, layout == 2 ? frames[i] : 0u);
    EXPECT_NE(uint64_t{records[i].timestampHigh} << 32 | records[i].timestampLow, 0u);
  }
  // Removing answers -1 as well, and no event arrives afterwards.
  EXPECT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, nullptr), -1);
  const size_t before = collector.Count();
  Testing::SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  CSimRig::Execute(*camera, "SimFireEvent");
  camera->StopGrabbing();
  EXPECT_EQ(collector.Count(), before);
}

TEST(CameraEvent, EventsOfLayoutOne) { ExpectEventsOfLayout(1); }

TEST(CameraEvent, EventsOfLayoutTwo) { ExpectEventsOfLayout(2); }

TEST(CameraEvent, AListenerRemovedWhileEventsArriveStopsCleanly) {
  CSimRig rig("TalvirSim.cti",
              R"({ "interfaces": [ { "devices": [ { "width": 64, "height": 64, "frameRate": 0 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EnableExposureEndEvents(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  for (int round = 0; round < 20; ++round) {
    CCollector collector;
    ASSERT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, &collector), Status::Ok);
    ASSERT_TRUE(collector.WaitFor(1));
    EXPECT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, nullptr), -1);
    const size_t after = collector.Count();
    EXPECT_EQ(collector.Count(), after) << "no call after the removal returned";
  }
}

TEST(CameraEvent, EventsOfTheDeviceModule) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  CCollector collector;
  ASSERT_EQ(camera->SetEventCallback(EventModule::Device, kRemoteDeviceEvent, &collector), Status::Ok);
  CSimRig::Execute(*camera, "SimFireEvent");
  ASSERT_TRUE(collector.WaitFor(1));
  EXPECT_EQ(collector.Records()[0].eventId, 0x9001);
  // The callback must outlive its registration: closing ends it.
  camera->Close();
}

// A callback that uses the camera, as applications do.
class CCameraUser final : public IEventCallback {
public:
  explicit CCameraUser(ICamera& camera) : m_camera(camera) {}
  void OnEvent(const uint8_t*, size_t) override {
    m_open = m_camera.IsOpen();
    ++m_calls;
  }
  std::atomic<int> m_calls{0};

private:
  ICamera& m_camera;
  std::atomic<bool> m_open{false};
};

TEST(CameraEvent, CallbacksThatUseTheCameraDuringCloseDoNotDeadlock) {
  CSimRig rig("TalvirSim.cti",
              R"({ "interfaces": [ { "devices": [ { "width": 64, "height": 64, "frameRate": 0 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  for (int round = 0; round < 10; ++round) {
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    EnableExposureEndEvents(*camera);
    CCameraUser user(*camera);
    ASSERT_EQ(camera->SetEventCallback(EventModule::RemoteDevice, kRemoteDeviceEvent, &user), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
    while (user.m_calls.load() < 2) {
      std::this_thread::yield();
    }
    camera->Close();
    const int calls = user.m_calls.load();
    EXPECT_EQ(user.m_calls.load(), calls) << "no callback after Close returned";
  }
}

class CHandler final : public ICameraHandler {
public:
  void OnNotify(uint32_t code, uint64_t arg1, uint64_t arg2) override {
    m_code = code;
    m_args = arg1 + arg2;
    ++m_calls;
  }
  uint32_t m_code = 0;
  uint64_t m_args = 0;
  int m_calls = 0;
};

TEST(CameraEvent, NotificationsReachTheHandlerWhileOneIsSet) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  camera->Notify(Notification::DeviceLost, 0, 0);  // no handler: nothing happens
  CHandler handler;
  camera->SetHandler(&handler);
  camera->Notify(Notification::DeviceLost, 1, 2);
  EXPECT_EQ(handler.m_calls, 1);
  EXPECT_EQ(handler.m_code, Notification::DeviceLost);
  EXPECT_EQ(handler.m_args, 3u);
  camera->SetHandler(nullptr);
  camera->Notify(Notification::DeviceLost, 0, 0);
  EXPECT_EQ(handler.m_calls, 1);
}

}  // namespace
}  // namespace TALVIR

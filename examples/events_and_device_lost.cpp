// Receives the camera's device events while grabbing, and the notification that the device was lost.
//   events_and_device_lost [SERIAL]     (default: the first camera found)
// On a simulated camera the program loses the device itself (the SimDeviceLost command); on a real one, unplug it
// within 30 seconds.
#include <talvir/Talvir.h>

#include <GenApi/GenApi.h>
#include <GenTL/GenTL.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

namespace {

// Called on a library thread when the device goes away.
class CLostHandler final : public TALVIR::ICameraHandler {
public:
  void OnNotify(uint32_t code, uint64_t, uint64_t) override {
    if (code == TALVIR::Notification::DeviceLost) {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_lost = true;
      m_changed.notify_all();
    }
  }
  bool WaitLost(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [this] { return m_lost; });
  }

private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_lost = false;
};

// Called on the camera's event thread for every device event; the record is at the start of the data.
class CEventCounter final : public TALVIR::IEventCallback {
public:
  void OnEvent(const uint8_t* data, size_t deliveredSize) override {
    if (deliveredSize >= sizeof(TALVIR::SDeviceEventRecord)) {
      const auto* record = reinterpret_cast<const TALVIR::SDeviceEventRecord*>(data);
      m_lastEventId = record->eventId;
      ++m_count;
    }
  }
  unsigned Count() const { return m_count; }
  unsigned LastEventId() const { return m_lastEventId; }

private:
  std::atomic<unsigned> m_count{0};
  std::atomic<unsigned> m_lastEventId{0};
};

TALVIR::ICamera* OpenCamera(const char* serial) {
  if (serial != nullptr) {
    return TALVIR::CreateCameraBySN(serial);
  }
  TALVIR::ICamera* camera = nullptr;
  for (TALVIR::ICameraInfo* info : TALVIR::Discovery(nullptr)) {
    if (camera == nullptr) {
      camera = TALVIR::CreateCamera(info);
    }
    info->Destroy();
  }
  return camera;
}

}  // namespace

int main(int argc, char** argv) {
  TALVIR::Init();
  CLostHandler handler;
  CEventCounter events;
  int result = 1;
  TALVIR::ICamera* camera = OpenCamera(argc > 1 ? argv[1] : nullptr);
  if (camera == nullptr || camera->Open(TALVIR::AccessMode::Control) != TALVIR::Status::Ok) {
    std::fprintf(stderr, "events_and_device_lost: no camera to open\n");
  } else {
    camera->SetHandler(&handler);
    GenApi::INodeMap* features = camera->GetRemoteXml()->GetNodeMap();
    try {
      // Ask the camera for an event at the end of every exposure.
      GenApi::CEnumerationPtr(features->GetNode("EventSelector"))->FromString("ExposureEnd");
      GenApi::CEnumerationPtr(features->GetNode("EventNotification"))->FromString("On");
    } catch (const GenICam::GenericException& error) {
      std::fprintf(stderr, "events_and_device_lost: no exposure-end events: %s\n", error.GetDescription());
    }
    camera->SetEventCallback(TALVIR::EventModule::RemoteDevice, GenTL::EVENT_REMOTE_DEVICE, &events);
    if (camera->StartGrabbing(TALVIR::GrabMode::Direct, 0) == TALVIR::Status::Ok) {
      for (int frame = 0; frame < 20; ++frame) {
        TALVIR::IImage* image = nullptr;
        camera->GetImage(&image, 1000);
        if (image != nullptr) {
          image->Release();
        }
      }
    }
    std::printf("%u device events so far (last ID 0x%X)\n", events.Count(), events.LastEventId());

    GenApi::CCommandPtr simulateLoss(features->GetNode("SimDeviceLost"));
    if (simulateLoss.IsValid()) {
      simulateLoss->Execute();
    } else {
      std::printf("unplug the camera now\n");
    }
    // A loss shows three ways: the handler's notification (from transports that report it), a fetch that fails,
    // and IsOnline() turning false once the device stops answering its probes.
    const char* how = nullptr;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (how == nullptr && std::chrono::steady_clock::now() < deadline) {
      TALVIR::IImage* image = nullptr;
      const int32_t status = camera->GetImage(&image, 200);
      if (image != nullptr) {
        image->Release();
      }
      if (handler.WaitLost(std::chrono::milliseconds(0))) {
        how = "notified";
      } else if (status == TALVIR::Status::FetchFailed) {
        how = "an image fetch failed";
      } else if (!camera->IsOnline()) {
        how = "it no longer answers";
      }
    }
    const bool lost = how != nullptr;
    if (lost) {
      std::printf("device lost (%s): closing the camera\n", how);
    } else {
      std::printf("the device did not go away\n");
    }
    // After a loss every call still returns; close, and open again once the device is back.
    camera->SetEventCallback(TALVIR::EventModule::RemoteDevice, GenTL::EVENT_REMOTE_DEVICE, nullptr);
    camera->StopGrabbing();
    camera->Close();
    camera->SetHandler(nullptr);
    result = lost && events.Count() > 0 ? 0 : 1;
  }
  if (camera != nullptr) {
    camera->Release();
  }
  TALVIR::UnInit();
  return result;
}

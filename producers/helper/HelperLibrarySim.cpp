// The simulated helper library. Records what the camera library pushes and delivers status reports from threads
// of its own.
#include "talvirsim/HelperLibrarySim.h"

#include "platform/ModuleOfAddress.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using StatusCallback = void (*)(uint32_t, bool);

class CHelperState {
public:
  ~CHelperState() { WaitReports(); }

  void Record(const char* function, uint32_t address, double value) {
    SHelperPush push{};
    std::strncpy(push.function, function, sizeof push.function - 1);
    push.address = address;
    push.value = value;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_pushes.push_back(push);
  }
  uint32_t Count() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<uint32_t>(m_pushes.size());
  }
  bool Get(uint32_t index, SHelperPush* push) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (push == nullptr || index >= m_pushes.size()) {
      return false;
    }
    *push = m_pushes[index];
    return true;
  }
  void Clear() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_pushes.clear();
  }
  void Report(uint32_t address, bool online) {
    const StatusCallback callback = m_callback.load();
    if (callback == nullptr) {
      return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_kept) {
      // The camera library frees this module when it closes and never asks it to stop reporting, so a reporter may
      // still be running then. Joining it while the module is being unloaded would hang on Windows, and leaving it
      // would run code that is gone: once a reporter was started, the module stays until the process ends, and the
      // reporters are joined at that point.
      m_kept = TALVIR::Platform::KeepModuleLoaded(reinterpret_cast<const void*>(&HelperSimReportStatus));
    }
    m_reporters.emplace_back([callback, address, online] { callback(address, online); });
  }
  void WaitReports() {
    std::vector<std::thread> reporters;
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      reporters.swap(m_reporters);
    }
    for (std::thread& reporter : reporters) {
      reporter.join();
    }
  }

  std::atomic<StatusCallback> m_callback{nullptr};

private:
  std::mutex m_mutex;
  std::vector<SHelperPush> m_pushes;
  std::vector<std::thread> m_reporters;
  bool m_kept = false;
};

CHelperState& State() {
  static CHelperState state;
  return state;
}

}  // namespace

void SetCameraStatusCallback(void (*callback)(uint32_t address, bool online)) { State().m_callback = callback; }

void SetCameraFrameRate(uint32_t address, float framesPerSecond) {
  State().Record("SetCameraFrameRate", address, framesPerSecond);
}

void SetCameraScanType(uint32_t address, bool lineScan) {
  State().Record("SetCameraScanType", address, lineScan ? 1.0 : 0.0);
}

void SetCameraTriggerSelector(uint32_t address, int lineStartTriggerOn) {
  State().Record("SetCameraTriggerSelector", address, lineStartTriggerOn);
}

void SetCameraSCPD(uint32_t address, uint32_t packetDelay) { State().Record("SetCameraSCPD", address, packetDelay); }

void SetCameraExposureTime(uint32_t address, float exposure) {
  State().Record("SetCameraExposureTime", address, exposure);
}

uint32_t HelperSimPushCount() { return State().Count(); }

bool HelperSimGetPush(uint32_t index, SHelperPush* push) { return State().Get(index, push); }

void HelperSimClearPushes() { State().Clear(); }

bool HelperSimHasStatusCallback() { return State().m_callback.load() != nullptr; }

void HelperSimReportStatus(uint32_t address, bool online) { State().Report(address, online); }

void HelperSimWaitReports() { State().WaitReports(); }

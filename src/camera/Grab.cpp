#include "camera/Grab.h"

#include "camera/Camera.h"
#include "camera/GenImage.h"

#include <talvir/CameraTypes.h>

namespace TALVIR {
namespace {

// How long one fetch of the grab thread waits: bounds how long the thread takes to notice a stop when no frame
// comes and the producer cannot be woken.
constexpr uint64_t kFetchTimeoutMs = 100;
// After a fetch that failed at once (a lost device, a stream gone), the thread waits this long before it tries
// again, instead of spinning.
constexpr std::chrono::milliseconds kRetryDelay{10};

}  // namespace

CGrab::CGrab(CCamera* camera, uint32_t mode) : m_pCamera(camera), m_mode(mode) {
  if (!IsDirect()) {
    m_thread = std::thread([this] { Run(); });
  }
}

CGrab::~CGrab() { Stop(); }

bool CGrab::IsDirect() const { return m_mode != GrabMode::Newest && m_mode != GrabMode::Fresh; }

void CGrab::Stop() {
  {
    std::lock_guard<std::mutex> lock(m_lock);
    m_stop = true;
  }
  m_changed.notify_all();
  if (m_thread.joinable()) {
    // A stop from the grab thread itself cannot wait for itself.
    if (m_thread.get_id() == std::this_thread::get_id()) {
      m_thread.detach();
    } else {
      // Wakes the thread from its wait for the next buffer, so that a stop does not wait for the fetch time-out.
      m_pCamera->KillNewBufferEvent();
      m_thread.join();
    }
  }
  IImage* latest = nullptr;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    latest = m_pLatest;
    m_pLatest = nullptr;
  }
  if (latest != nullptr) {
    latest->Release();
  }
}

void CGrab::Run() {
  while (!m_stop.load()) {
    IImage* image = nullptr;
    const Clock::time_point started = Clock::now();
    const int32_t result = m_pCamera->FetchCounted(&image, kFetchTimeoutMs);
    const Clock::time_point fetched = Clock::now();
    if (result != Status::Ok) {
      // Only complete, well-described images are kept; the buffer of any other goes straight back.
      if (image != nullptr) {
        image->Release();
      }
      if (result != Status::Timeout && fetched - started < kRetryDelay) {
        std::unique_lock<std::mutex> lock(m_lock);
        m_changed.wait_for(lock, kRetryDelay, [this] { return m_stop.load(); });
      }
      continue;
    }
    // The moment the producer handed the buffer over; images of other makes count from the end of the fetch.
    const auto* described = dynamic_cast<const CGenImage*>(image);
    IImage* previous = nullptr;
    {
      std::lock_guard<std::mutex> lock(m_lock);
      previous = m_pLatest;
      m_pLatest = image;
      m_latestFetched = described != nullptr ? described->DeliveredAt() : fetched;
    }
    m_changed.notify_all();
    if (previous != nullptr) {
      previous->Release();
    }
  }
}

int32_t CGrab::GetLatestImage(IImage** out, uint32_t timeoutMs) {
  return TakeImage(out, timeoutMs, Clock::time_point::min(), false);
}

int32_t CGrab::GetFreshImage(IImage** out, uint32_t timeoutMs) {
  const Clock::time_point called = Clock::now();
  IImage* stale = nullptr;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    stale = m_pLatest;
    m_pLatest = nullptr;
  }
  if (stale != nullptr) {
    stale->Release();
  }
  return TakeImage(out, timeoutMs, called, true);
}

int32_t CGrab::TakeImage(IImage** out, uint32_t timeoutMs, Clock::time_point freshAfter, bool fresh) {
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  std::unique_lock<std::mutex> lock(m_lock);
  for (;;) {
    if (m_stop.load()) {
      return Status::Aborted;
    }
    if (m_pLatest != nullptr) {
      IImage* const image = m_pLatest;
      m_pLatest = nullptr;
      if (!fresh || m_latestFetched >= freshAfter) {
        *out = image;
        return Status::Ok;
      }
      // Fetched before the call began (stored while the call started): not fresh, so its buffer goes back.
      lock.unlock();
      image->Release();
      lock.lock();
      continue;
    }
    if (Clock::now() >= deadline) {
      return Status::Timeout;
    }
    m_changed.wait_until(lock, deadline);
  }
}

}  // namespace TALVIR

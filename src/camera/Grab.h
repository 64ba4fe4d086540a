#pragma once
// CGrab: how GetImage obtains images while an acquisition runs. In direct mode the caller fetches itself. In the
// newest-image and fresh-image modes a grab thread fetches continuously and keeps only the newest image, so that
// a slow application always gets the most recent frame and every older frame's buffer goes straight back to the
// stream.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace TALVIR {

class CCamera;
class IImage;

class CGrab {
public:
  using Clock = std::chrono::steady_clock;

  // Starts the grab thread in GrabMode::Newest and GrabMode::Fresh; any other mode is direct.
  CGrab(CCamera* camera, uint32_t mode);
  virtual ~CGrab();
  CGrab(const CGrab&) = delete;
  CGrab& operator=(const CGrab&) = delete;

  // Ends the grab thread (waking it from its fetch), wakes every waiting caller, and gives back the image not yet
  // taken. Idempotent; the destructor calls it.
  void Stop();

  uint32_t Mode() const { return m_mode; }
  bool IsDirect() const;

  // The newest image not yet taken, waiting up to `timeoutMs` for one (a time-out of 0 still takes one that is
  // there). Status::Ok, Status::Timeout, or Status::Aborted once stopped.
  int32_t GetLatestImage(IImage** out, uint32_t timeoutMs);
  // Like GetLatestImage, but only an image that the producer delivered after the call began.
  int32_t GetFreshImage(IImage** out, uint32_t timeoutMs);

private:
  void Run();
  int32_t TakeImage(IImage** out, uint32_t timeoutMs, Clock::time_point freshAfter, bool fresh);

  CCamera* m_pCamera;
  uint32_t m_mode;
  std::thread m_thread;
  std::atomic<bool> m_stop{false};
  IImage* m_pLatest = nullptr;
  Clock::time_point m_latestFetched;
  std::mutex m_lock;
  std::condition_variable m_changed;
};

}  // namespace TALVIR

#pragma once
// CEventListener: one registered device-event callback, served by a thread of its own that waits for the
// module's events and hands each to the application's callback.
#include <talvir/CameraTypes.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace TALVIR {

class CCti;

class CEventListener {
public:
  // Size of the event data buffer handed to the callback.
  static constexpr size_t kDataSize = 4096;

  // `layoutVersion`: the camera's event layout (2: the extended layout with a 64-bit block ID; anything else: the
  // original one).
  CEventListener(CCti* producer, void* module, uint32_t eventType, IEventCallback* callback, uint32_t layoutVersion);
  ~CEventListener();
  CEventListener(const CEventListener&) = delete;
  CEventListener& operator=(const CEventListener&) = delete;

  // Registers the event with the producer and starts the thread: 0, -2 without producer, module or the event
  // functions, -3 when already started, -4 when the producer refuses the registration.
  int32_t Start();
  // Ends the thread and unregisters the event; idempotent.
  void Stop();

  // Rewrites the start of delivered event data (`size` bytes at `data`, a buffer of kDataSize) in place as an
  // SDeviceEventRecord; bytes the producer did not deliver count as 0. Then sets byte 24 to 0.
  static void RewriteRecord(uint8_t* data, size_t size, uint32_t layoutVersion);

private:
  void Run();

  CCti* m_pProducer;
  void* m_hModule;
  uint32_t m_eventType;
  IEventCallback* m_pCallback;
  uint32_t m_layoutVersion;
  void* m_hEvent = nullptr;
  std::vector<uint8_t> m_data;
  std::atomic<bool> m_running{false};
  std::thread m_thread;
};

}  // namespace TALVIR

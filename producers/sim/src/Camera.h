#pragma once
// One simulated camera: its register file (the remote device), its description, its acquisition state and its
// remote-device events. It lives from GCInitLib to GCCloseLib, so settings survive closing and reopening the device.
#include "Config.h"
#include "Objects.h"
#include "talvirsim/TestPattern.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace TalvirSim {

// What one frame is made of, fixed when the frame starts.
struct SFrameJob {
  uint64_t frameId = 0;
  uint64_t timestamp = 0;  // device ticks at exposure end
  uint64_t timestampNs = 0;
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t offsetX = 0;
  uint32_t offsetY = 0;
  const SPixelFormat* format = nullptr;
  size_t imageSize = 0;
  size_t payloadSize = 0;
  bool chunkMode = false;
  bool chunkEnabled[3] = {false, false, false};  // timestamp, frame ID, exposure time
  double exposureTime = 0;
  uint32_t packetSize = 0;
  uint32_t partialMode = 0;
  bool incomplete = false;
  uint32_t lateByMs = 0;
};

// Whether and how frames may be produced right now.
struct SFrameGate {
  bool lost = false;
  bool open = false;   // acquisition started on the device, frames left, trigger pending when triggered
  bool timed = false;  // frames follow the frame rate (false: as fast as buffers allow, or on trigger)
  std::chrono::nanoseconds period{0};
};

class CSimCamera : public CEventSource {
public:
  CSimCamera(const SConfig& library, const SDeviceConfig& config);

  const SDeviceConfig& Config() const { return m_config; }
  EFlavour Flavour() const { return m_flavour; }

  // Remote-device register access; `writable` is false for a device opened read-only.
  void Read(uint64_t address, void* buffer, size_t length);
  void Write(uint64_t address, const void* buffer, size_t length, bool writable);
  const SDescription& Description() const { return m_description; }

  // Access by the device module of a frame grabber (Width, Height, PixelFormat, TLParamsLocked live there).
  uint64_t GrabberRegister(uint64_t remoteAddress);
  void SetGrabberRegister(uint64_t remoteAddress, uint64_t value);

  // Opening: one opener at a time.
  void Open(GenTL::DEVICE_ACCESS_FLAGS flags);
  void Close();
  int32_t AccessStatus() const;

  bool IsLost() const { return m_lost.load(); }
  // Marks the device lost: later accesses fail, waiting fetches end, the U3V flavour reports it.
  void Lose(const std::string& reason);

  size_t PayloadSize();
  uint32_t Width();
  uint32_t Height();

  // The data stream registers a wake-up for changes that may open the gate (start, trigger, loss).
  void SetWake(std::function<void()> wake);
  // Called by the stream when it starts or stops acquiring.
  void StreamStarted();
  void StreamStopped();
  SFrameGate Gate();
  // Starts a frame if the gate is open; false when it closed meanwhile.
  bool StartFrame(SFrameJob& job);
  // Gate() and, when the gate is open, untimed and `startUntimed` is set, StartFrame() under one lock: the free-running
  // generator's per-frame call.
  bool Poll(bool startUntimed, SFrameJob& job, SFrameGate& gate);
  // Counts a frame that was delivered; raises its events and applies the loss-after-N fault.
  void FrameDelivered(const SFrameJob& job);

  uint64_t NowTicks() const;

protected:
  std::shared_ptr<CEvent> MakeEvent(GenTL::EVENT_TYPE type) override;

private:
  uint32_t Get32(uint64_t address) const;
  void Set32(uint64_t address, uint32_t value);
  double GetDoubleBE(uint64_t address) const;
  double GetDoubleLE(uint64_t address) const;
  void SetDoubleBE(uint64_t address, double value);
  void SetDoubleLE(uint64_t address, double value);
  void SetString(uint64_t address, size_t length, const std::string& text);
  void SetLE32(uint64_t address, uint32_t value);
  void InitRegisters();
  size_t PayloadSizeLocked() const;
  SFrameGate GateLocked() const;
  bool StartFrameLocked(SFrameJob& job);
  void ApplyWrite(uint64_t address, const uint8_t* data, size_t length, std::vector<std::function<void()>>& after);
  void FireExposureEnd(uint64_t frameId, uint64_t timestamp);
  void CallWake();

  SDeviceConfig m_config;
  EFlavour m_flavour;
  SDescription m_description;
  std::chrono::steady_clock::time_point m_epoch;

  mutable std::mutex m_mutex;
  std::vector<uint8_t> m_registers;
  bool m_open = false;
  bool m_openReadOnly = false;
  bool m_streaming = false;
  bool m_acquiring = false;   // AcquisitionStart executed and not stopped
  uint64_t m_framesLeft = 0;  // in SingleFrame / MultiFrame mode
  uint64_t m_pendingTriggers = 0;
  uint64_t m_frameCounter = 0;  // frame IDs handed out
  uint64_t m_deliveredCount = 0;
  uint64_t m_lastFrameId = 0;
  std::atomic<bool> m_lost{false};
  std::function<void()> m_wake;
  std::mutex m_wakeMutex;
};

}  // namespace TalvirSim

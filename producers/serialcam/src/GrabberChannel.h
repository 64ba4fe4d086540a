#pragma once
// One serial channel of the simulated Camera Link frame grabber, with a simulated camera behind it. The channel
// has no thread: the camera's timers run while the host waits in Read.
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

#include "SerialCameraEngine.h"

namespace TalvirSerialCam {

class CGrabberChannel {
public:
  explicit CGrabberChannel(const SCameraConfig& config);

  // Status codes of the serial interface.
  int32_t Open();
  void Close();
  // Reads exactly `size` bytes within `timeoutMs`, or times out copying nothing (the bytes stay queued).
  int32_t Read(char* buffer, uint32_t size, uint32_t timeoutMs);
  int32_t Write(const char* buffer, uint32_t size);
  uint32_t BytesAvailable();
  void Flush();
  void SetHostRate(uint32_t rateBit);

private:
  std::mutex m_lock;
  std::condition_variable m_wake;
  CSerialCameraEngine m_engine;
  std::string m_pending;
  uint32_t m_hostRate = 1;
  bool m_open = false;
};

}  // namespace TalvirSerialCam

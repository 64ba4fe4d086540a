#include "GrabberChannel.h"

#include <CLProtocol/CLSerialApi.h>

#include <cstring>

namespace TalvirSerialCam {

CGrabberChannel::CGrabberChannel(const SCameraConfig& config) : m_engine(config) {}

int32_t CGrabberChannel::Open() {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (m_open) {
    return CLProtocol::CL_ERR_PORT_IN_USE;
  }
  m_open = true;
  m_hostRate = CLProtocol::CL_BAUDRATE_9600;
  m_pending.clear();
  return CLProtocol::CL_ERR_NO_ERR;
}

void CGrabberChannel::Close() {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_open = false;
}

int32_t CGrabberChannel::Read(char* buffer, uint32_t size, uint32_t timeoutMs) {
  std::unique_lock<std::mutex> lock(m_lock);
  const auto deadline = CSerialCameraEngine::Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    const auto now = CSerialCameraEngine::Clock::now();
    m_engine.RunTimers(now);
    m_pending += m_engine.TakeOutput();
    if (m_pending.size() >= size) {
      std::memcpy(buffer, m_pending.data(), size);
      m_pending.erase(0, size);
      return CLProtocol::CL_ERR_NO_ERR;
    }
    if (now >= deadline) {
      return CLProtocol::CL_ERR_TIMEOUT;
    }
    // Nothing else produces bytes: wait for the camera's next timer or the time-out, whichever comes first.
    const auto until = m_engine.NextDeadline(now,
                                             std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now));
    m_wake.wait_until(lock, std::min(until, deadline));
  }
}

int32_t CGrabberChannel::Write(const char* buffer, uint32_t size) {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_engine.RunTimers(CSerialCameraEngine::Clock::now());
  m_engine.TakeBytes(std::string(buffer, size), m_hostRate);
  m_pending += m_engine.TakeOutput();
  m_wake.notify_all();
  return CLProtocol::CL_ERR_NO_ERR;
}

uint32_t CGrabberChannel::BytesAvailable() {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_engine.RunTimers(CSerialCameraEngine::Clock::now());
  m_pending += m_engine.TakeOutput();
  return static_cast<uint32_t>(m_pending.size());
}

void CGrabberChannel::Flush() {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_pending.clear();
}

void CGrabberChannel::SetHostRate(uint32_t rateBit) {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_hostRate = rateBit;
}

}  // namespace TalvirSerialCam

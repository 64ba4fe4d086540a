#include "SerialCameraServer.h"

#include <CLProtocol/CLSerialApi.h>

#include <algorithm>

namespace TalvirSerialCam {
namespace {

using GenICam::Platform::ESerialResult;

constexpr std::chrono::milliseconds kIdleWait(1000);
// A start bit, eight data bits, a stop bit.
constexpr uint64_t kBitsPerByte = 10;
// Paced output is written in slices of about this long on the line.
constexpr std::chrono::microseconds kPaceSlice(1000);

}  // namespace

CSerialCameraServer::CSerialCameraServer(const SCameraConfig& config)
    : m_engine(config), m_pace(config.paceAtLineRate) {}

CSerialCameraServer::~CSerialCameraServer() { Stop(); }

bool CSerialCameraServer::Start(std::string& error) {
  if (m_started) {
    error = "already serving";
    return false;
  }
  if (!m_pty.Open(error)) {
    return false;
  }
  m_started = true;
  m_thread = std::thread(&CSerialCameraServer::Run, this);
  return true;
}

void CSerialCameraServer::Stop() {
  {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_stop = true;
  }
  m_changed.notify_all();
  m_pty.Interrupt();
  if (m_thread.joinable()) {
    m_thread.join();
  }
  m_pty.Close();
}

void CSerialCameraServer::SetFault(EFault fault, int count) {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_engine.SetFault(fault, count);
}

void CSerialCameraServer::PullCable() {
  std::unique_lock<std::mutex> lock(m_lock);
  if (!m_started || m_stop) {
    return;
  }
  m_pullRequested = true;
  m_pty.Interrupt();
  m_changed.wait(lock, [this] { return m_pulled || m_stop; });
}

bool CSerialCameraServer::WaitForCommands(unsigned count, uint32_t timeoutMs) {
  std::unique_lock<std::mutex> lock(m_lock);
  return m_changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                            [&] { return m_engine.Statistics().commands >= count; });
}

void CSerialCameraServer::WaitUntilStopped() {
  std::unique_lock<std::mutex> lock(m_lock);
  m_changed.wait(lock, [this] { return m_stop; });
}

SServerStatistics CSerialCameraServer::Statistics() const {
  const std::lock_guard<std::mutex> guard(m_lock);
  return m_engine.Statistics();
}

uint32_t CSerialCameraServer::Register32(uint64_t address) const {
  const std::lock_guard<std::mutex> guard(m_lock);
  return m_engine.Register32(address);
}

void CSerialCameraServer::Flush() {
  const std::string output = m_engine.TakeOutput();
  if (!output.empty()) {
    m_pty.Write(output.data(), output.size());
  }
}

void CSerialCameraServer::Run() {
  for (;;) {
    uint32_t waitMs = 0;
    {
      std::unique_lock<std::mutex> lock(m_lock);
      if (m_stop) {
        return;
      }
      if (m_pullRequested && !m_pulled) {
        m_pty.Close();
        m_pulled = true;
        m_changed.notify_all();
      }
      if (m_pulled) {
        m_changed.wait(lock, [this] { return m_stop; });
        return;
      }
      const auto now = CSerialCameraEngine::Clock::now();
      const auto wait =
          std::chrono::duration_cast<std::chrono::milliseconds>(m_engine.NextDeadline(now, kIdleWait) - now).count();
      waitMs = wait > 0 ? static_cast<uint32_t>(wait) : 0;
    }
    std::string bytes;
    const ESerialResult result = m_pty.ReadSome(bytes, waitMs);
    if (m_pace && result == ESerialResult::Ok) {
      // The host wrote the batch at once; on a line its last byte arrives only after the batch's line time.
      m_inputDoneAt = std::max(Clock::now(), m_inputDoneAt) + LineTime(bytes.size());
      if (!PauseUntil(m_inputDoneAt)) {
        continue;
      }
    }
    std::string output;
    {
      const std::lock_guard<std::mutex> guard(m_lock);
      m_engine.RunTimers(CSerialCameraEngine::Clock::now());
      if (result == ESerialResult::Ok) {
        const unsigned before = m_engine.Statistics().commands;
        m_engine.TakeBytes(bytes, CLProtocol::BitOfBaudRate(m_pty.ClientBaudRate()));
        if (m_engine.Statistics().commands != before) {
          m_changed.notify_all();
        }
      }
      if (!m_pace) {
        Flush();
        continue;
      }
      output = m_engine.TakeOutput();
    }
    SendPaced(output);
  }
}

CSerialCameraServer::Clock::duration CSerialCameraServer::LineTime(size_t bytes) const {
  const uint32_t baud = m_pty.ClientBaudRate();
  if (baud == 0) {
    return Clock::duration::zero();
  }
  return std::chrono::duration_cast<Clock::duration>(std::chrono::nanoseconds(
      static_cast<int64_t>(static_cast<uint64_t>(bytes) * kBitsPerByte * 1000000000ull / baud)));
}

bool CSerialCameraServer::PauseUntil(Clock::time_point deadline) {
  std::unique_lock<std::mutex> lock(m_lock);
  return !m_changed.wait_until(lock, deadline, [this] { return m_stop || m_pullRequested; });
}

void CSerialCameraServer::SendPaced(const std::string& output) {
  if (output.empty()) {
    return;
  }
  const uint32_t baud = m_pty.ClientBaudRate();
  const size_t slice = std::max<size_t>(1, static_cast<size_t>(baud / kBitsPerByte * kPaceSlice.count() / 1000000));
  const Clock::time_point start = std::max(Clock::now(), m_outputFreeAt);
  for (size_t offset = 0; offset < output.size(); offset += slice) {
    const size_t length = std::min(slice, output.size() - offset);
    // A byte is through once its stop bit is: the slice is handed over when its last byte would have arrived.
    if (!PauseUntil(start + LineTime(offset + length))) {
      return;
    }
    m_pty.Write(output.data() + offset, length);
  }
  m_outputFreeAt = start + LineTime(output.size());
}

}  // namespace TalvirSerialCam

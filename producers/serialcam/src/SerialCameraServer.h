#pragma once
// Serves the simulated serial camera on a pseudo-terminal, in a thread of its own (the protocol is
// CSerialCameraEngine's; the host's baud rate is read from the terminal's settings).
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "SerialCameraEngine.h"
#include "platform/PseudoTerminal.h"

namespace TalvirSerialCam {

class CSerialCameraServer {
public:
  explicit CSerialCameraServer(const SCameraConfig& config = SCameraConfig());
  ~CSerialCameraServer();
  CSerialCameraServer(const CSerialCameraServer&) = delete;
  CSerialCameraServer& operator=(const CSerialCameraServer&) = delete;

  // Opens the pseudo-terminal and starts serving. False with a reason when the terminal cannot be made.
  bool Start(std::string& error);
  // Stops serving and closes the terminal; also done on destruction.
  void Stop();
  // The device path a client opens.
  const std::string& PortPath() const { return m_pty.SlaveName(); }

  // Applies a fault to the next `count` answers (or baud confirmations); a negative count keeps it until changed.
  void SetFault(EFault fault, int count = -1);
  // Closes the terminal as if the cable were pulled out; returns once it is closed.
  void PullCable();
  // Waits until at least `count` commands have arrived; false after `timeoutMs` without them.
  bool WaitForCommands(unsigned count, uint32_t timeoutMs);
  // Blocks until Stop() is called from another thread.
  void WaitUntilStopped();

  SServerStatistics Statistics() const;
  uint32_t Register32(uint64_t address) const;

private:
  using Clock = std::chrono::steady_clock;

  void Run();
  void Flush();
  // Paced mode: writes `output` as the line would deliver it, from `m_outputFreeAt` on.
  void SendPaced(const std::string& output);
  // Paced mode: waits until `deadline`; false when stopped or the cable is pulled meanwhile.
  bool PauseUntil(Clock::time_point deadline);
  // Time `bytes` take on the line at the host's current baud rate.
  Clock::duration LineTime(size_t bytes) const;

  mutable std::mutex m_lock;
  std::condition_variable m_changed;
  CSerialCameraEngine m_engine;
  GenICam::Platform::CPseudoTerminal m_pty;
  std::thread m_thread;
  bool m_started = false;
  bool m_stop = false;
  bool m_pullRequested = false;
  bool m_pulled = false;
  // Paced mode, used by the serving thread only: when the bytes received so far and sent so far are through.
  const bool m_pace;
  Clock::time_point m_inputDoneAt{};
  Clock::time_point m_outputFreeAt{};
};

}  // namespace TalvirSerialCam

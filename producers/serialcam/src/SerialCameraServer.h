#pragma once
// Serves the simulated serial camera on a pseudo-terminal, in a thread of its own: GenCP over serial with resends,
// pending acknowledges for slow writes, baud-rate switching with the confirmation window, stacked commands, and
// faults on demand. Bytes sent at a rate other than the camera's current one are treated as garbled and dropped.
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "GenCPPacket.h"
#include "SerialCameraModel.h"
#include "platform/PseudoTerminal.h"

namespace TalvirSerialCam {

enum class EFault {
  None,
  NoAnswer,         // commands are not answered
  CorruptChecksum,  // answers carry a wrong header checksum
  WrongRequestId,   // answers carry another request id
  Truncated,        // only the first half of each answer is sent
  IgnoreBaudConfirm // the confirming write of a baud-rate switch is lost, so the camera falls back
};

struct SServerStatistics {
  unsigned commands = 0;        // commands received intact
  unsigned stackedCommands = 0; // of which stacked reads or writes
  unsigned resends = 0;         // commands received with the resend flag
  unsigned pendingAcks = 0;     // pending acknowledges sent
  unsigned badPackets = 0;      // packets dropped for a bad checksum or length
  unsigned garbled = 0;         // byte batches dropped because they came at another baud rate
  uint32_t rateBit = 1;         // the camera's current baud-rate bit
};

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
  void TakeBytes(const std::string& bytes);
  void HandleCommand(const CLProtocol::GenCP::SPacket& command);
  void HandleWrite(const CLProtocol::GenCP::SPacket& command, uint64_t address, const uint8_t* data, size_t length);
  void HandleStacked(const CLProtocol::GenCP::SPacket& command);
  void Acknowledge(const CLProtocol::GenCP::SPacket& command, uint16_t status, std::vector<uint8_t> scd);
  void Send(std::vector<uint8_t> bytes);
  void SendPending();
  void RunTimers(Clock::time_point now);
  uint32_t NextWaitMs(Clock::time_point now) const;
  bool ConsumeFault(EFault fault);

  mutable std::mutex m_lock;
  std::condition_variable m_changed;
  CSerialCameraModel m_model;
  GenICam::Platform::CPseudoTerminal m_pty;
  std::thread m_thread;
  bool m_started = false;
  bool m_stop = false;
  bool m_pullRequested = false;
  bool m_pulled = false;
  std::string m_received;
  EFault m_fault = EFault::None;
  int m_faultCount = 0;
  SServerStatistics m_statistics;
  // The last acknowledge, sent again when its command is resent.
  bool m_hasLastAck = false;
  uint16_t m_lastRequestId = 0;
  std::vector<uint8_t> m_lastAck;
  // Baud-rate switch awaiting its confirmation.
  bool m_confirmPending = false;
  uint32_t m_fallbackRate = 1;
  Clock::time_point m_confirmDeadline;
  // Slow write in progress.
  bool m_busy = false;
  CLProtocol::GenCP::SPacket m_busyCommand;
  Clock::time_point m_busyUntil;
  Clock::time_point m_nextPending;
};

} // namespace TalvirSerialCam

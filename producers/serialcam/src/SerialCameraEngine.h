#pragma once
// The protocol side of the simulated serial camera, without any I/O: it takes the bytes a host sent (with the baud
// rate the host sent them at) and queues the bytes the camera answers, runs the camera's timers (pending
// acknowledges of slow writes, the baud-rate confirmation window) and applies faults on demand. Bytes sent at a rate
// other than the camera's current one are treated as garbled and dropped. Not locked: its owner serialises calls.
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "GenCPPacket.h"
#include "SerialCameraModel.h"

namespace TalvirSerialCam {

enum class EFault {
  None,
  NoAnswer,          // commands are not answered
  CorruptChecksum,   // answers carry a wrong header checksum
  WrongRequestId,    // answers carry another request id
  Truncated,         // only the first half of each answer is sent
  IgnoreBaudConfirm  // the confirming write of a baud-rate switch is lost, so the camera falls back
};

struct SServerStatistics {
  unsigned commands = 0;         // commands received intact
  unsigned stackedCommands = 0;  // of which stacked reads or writes
  unsigned resends = 0;          // commands received with the resend flag
  unsigned pendingAcks = 0;      // pending acknowledges sent
  unsigned badPackets = 0;       // packets dropped for a bad checksum or length
  unsigned garbled = 0;          // byte batches dropped because they came at another baud rate
  uint32_t rateBit = 1;          // the camera's current baud-rate bit
};

class CSerialCameraEngine {
public:
  using Clock = std::chrono::steady_clock;

  explicit CSerialCameraEngine(const SCameraConfig& config);

  // Bytes from the host, sent at `hostRateBit` (0: unknown, taken as matching).
  void TakeBytes(const std::string& bytes, uint32_t hostRateBit);
  // Runs the timers that are due.
  void RunTimers(Clock::time_point now);
  // When the next timer falls due (or `now` + `idle` when none is running).
  Clock::time_point NextDeadline(Clock::time_point now, std::chrono::milliseconds idle) const;
  // Takes the bytes the camera has sent since the last call.
  std::string TakeOutput();

  // Applies a fault to the next `count` answers (or baud confirmations); a negative count keeps it until changed.
  void SetFault(EFault fault, int count);
  const SServerStatistics& Statistics() const { return m_statistics; }
  uint32_t Register32(uint64_t address) const { return m_model.Register32(address); }

private:
  void HandleCommand(const CLProtocol::GenCP::SPacket& command);
  void HandleWrite(const CLProtocol::GenCP::SPacket& command, uint64_t address, const uint8_t* data, size_t length);
  void HandleStacked(const CLProtocol::GenCP::SPacket& command);
  void Acknowledge(const CLProtocol::GenCP::SPacket& command, uint16_t status, std::vector<uint8_t> scd);
  void Send(std::vector<uint8_t> bytes);
  void SendPending();
  bool ConsumeFault(EFault fault);

  CSerialCameraModel m_model;
  std::string m_received;
  std::string m_output;
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

}  // namespace TalvirSerialCam

#pragma once
// The host side of GenCP over a serial link: one command at a time, acknowledged, resent with the resend flag up to
// three times on a time-out, with pending acknowledges extending the wait. Damaged packets and answers to other
// requests are dropped; the last reason is kept for the error text.
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <CLProtocol/CLProtocolDriverApi.h>

#include "GenCPPacket.h"

namespace CLProtocol {
namespace GenCP {

// One entry of a stacked read or write.
struct SStackedEntry {
  uint64_t address = 0;
  std::vector<uint8_t> data;  // read: filled with `length` bytes; write: the bytes to write
  uint16_t length = 0;        // read length (ignored for writes)
};

class CGenCPLink {
public:
  // Resends after a time-out, so a command is sent at most 1 + kMaxResends times.
  static constexpr int kMaxResends = 3;

  // Sends a command and waits for its acknowledge. Returns CL_ERR_NO_ERR with `ack` filled (whatever the device
  // status), CL_ERR_PENDING_WRITE when `allowPending` and the device is still busy once `timeoutMs` has passed (the
  // wait continues with ContinuePending), or a failure: CL_ERR_TIMEOUT when nothing came back, CL_ERR_GET_LAST_ERROR
  // when only unusable packets came back (see LastError), CL_ERR_ERROR_NOT_FOUND when the port went away.
  int32_t Transact(const CLPSerial& serial, uint16_t commandId, const std::vector<uint8_t>& scd, uint32_t timeoutMs,
                   bool allowPending, SPacket& ack);
  // Waits again for the acknowledge of the command left pending.
  int32_t ContinuePending(const CLPSerial& serial, uint32_t timeoutMs, SPacket& ack);
  void AbandonPending() { m_pendingCommand = 0; }
  bool HasPending() const { return m_pendingCommand != 0; }

  // Memory access split into packets; device statuses become CL_ERR_GET_LAST_ERROR with the status in LastError.
  int32_t ReadMem(const CLPSerial& serial, uint64_t address, uint8_t* buffer, size_t length, uint32_t timeoutMs);
  int32_t WriteMem(const CLPSerial& serial, uint64_t address, const uint8_t* data, size_t length, uint32_t timeoutMs,
                   bool allowPending);
  // Finishes a write whose Transact returned CL_ERR_PENDING_WRITE.
  int32_t ContinueWrite(const CLPSerial& serial, uint32_t timeoutMs);
  // Several reads or writes in one packet (devices with the stacked-commands capability).
  int32_t ReadMemStacked(const CLPSerial& serial, std::vector<SStackedEntry>& entries, uint32_t timeoutMs);
  int32_t WriteMemStacked(const CLPSerial& serial, const std::vector<SStackedEntry>& entries, uint32_t timeoutMs);

  // How many times a command is resent after a time-out (kMaxResends unless set).
  void SetResendLimit(int limit) { m_resendLimit = limit; }

  // The link's speed in bits per second (0: unknown). Once an answer's header has arrived, the wait for its data
  // lasts at least their time on the wire at this speed, so that long answers on slow links do not time out.
  void SetLineRate(uint32_t bitsPerSecond) { m_lineRate = bitsPerSecond; }

  // Whether WRITEMEM acknowledges carry the number of bytes written (capability bit 11).
  void SetWrittenLengthReported(bool reported) { m_writtenLengthReported = reported; }

  const std::string& LastError() const { return m_lastError; }
  uint16_t LastDeviceStatus() const { return m_lastDeviceStatus; }
  CRequestIds& RequestIds() { return m_requestIds; }
  // Packets dropped so far for a bad checksum, for a foreign request id, and resends made (for tests and tools).
  unsigned DroppedChecksum() const { return m_droppedChecksum; }
  unsigned DroppedRequestId() const { return m_droppedRequestId; }
  unsigned Resends() const { return m_resends; }

private:
  using Clock = std::chrono::steady_clock;
  enum class EWait { Packet, Timeout, Truncated, BadChecksum, Gone, Failed };

  int32_t WaitForAck(const CLPSerial& serial, Clock::time_point start, uint32_t timeoutMs, bool allowPending,
                     SPacket& ack, bool& sawBytes);
  EWait ReadPacket(const CLPSerial& serial, Clock::time_point deadline, SPacket& packet, bool& sawBytes);
  int32_t CheckWriteAck(const SPacket& ack, size_t length);
  int32_t DeviceStatusFailure(uint16_t status, const char* what, uint64_t address);

  CRequestIds m_requestIds;
  int m_resendLimit = kMaxResends;
  uint32_t m_lineRate = 0;
  bool m_writtenLengthReported = false;
  std::string m_lastError;
  uint16_t m_lastDeviceStatus = 0;
  unsigned m_droppedChecksum = 0;
  unsigned m_droppedRequestId = 0;
  unsigned m_resends = 0;
  // The command left pending: its id, request id and expected acknowledge, and its write length.
  uint16_t m_pendingCommand = 0;
  uint16_t m_pendingRequestId = 0;
  size_t m_pendingLength = 0;
  uint32_t m_pendingWaitMs = 0;
};

}  // namespace GenCP
}  // namespace CLProtocol

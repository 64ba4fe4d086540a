#include "GenCPLink.h"

#include <algorithm>
#include <cstdio>

namespace CLProtocol {
namespace GenCP {
namespace {

uint32_t MsUntil(std::chrono::steady_clock::time_point deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
  return left > 0 ? static_cast<uint32_t>(left) : 0;
}

// A device announces how long it still needs; a little slack covers the packet's own time on the wire.
constexpr uint32_t kPendingSlackMs = 100;
// Serial bytes carry a start and a stop bit; the slack covers the gaps between bytes.
constexpr uint64_t kBitsPerByte = 10;
constexpr uint64_t kTransferSlackMs = 20;

}  // namespace

CGenCPLink::EWait CGenCPLink::ReadPacket(const CLPSerial& serial, Clock::time_point deadline, SPacket& packet,
                                         bool& sawBytes) {
  uint8_t header[kHeaderSize];
  // Find the preamble byte by byte: anything before it is line noise or the rest of a dropped packet.
  size_t have = 0;
  while (have < 2) {
    uint32_t one = 1;
    const int32_t status = serial.read(serial.context, reinterpret_cast<char*>(header + have), &one, MsUntil(deadline));
    if (status == CL_ERR_TIMEOUT) {
      return have > 0 ? EWait::Truncated : EWait::Timeout;
    }
    if (status == CL_ERR_ERROR_NOT_FOUND) {
      return EWait::Gone;
    }
    if (status != CL_ERR_NO_ERR) {
      return EWait::Failed;
    }
    sawBytes = true;
    if (have == 0) {
      have = header[0] == kPreamble0 ? 1 : 0;
    } else if (header[1] == kPreamble1) {
      have = 2;
    } else {
      have = header[1] == kPreamble0 ? 1 : 0;
    }
  }
  uint32_t rest = kHeaderSize - 2;
  int32_t status = serial.read(serial.context, reinterpret_cast<char*>(header + 2), &rest, MsUntil(deadline));
  if (status == CL_ERR_TIMEOUT) {
    m_lastError = "truncated packet: the header did not arrive complete";
    return EWait::Truncated;
  }
  if (status != CL_ERR_NO_ERR) {
    return status == CL_ERR_ERROR_NOT_FOUND ? EWait::Gone : EWait::Failed;
  }
  SPacket parsed;
  size_t consumed = 0;
  EParse result = Parse(header, kHeaderSize, parsed, consumed);
  if (result == EParse::BadCcdChecksum || result == EParse::TooLong) {
    ++m_droppedChecksum;
    m_lastError = result == EParse::TooLong ? "dropped a packet announcing too much data"
                                            : "dropped a packet with a bad header checksum";
    // The length cannot be trusted: drop whatever else of it is queued.
    serial.flush(serial.context);
    return EWait::BadChecksum;
  }
  std::vector<uint8_t> whole(header, header + kHeaderSize);
  const size_t scdLength = GetU16(header + 12);
  if (scdLength > 0) {
    if (m_lineRate != 0) {
      // A full packet needs over a second at 9600 baud: the wait covers the data's time on the wire.
      const auto transferMs = static_cast<int64_t>(scdLength * kBitsPerByte * 1000 / m_lineRate + kTransferSlackMs);
      deadline = std::max(deadline, Clock::now() + std::chrono::milliseconds(transferMs));
    }
    whole.resize(kHeaderSize + scdLength);
    uint32_t size = static_cast<uint32_t>(scdLength);
    status = serial.read(serial.context, reinterpret_cast<char*>(whole.data() + kHeaderSize), &size, MsUntil(deadline));
    if (status == CL_ERR_TIMEOUT) {
      char text[96];
      std::snprintf(text, sizeof text, "truncated packet: %zu data bytes announced did not arrive", scdLength);
      m_lastError = text;
      return EWait::Truncated;
    }
    if (status != CL_ERR_NO_ERR) {
      return status == CL_ERR_ERROR_NOT_FOUND ? EWait::Gone : EWait::Failed;
    }
  }
  result = Parse(whole.data(), whole.size(), packet, consumed);
  if (result != EParse::Complete) {
    ++m_droppedChecksum;
    m_lastError = "dropped a packet with a bad data checksum";
    return EWait::BadChecksum;
  }
  return EWait::Packet;
}

int32_t CGenCPLink::WaitForAck(const CLPSerial& serial, Clock::time_point start, uint32_t timeoutMs, bool allowPending,
                               SPacket& ack, bool& sawBytes) {
  Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  const uint16_t expected = static_cast<uint16_t>(m_pendingCommand + 1);
  for (;;) {
    SPacket packet;
    const EWait result = ReadPacket(serial, deadline, packet, sawBytes);
    switch (result) {
    case EWait::Packet: break;
    case EWait::Timeout: return CL_ERR_TIMEOUT;
    case EWait::Truncated: return CL_ERR_TIMEOUT;
    case EWait::BadChecksum: continue;
    case EWait::Gone:
      m_lastError = "the serial port is gone (cable pulled or device closed)";
      return CL_ERR_ERROR_NOT_FOUND;
    case EWait::Failed: m_lastError = "the serial port failed"; return CL_ERR_GET_LAST_ERROR;
    }
    if (packet.channel != 0) {
      continue;  // another channel's traffic is not ours
    }
    if (packet.requestId != m_pendingRequestId) {
      ++m_droppedRequestId;
      char text[96];
      std::snprintf(text, sizeof text, "dropped an answer with request id %u (expected %u)",
                    static_cast<unsigned>(packet.requestId), static_cast<unsigned>(m_pendingRequestId));
      m_lastError = text;
      continue;
    }
    if (packet.commandId == PENDING_ACK) {
      uint16_t pendingMs = 0;
      ParsePendingScd(packet.scd, pendingMs);
      deadline = Clock::now() + std::chrono::milliseconds(pendingMs + kPendingSlackMs);
      m_pendingWaitMs = pendingMs + kPendingSlackMs;
      if (allowPending && Clock::now() - start >= std::chrono::milliseconds(timeoutMs)) {
        return CL_ERR_PENDING_WRITE;
      }
      continue;
    }
    if (packet.commandId != expected) {
      char text[96];
      std::snprintf(text, sizeof text, "dropped an acknowledge 0x%04x (expected 0x%04x)",
                    static_cast<unsigned>(packet.commandId), static_cast<unsigned>(expected));
      m_lastError = text;
      continue;
    }
    ack = std::move(packet);
    return CL_ERR_NO_ERR;
  }
}

int32_t CGenCPLink::Transact(const CLPSerial& serial, uint16_t commandId, const std::vector<uint8_t>& scd,
                             uint32_t timeoutMs, bool allowPending, SPacket& ack) {
  if (scd.size() > kMaxScdSize) {
    m_lastError = "command too long for one packet";
    return CL_ERR_PARAM_DATA_SIZE;
  }
  SPacket command;
  command.flagsOrStatus = kFlagRequestAck;
  command.commandId = commandId;
  command.requestId = m_requestIds.Next();
  command.scd = scd;
  m_pendingCommand = commandId;
  m_pendingRequestId = command.requestId;
  m_lastError.clear();
  const Clock::time_point start = Clock::now();
  bool sawBytes = false;
  int32_t status = CL_ERR_TIMEOUT;
  for (int attempt = 0; attempt <= m_resendLimit; ++attempt) {
    if (attempt > 0) {
      command.flagsOrStatus = kFlagRequestAck | kFlagResend;
      ++m_resends;
    }
    const std::vector<uint8_t> bytes = Encode(command);
    uint32_t size = static_cast<uint32_t>(bytes.size());
    status = serial.write(serial.context, reinterpret_cast<const char*>(bytes.data()), &size, timeoutMs);
    if (status == CL_ERR_ERROR_NOT_FOUND) {
      m_lastError = "the serial port is gone (cable pulled or device closed)";
      break;
    }
    if (status == CL_ERR_NO_ERR) {
      status = WaitForAck(serial, start, timeoutMs, allowPending, ack, sawBytes);
    }
    if (status != CL_ERR_TIMEOUT) {
      break;
    }
  }
  if (status == CL_ERR_PENDING_WRITE) {
    return status;
  }
  m_pendingCommand = 0;
  if (status == CL_ERR_TIMEOUT) {
    char text[160];
    if (sawBytes) {
      std::snprintf(text, sizeof text, "no valid answer after %d attempt(s): %s", m_resendLimit + 1,
                    m_lastError.empty() ? "unusable bytes" : m_lastError.c_str());
      m_lastError = text;
      return CL_ERR_GET_LAST_ERROR;
    }
    std::snprintf(text, sizeof text, "no answer within %u ms after %d attempt(s)", timeoutMs, m_resendLimit + 1);
    m_lastError = text;
  }
  return status;
}

int32_t CGenCPLink::ContinuePending(const CLPSerial& serial, uint32_t timeoutMs, SPacket& ack) {
  if (m_pendingCommand == 0) {
    m_lastError = "no command is pending";
    return CL_ERR_INVALID_COOKIE;
  }
  bool sawBytes = false;
  const uint32_t wait = std::max(timeoutMs, m_pendingWaitMs);
  const int32_t status = WaitForAck(serial, Clock::now(), wait, true, ack, sawBytes);
  if (status != CL_ERR_PENDING_WRITE) {
    m_pendingCommand = 0;
  }
  if (status == CL_ERR_TIMEOUT) {
    m_lastError = "the pending command was not acknowledged in time";
  }
  return status;
}

int32_t CGenCPLink::DeviceStatusFailure(uint16_t status, const char* what, uint64_t address) {
  m_lastDeviceStatus = status;
  char text[128];
  std::snprintf(text, sizeof text, "%s at address 0x%llx: device status 0x%04x %s", what,
                static_cast<unsigned long long>(address), static_cast<unsigned>(status), StatusName(status));
  m_lastError = text;
  return CL_ERR_GET_LAST_ERROR;
}

int32_t CGenCPLink::ReadMem(const CLPSerial& serial, uint64_t address, uint8_t* buffer, size_t length,
                            uint32_t timeoutMs) {
  size_t done = 0;
  while (done < length) {
    const size_t chunk = std::min(length - done, kMaxScdSize);
    SPacket ack;
    const int32_t status = Transact(serial, READMEM_CMD, ReadMemScd(address + done, static_cast<uint16_t>(chunk)),
                                    timeoutMs, false, ack);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    if (ack.flagsOrStatus != STATUS_SUCCESS) {
      return DeviceStatusFailure(ack.flagsOrStatus, "read", address + done);
    }
    if (ack.scd.size() != chunk) {
      char text[96];
      std::snprintf(text, sizeof text, "read acknowledge carries %zu bytes instead of %zu", ack.scd.size(), chunk);
      m_lastError = text;
      return CL_ERR_GET_LAST_ERROR;
    }
    std::copy(ack.scd.begin(), ack.scd.end(), buffer + done);
    done += chunk;
  }
  return CL_ERR_NO_ERR;
}

int32_t CGenCPLink::CheckWriteAck(const SPacket& ack, size_t length) {
  if (ack.flagsOrStatus != STATUS_SUCCESS) {
    return DeviceStatusFailure(ack.flagsOrStatus, "write", 0);
  }
  if (m_writtenLengthReported && ack.scd.size() == 4 && GetU16(ack.scd.data() + 2) != length) {
    char text[96];
    std::snprintf(text, sizeof text, "the device wrote %u of %zu bytes",
                  static_cast<unsigned>(GetU16(ack.scd.data() + 2)), length);
    m_lastError = text;
    return CL_ERR_GET_LAST_ERROR;
  }
  return CL_ERR_NO_ERR;
}

int32_t CGenCPLink::WriteMem(const CLPSerial& serial, uint64_t address, const uint8_t* data, size_t length,
                             uint32_t timeoutMs, bool allowPending) {
  const size_t maxChunk = kMaxScdSize - 8;
  size_t done = 0;
  while (done < length || (length == 0 && done == 0)) {
    const size_t chunk = std::min(length - done, maxChunk);
    const bool last = done + chunk >= length;
    SPacket ack;
    int32_t status = Transact(serial, WRITEMEM_CMD, WriteMemScd(address + done, data + done, chunk), timeoutMs,
                              allowPending && last, ack);
    if (status == CL_ERR_PENDING_WRITE) {
      m_pendingLength = chunk;
      return status;
    }
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    status = CheckWriteAck(ack, chunk);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    done += chunk;
    if (length == 0) {
      break;
    }
  }
  return CL_ERR_NO_ERR;
}

int32_t CGenCPLink::ContinueWrite(const CLPSerial& serial, uint32_t timeoutMs) {
  SPacket ack;
  const int32_t status = ContinuePending(serial, timeoutMs, ack);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  return CheckWriteAck(ack, m_pendingLength);
}

int32_t CGenCPLink::ReadMemStacked(const CLPSerial& serial, std::vector<SStackedEntry>& entries, uint32_t timeoutMs) {
  std::vector<uint8_t> scd;
  size_t total = 0;
  for (const SStackedEntry& entry : entries) {
    PutU64(scd, entry.address);
    PutU16(scd, 0);
    PutU16(scd, entry.length);
    total += entry.length;
  }
  if (total > kMaxScdSize) {
    m_lastError = "stacked read larger than one packet";
    return CL_ERR_PARAM_DATA_SIZE;
  }
  SPacket ack;
  const int32_t status = Transact(serial, READMEM_STACKED_CMD, scd, timeoutMs, false, ack);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  if (ack.flagsOrStatus != STATUS_SUCCESS) {
    return DeviceStatusFailure(ack.flagsOrStatus, "stacked read", entries.empty() ? 0 : entries[0].address);
  }
  if (ack.scd.size() != total) {
    m_lastError = "stacked read acknowledge has the wrong length";
    return CL_ERR_GET_LAST_ERROR;
  }
  size_t offset = 0;
  for (SStackedEntry& entry : entries) {
    entry.data.assign(ack.scd.begin() + static_cast<std::ptrdiff_t>(offset),
                      ack.scd.begin() + static_cast<std::ptrdiff_t>(offset + entry.length));
    offset += entry.length;
  }
  return CL_ERR_NO_ERR;
}

int32_t CGenCPLink::WriteMemStacked(const CLPSerial& serial, const std::vector<SStackedEntry>& entries,
                                    uint32_t timeoutMs) {
  std::vector<uint8_t> scd;
  for (const SStackedEntry& entry : entries) {
    PutU64(scd, entry.address);
    PutU16(scd, 0);
    PutU16(scd, static_cast<uint16_t>(entry.data.size()));
    scd.insert(scd.end(), entry.data.begin(), entry.data.end());
  }
  SPacket ack;
  const int32_t status = Transact(serial, WRITEMEM_STACKED_CMD, scd, timeoutMs, false, ack);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  if (ack.flagsOrStatus != STATUS_SUCCESS) {
    return DeviceStatusFailure(ack.flagsOrStatus, "stacked write", entries.empty() ? 0 : entries[0].address);
  }
  if (ack.scd.size() != 4 * entries.size()) {
    m_lastError = "stacked write acknowledge has the wrong length";
    return CL_ERR_GET_LAST_ERROR;
  }
  for (size_t i = 0; i < entries.size(); ++i) {
    if (GetU16(ack.scd.data() + 4 * i + 2) != entries[i].data.size()) {
      m_lastError = "stacked write: the device wrote fewer bytes than sent";
      return CL_ERR_GET_LAST_ERROR;
    }
  }
  return CL_ERR_NO_ERR;
}

}  // namespace GenCP
}  // namespace CLProtocol

#include "SerialCameraEngine.h"

#include "GenCPBootstrap.h"

#include <CLProtocol/CLSerialApi.h>

namespace TalvirSerialCam {
namespace {

using namespace CLProtocol::GenCP;

}  // namespace

bool CSerialCameraEngine::ConsumeFault(EFault fault) {
  if (m_fault != fault || m_faultCount == 0) {
    return false;
  }
  if (m_faultCount > 0 && --m_faultCount == 0) {
    m_fault = EFault::None;
  }
  return true;
}

CSerialCameraEngine::CSerialCameraEngine(const SCameraConfig& config) : m_model(config) {}

void CSerialCameraEngine::SetFault(EFault fault, int count) {
  m_fault = fault;
  m_faultCount = count;
}

std::string CSerialCameraEngine::TakeOutput() {
  std::string output;
  output.swap(m_output);
  return output;
}

CSerialCameraEngine::Clock::time_point CSerialCameraEngine::NextDeadline(Clock::time_point now,
                                                                         std::chrono::milliseconds idle) const {
  Clock::time_point next = now + idle;
  if (m_confirmPending && m_confirmDeadline < next) {
    next = m_confirmDeadline;
  }
  if (m_busy) {
    next = std::min(next, std::min(m_busyUntil, m_nextPending));
  }
  return next;
}

void CSerialCameraEngine::RunTimers(Clock::time_point now) {
  if (m_confirmPending && now >= m_confirmDeadline) {
    // The switch was not confirmed in time: back to the previous rate.
    m_confirmPending = false;
    m_statistics.rateBit = m_fallbackRate;
    m_model.SetCurrentRateRegister(m_fallbackRate);
  }
  if (!m_busy) {
    return;
  }
  if (now >= m_busyUntil) {
    m_busy = false;
    const SPacket command = m_busyCommand;
    const uint64_t address = GetU64(command.scd.data());
    const uint16_t status = m_model.Write(address, command.scd.data() + 8, command.scd.size() - 8);
    std::vector<uint8_t> scd;
    if ((m_model.Config().capability & Capability::kWrittenLength) != 0) {
      PutU16(scd, 0);
      PutU16(scd, static_cast<uint16_t>(command.scd.size() - 8));
    }
    Acknowledge(command, status, scd);
  } else if (now >= m_nextPending) {
    SendPending();
  }
}

void CSerialCameraEngine::TakeBytes(const std::string& bytes, uint32_t hostRateBit) {
  if (hostRateBit != 0 && hostRateBit != m_statistics.rateBit) {
    // Sent at another rate: what arrives is noise.
    ++m_statistics.garbled;
    m_received.clear();
    return;
  }
  m_received += bytes;
  while (!m_received.empty()) {
    SPacket packet;
    size_t consumed = 0;
    const EParse result = Parse(reinterpret_cast<const uint8_t*>(m_received.data()), m_received.size(), packet,
                                consumed);
    if (result == EParse::NeedMore) {
      break;
    }
    m_received.erase(0, consumed);
    if (result == EParse::Complete) {
      HandleCommand(packet);
    } else if (result != EParse::BadPreamble) {
      ++m_statistics.badPackets;
    }
  }
}

void CSerialCameraEngine::Send(std::vector<uint8_t> bytes) {
  if (ConsumeFault(EFault::NoAnswer)) {
    return;
  }
  if (ConsumeFault(EFault::CorruptChecksum)) {
    bytes[2] ^= 0xFF;
  } else if (ConsumeFault(EFault::WrongRequestId)) {
    SPacket packet;
    size_t consumed = 0;
    Parse(bytes.data(), bytes.size(), packet, consumed);
    packet.requestId = static_cast<uint16_t>(packet.requestId + 7);
    bytes = Encode(packet);
  } else if (ConsumeFault(EFault::Truncated)) {
    bytes.resize(bytes.size() / 2);
  }
  m_output.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void CSerialCameraEngine::Acknowledge(const SPacket& command, uint16_t status, std::vector<uint8_t> scd) {
  SPacket ack;
  ack.channel = command.channel;
  ack.flagsOrStatus = status;
  ack.commandId = static_cast<uint16_t>(command.commandId + 1);
  ack.requestId = command.requestId;
  ack.scd = std::move(scd);
  std::vector<uint8_t> bytes = Encode(ack);
  m_hasLastAck = true;
  m_lastRequestId = command.requestId;
  m_lastAck = bytes;
  Send(std::move(bytes));
}

void CSerialCameraEngine::SendPending() {
  SPacket pending;
  pending.channel = m_busyCommand.channel;
  pending.commandId = PENDING_ACK;
  pending.requestId = m_busyCommand.requestId;
  PutU16(pending.scd, 0);
  PutU16(pending.scd, static_cast<uint16_t>(m_model.Config().pendingTimeoutMs));
  ++m_statistics.pendingAcks;
  // Announce again before the announced time runs out.
  m_nextPending = Clock::now() + std::chrono::milliseconds(m_model.Config().pendingTimeoutMs * 3 / 4);
  Send(Encode(pending));
}

void CSerialCameraEngine::HandleCommand(const SPacket& command) {
  ++m_statistics.commands;
  const bool resent = (command.flagsOrStatus & kFlagResend) != 0;
  if (resent) {
    ++m_statistics.resends;
  }
  if (m_busy) {
    if (command.requestId != m_busyCommand.requestId) {
      Acknowledge(command, STATUS_BUSY, {});
    }
    return;  // a resend of the slow command: the pending acknowledges answer it
  }
  if (resent && m_hasLastAck && command.requestId == m_lastRequestId) {
    Send(m_lastAck);  // already executed: only the answer was lost
    return;
  }
  switch (command.commandId) {
  case READMEM_CMD: {
    uint64_t address = 0;
    uint16_t length = 0;
    if (!ParseReadMemScd(command.scd, address, length) || length > kMaxScdSize) {
      Acknowledge(command, STATUS_INVALID_PARAMETER, {});
      return;
    }
    std::vector<uint8_t> data;
    const uint16_t status = m_model.Read(address, length, data);
    Acknowledge(command, status, status == STATUS_SUCCESS ? data : std::vector<uint8_t>());
    return;
  }
  case WRITEMEM_CMD:
    if (command.scd.size() < 8) {
      Acknowledge(command, STATUS_INVALID_PARAMETER, {});
      return;
    }
    HandleWrite(command, GetU64(command.scd.data()), command.scd.data() + 8, command.scd.size() - 8);
    return;
  case READMEM_STACKED_CMD:
  case WRITEMEM_STACKED_CMD: HandleStacked(command); return;
  default: Acknowledge(command, STATUS_NOT_IMPLEMENTED, {}); return;
  }
}

void CSerialCameraEngine::HandleWrite(const SPacket& command, uint64_t address, const uint8_t* data, size_t length) {
  std::vector<uint8_t> written;
  if ((m_model.Config().capability & Capability::kWrittenLength) != 0) {
    PutU16(written, 0);
    PutU16(written, static_cast<uint16_t>(length));
  }
  if (address == Address::kSbrm + Sbrm::kCurrentBaudRate) {
    const uint32_t rate = length == 4 ? GetU32(data) : 0;
    const uint32_t supported = m_model.Register32(Address::kSbrm + Sbrm::kSupportedBaudRates);
    if (CLProtocol::BaudRateOfBit(rate) == 0 || (rate & supported) == 0) {
      Acknowledge(command, STATUS_INVALID_PARAMETER, {});
      return;
    }
    if (m_confirmPending) {
      if (ConsumeFault(EFault::IgnoreBaudConfirm)) {
        return;
      }
      if (rate == m_statistics.rateBit) {
        m_confirmPending = false;
        Acknowledge(command, STATUS_SUCCESS, written);
        return;
      }
    }
    // Answer at the old rate, then switch and wait for the confirmation at the new one.
    Acknowledge(command, STATUS_SUCCESS, written);
    if (rate != m_statistics.rateBit) {
      m_fallbackRate = m_statistics.rateBit;
      m_statistics.rateBit = rate;
      m_model.SetCurrentRateRegister(rate);
      m_confirmPending = true;
      m_confirmDeadline = Clock::now() + std::chrono::milliseconds(Sbrm::kConfirmWindowMs);
    }
    return;
  }
  if (m_model.IsSlowWrite(address)) {
    m_busy = true;
    m_busyCommand = command;
    m_busyUntil = Clock::now() + std::chrono::milliseconds(m_model.Config().slowWriteMs);
    SendPending();
    return;
  }
  const uint16_t status = m_model.Write(address, data, length);
  Acknowledge(command, status, status == STATUS_SUCCESS ? written : std::vector<uint8_t>());
}

void CSerialCameraEngine::HandleStacked(const SPacket& command) {
  if ((m_model.Config().capability & Capability::kStackedCommands) == 0) {
    Acknowledge(command, STATUS_NOT_IMPLEMENTED, {});
    return;
  }
  ++m_statistics.stackedCommands;
  const std::vector<uint8_t>& scd = command.scd;
  std::vector<uint8_t> answer;
  size_t offset = 0;
  while (offset < scd.size()) {
    if (scd.size() - offset < 12) {
      Acknowledge(command, STATUS_INVALID_PARAMETER, {});
      return;
    }
    const uint64_t address = GetU64(scd.data() + offset);
    const uint16_t length = GetU16(scd.data() + offset + 10);
    offset += 12;
    uint16_t status = STATUS_SUCCESS;
    if (command.commandId == READMEM_STACKED_CMD) {
      std::vector<uint8_t> data;
      status = answer.size() + length > kMaxScdSize ? static_cast<uint16_t>(STATUS_INVALID_PARAMETER)
                                                    : m_model.Read(address, length, data);
      answer.insert(answer.end(), data.begin(), data.end());
    } else {
      if (scd.size() - offset < length) {
        Acknowledge(command, STATUS_INVALID_PARAMETER, {});
        return;
      }
      status = m_model.Write(address, scd.data() + offset, length);
      offset += length;
      PutU16(answer, 0);
      PutU16(answer, length);
    }
    if (status != STATUS_SUCCESS) {
      Acknowledge(command, status, {});
      return;
    }
  }
  Acknowledge(command, STATUS_SUCCESS, answer);
}

}  // namespace TalvirSerialCam

#include "GenCPPacket.h"

#include <cstdio>

namespace CLProtocol {
namespace GenCP {

const char* StatusName(uint16_t status) {
  switch (status) {
  case STATUS_SUCCESS: return "SUCCESS";
  case STATUS_NOT_IMPLEMENTED: return "NOT_IMPLEMENTED";
  case STATUS_INVALID_PARAMETER: return "INVALID_PARAMETER";
  case STATUS_INVALID_ADDRESS: return "INVALID_ADDRESS";
  case STATUS_WRITE_PROTECT: return "WRITE_PROTECT";
  case STATUS_BAD_ALIGNMENT: return "BAD_ALIGNMENT";
  case STATUS_ACCESS_DENIED: return "ACCESS_DENIED";
  case STATUS_BUSY: return "BUSY";
  case STATUS_MSG_TIMEOUT: return "MSG_TIMEOUT";
  case STATUS_INVALID_HEADER: return "INVALID_HEADER";
  case STATUS_WRONG_CONFIG: return "WRONG_CONFIG";
  case STATUS_GENCP_ERROR: return "GENCP_ERROR";
  default: return "UNKNOWN";
  }
}

uint16_t Checksum(const uint8_t* data, size_t size) {
  uint32_t sum = 0;
  size_t i = 0;
  for (; i + 1 < size; i += 2) {
    sum += static_cast<uint32_t>(data[i]) << 8 | data[i + 1];
  }
  if (i < size) {
    sum += static_cast<uint32_t>(data[i]) << 8;
  }
  while ((sum >> 16) != 0) {
    sum = (sum & 0xFFFF) + (sum >> 16);
  }
  return static_cast<uint16_t>(~sum & 0xFFFF);
}

void PutU16(std::vector<uint8_t>& out, uint16_t value) {
  out.push_back(static_cast<uint8_t>(value >> 8));
  out.push_back(static_cast<uint8_t>(value));
}

void PutU32(std::vector<uint8_t>& out, uint32_t value) {
  PutU16(out, static_cast<uint16_t>(value >> 16));
  PutU16(out, static_cast<uint16_t>(value));
}

void PutU64(std::vector<uint8_t>& out, uint64_t value) {
  PutU32(out, static_cast<uint32_t>(value >> 32));
  PutU32(out, static_cast<uint32_t>(value));
}

uint16_t GetU16(const uint8_t* data) { return static_cast<uint16_t>(data[0] << 8 | data[1]); }

uint32_t GetU32(const uint8_t* data) { return static_cast<uint32_t>(GetU16(data)) << 16 | GetU16(data + 2); }

uint64_t GetU64(const uint8_t* data) { return static_cast<uint64_t>(GetU32(data)) << 32 | GetU32(data + 4); }

std::vector<uint8_t> Encode(const SPacket& packet) {
  std::vector<uint8_t> bytes;
  bytes.reserve(kHeaderSize + packet.scd.size());
  bytes.push_back(kPreamble0);
  bytes.push_back(kPreamble1);
  PutU16(bytes, 0);  // CCD checksum, below
  PutU16(bytes, 0);  // SCD checksum, below
  PutU16(bytes, packet.channel);
  PutU16(bytes, packet.flagsOrStatus);
  PutU16(bytes, packet.commandId);
  PutU16(bytes, static_cast<uint16_t>(packet.scd.size()));
  PutU16(bytes, packet.requestId);
  bytes.insert(bytes.end(), packet.scd.begin(), packet.scd.end());
  // Both checksums cover the channel id: the CCD one up to the end of the CCD, the SCD one to the end of the packet.
  const uint16_t ccd = Checksum(bytes.data() + 6, 2 + kCcdSize);
  const uint16_t scd = Checksum(bytes.data() + 6, bytes.size() - 6);
  bytes[2] = static_cast<uint8_t>(ccd >> 8);
  bytes[3] = static_cast<uint8_t>(ccd);
  bytes[4] = static_cast<uint8_t>(scd >> 8);
  bytes[5] = static_cast<uint8_t>(scd);
  return bytes;
}

EParse Parse(const uint8_t* data, size_t size, SPacket& packet, size_t& consumed) {
  consumed = 0;
  if (size >= 1 && data[0] != kPreamble0) {
    consumed = 1;
    return EParse::BadPreamble;
  }
  if (size >= 2 && data[1] != kPreamble1) {
    consumed = 1;
    return EParse::BadPreamble;
  }
  if (size < kHeaderSize) {
    return EParse::NeedMore;
  }
  if (Checksum(data + 6, 2 + kCcdSize) != GetU16(data + 2)) {
    consumed = kHeaderSize;
    return EParse::BadCcdChecksum;
  }
  const size_t scdLength = GetU16(data + 12);
  if (scdLength > kMaxScdSize) {
    consumed = kHeaderSize;
    return EParse::TooLong;
  }
  if (size < kHeaderSize + scdLength) {
    return EParse::NeedMore;
  }
  if (Checksum(data + 6, 2 + kCcdSize + scdLength) != GetU16(data + 4)) {
    consumed = kHeaderSize + scdLength;
    return EParse::BadScdChecksum;
  }
  packet.channel = GetU16(data + 6);
  packet.flagsOrStatus = GetU16(data + 8);
  packet.commandId = GetU16(data + 10);
  packet.requestId = GetU16(data + 14);
  packet.scd.assign(data + kHeaderSize, data + kHeaderSize + scdLength);
  consumed = kHeaderSize + scdLength;
  return EParse::Complete;
}

std::vector<uint8_t> ReadMemScd(uint64_t address, uint16_t length) {
  std::vector<uint8_t> scd;
  PutU64(scd, address);
  PutU16(scd, 0);
  PutU16(scd, length);
  return scd;
}

std::vector<uint8_t> WriteMemScd(uint64_t address, const uint8_t* data, size_t size) {
  std::vector<uint8_t> scd;
  PutU64(scd, address);
  scd.insert(scd.end(), data, data + size);
  return scd;
}

bool ParseReadMemScd(const std::vector<uint8_t>& scd, uint64_t& address, uint16_t& length) {
  if (scd.size() != 12) {
    return false;
  }
  address = GetU64(scd.data());
  length = GetU16(scd.data() + 10);
  return true;
}

bool ParsePendingScd(const std::vector<uint8_t>& scd, uint16_t& timeoutMs) {
  if (scd.size() != 4) {
    return false;
  }
  timeoutMs = GetU16(scd.data() + 2);
  return true;
}

std::string HexText(const uint8_t* data, size_t size) {
  std::string text;
  char hex[4];
  for (size_t i = 0; i < size; ++i) {
    std::snprintf(hex, sizeof hex, i == 0 ? "%02x" : " %02x", data[i]);
    text += hex;
  }
  return text;
}

}  // namespace GenCP
}  // namespace CLProtocol

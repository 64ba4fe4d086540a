#pragma once
// GenCP packets over a serial link: an 8-byte serial prefix (preamble 0x01 0x00, CCD checksum, SCD checksum, channel
// id), the common command data (CCD) and the specific command data (SCD), all big-endian, at most 1024 bytes.
// Shared by the protocol driver, the simulated camera and the tests.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace CLProtocol {
namespace GenCP {

constexpr uint16_t kFlagRequestAck = 0x4000;
constexpr uint16_t kFlagResend = 0x8000;

enum ECommand : uint16_t {
  READMEM_CMD = 0x0800,
  READMEM_ACK = 0x0801,
  WRITEMEM_CMD = 0x0802,
  WRITEMEM_ACK = 0x0803,
  PENDING_ACK = 0x0805,
  READMEM_STACKED_CMD = 0x0806,
  READMEM_STACKED_ACK = 0x0807,
  WRITEMEM_STACKED_CMD = 0x0808,
  WRITEMEM_STACKED_ACK = 0x0809,
  EVENT_CMD = 0x0C00,
  EVENT_ACK = 0x0C01
};

enum EStatus : uint16_t {
  STATUS_SUCCESS = 0x0000,
  STATUS_NOT_IMPLEMENTED = 0x8001,
  STATUS_INVALID_PARAMETER = 0x8002,
  STATUS_INVALID_ADDRESS = 0x8003,
  STATUS_WRITE_PROTECT = 0x8004,
  STATUS_BAD_ALIGNMENT = 0x8005,
  STATUS_ACCESS_DENIED = 0x8006,
  STATUS_BUSY = 0x8007,
  STATUS_MSG_TIMEOUT = 0x800B,
  STATUS_INVALID_HEADER = 0x800E,
  STATUS_WRONG_CONFIG = 0x800F,
  STATUS_GENCP_ERROR = 0x8FFF
};

constexpr size_t kPrefixSize = 8;
constexpr size_t kCcdSize = 8;
constexpr size_t kHeaderSize = kPrefixSize + kCcdSize;
constexpr size_t kMaxPacketSize = 1024;
constexpr size_t kMaxScdSize = kMaxPacketSize - kHeaderSize;
constexpr uint8_t kPreamble0 = 0x01;
constexpr uint8_t kPreamble1 = 0x00;

// The name of a device status ("INVALID_ADDRESS"), or "UNKNOWN".
const char* StatusName(uint16_t status);

// 16-bit one's complement of the one's-complement sum of the big-endian 16-bit words; an odd last byte is the
// high byte of a word.
uint16_t Checksum(const uint8_t* data, size_t size);

// One packet. For commands `flagsOrStatus` holds the flags, for acknowledges the status.
struct SPacket {
  uint16_t channel = 0;
  uint16_t flagsOrStatus = 0;
  uint16_t commandId = 0;
  uint16_t requestId = 0;
  std::vector<uint8_t> scd;
};

// The bytes of a packet with both checksums filled in. The SCD must not exceed kMaxScdSize.
std::vector<uint8_t> Encode(const SPacket& packet);

enum class EParse {
  Complete,        // a whole packet; `consumed` bytes belong to it
  NeedMore,        // not enough bytes yet; nothing consumed
  BadPreamble,     // the first byte cannot start a packet; drop `consumed` (1) byte
  BadCcdChecksum,  // header damaged: its length cannot be trusted; drop `consumed` bytes (the header)
  BadScdChecksum,  // the data are damaged; drop `consumed` bytes (the whole packet)
  TooLong          // the header announces more than fits in a packet; drop `consumed` bytes (the header)
};

// Parses the packet at the start of `data`.
EParse Parse(const uint8_t* data, size_t size, SPacket& packet, size_t& consumed);

// Big-endian fields.
void PutU16(std::vector<uint8_t>& out, uint16_t value);
void PutU32(std::vector<uint8_t>& out, uint32_t value);
void PutU64(std::vector<uint8_t>& out, uint64_t value);
uint16_t GetU16(const uint8_t* data);
uint32_t GetU32(const uint8_t* data);
uint64_t GetU64(const uint8_t* data);

// Specific command data of the memory commands.
std::vector<uint8_t> ReadMemScd(uint64_t address, uint16_t length);
std::vector<uint8_t> WriteMemScd(uint64_t address, const uint8_t* data, size_t size);
bool ParseReadMemScd(const std::vector<uint8_t>& scd, uint64_t& address, uint16_t& length);
bool ParsePendingScd(const std::vector<uint8_t>& scd, uint16_t& timeoutMs);

// Request ids start at 0 and increment before each command, wrapping from 0xFFFF to 1.
class CRequestIds {
public:
  uint16_t Next() {
    m_last = m_last == 0xFFFF ? 1 : static_cast<uint16_t>(m_last + 1);
    return m_last;
  }
  uint16_t Last() const { return m_last; }
  void SetLast(uint16_t last) { m_last = last; }

private:
  uint16_t m_last = 0;
};

// Hexadecimal text of bytes ("01 00 b7 f2"), for messages and tests.
std::string HexText(const uint8_t* data, size_t size);

}  // namespace GenCP
}  // namespace CLProtocol

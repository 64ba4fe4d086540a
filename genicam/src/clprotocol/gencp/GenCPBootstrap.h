#pragma once
// The GenCP bootstrap register map, the capability bits, the manifest and the serial technology register map.
// Register contents are big-endian, like the packets.
#include <cstddef>
#include <cstdint>

namespace CLProtocol {
namespace GenCP {

namespace Bootstrap {
constexpr uint64_t kGenCPVersion = 0x000;              // 4: major in the upper, minor in the lower 16 bits
constexpr uint64_t kManufacturerName = 0x004;          // 64
constexpr uint64_t kModelName = 0x044;                 // 64
constexpr uint64_t kFamilyName = 0x084;                // 64
constexpr uint64_t kDeviceVersion = 0x0C4;             // 64
constexpr uint64_t kManufacturerInfo = 0x104;          // 64
constexpr uint64_t kSerialNumber = 0x144;              // 64
constexpr uint64_t kUserDefinedName = 0x184;           // 64
constexpr uint64_t kCapability = 0x1C4;                // 8
constexpr uint64_t kMaxDeviceResponseTime = 0x1CC;     // 4, ms
constexpr uint64_t kManifestTableAddress = 0x1D0;      // 8
constexpr uint64_t kSbrmAddress = 0x1D8;               // 8: serial technology register map
constexpr uint64_t kDeviceConfiguration = 0x1E0;       // 8
constexpr uint64_t kHeartbeatTimeout = 0x1E8;          // 4
constexpr uint64_t kMessageChannelId = 0x1EC;          // 4
constexpr uint64_t kTimestamp = 0x1F0;                 // 8
constexpr uint64_t kTimestampLatch = 0x1F8;            // 4
constexpr uint64_t kTimestampIncrement = 0x1FC;        // 8
constexpr uint64_t kAccessPrivilege = 0x204;           // 4
constexpr uint64_t kImplementationEndianness = 0x20C;  // 4
constexpr uint64_t kSoftwareInterfaceVersion = 0x210;  // 64
constexpr uint64_t kEnd = 0x250;
constexpr size_t kStringSize = 64;
}  // namespace Bootstrap

namespace Capability {
constexpr uint64_t kUserDefinedName = 1ull << 0;
constexpr uint64_t kAccessPrivilegeHeartbeat = 1ull << 1;
constexpr uint64_t kMessageChannel = 1ull << 2;
constexpr uint64_t kTimestamp = 1ull << 3;
constexpr uint64_t kFamilyName = 1ull << 8;
constexpr uint64_t kSerialTechnologyMap = 1ull << 9;
constexpr uint64_t kEndiannessRegister = 1ull << 10;
constexpr uint64_t kWrittenLength = 1ull << 11;
constexpr uint64_t kMultiEvent = 1ull << 12;
constexpr uint64_t kStackedCommands = 1ull << 13;
constexpr uint64_t kSoftwareInterfaceVersion = 1ull << 14;
}  // namespace Capability

namespace Manifest {
constexpr size_t kEntrySize = 64;
// Entry fields (offsets within an entry).
constexpr size_t kFileVersion = 0;  // u32: major 24-31, minor 16-23, subminor 0-15
constexpr size_t kFormat = 4;       // u32: file type bits 0-2, format bits 10-15, schema minor 16-23, major 24-31
constexpr size_t kAddress = 8;      // u64
constexpr size_t kSize = 16;        // u64
constexpr size_t kSha1 = 24;        // 20 bytes, all zero: none
constexpr uint32_t kFileTypeMask = 0x7;
constexpr uint32_t kFileTypeDeviceDescription = 0;
constexpr uint32_t FormatOf(uint32_t format) { return (format >> 10) & 0x3F; }
constexpr uint32_t kFormatPlain = 0;
constexpr uint32_t kFormatZip = 1;
// The entry count a reader accepts, so that a damaged table cannot make it read without end.
constexpr uint64_t kMaxEntries = 64;
}  // namespace Manifest

namespace Sbrm {
constexpr uint64_t kSupportedBaudRates = 0x0;  // 4: baud-rate bits
constexpr uint64_t kCurrentBaudRate = 0x4;     // 4: one baud-rate bit
// A switch is confirmed by writing the register again at the new rate within this time, else the device falls back.
constexpr uint32_t kConfirmWindowMs = 250;
}  // namespace Sbrm

}  // namespace GenCP
}  // namespace CLProtocol

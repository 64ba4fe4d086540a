#pragma once
// The GigE Vision producer's own device record (device information command 1001) and how it fills a device record.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace TALVIR {

class CCameraInfo;

constexpr int32_t kGevDeviceRecordCommand = 1001;
constexpr size_t kGevDeviceRecordSize = 420;

// Byte offsets inside the record; texts are zero-terminated within their field unless they fill it.
namespace GevRecord {
constexpr size_t IPAddress = 0;
constexpr size_t Vendor = 4;      // 32 bytes
constexpr size_t Model = 36;      // 32 bytes
constexpr size_t Version = 68;    // 32 bytes
constexpr size_t Address6 = 100;  // also the number at the end of the device ID
constexpr size_t Address7 = 104;
constexpr size_t MAC = 108;  // 6 bytes, then 2 unused
constexpr size_t Address3 = 116;
constexpr size_t Address4 = 120;
constexpr size_t Text5 = 124;     // 260 bytes
constexpr size_t Serial = 384;    // 16 bytes
constexpr size_t UserName = 400;  // 16 bytes
constexpr size_t AccessStatus = 416;
}  // namespace GevRecord

using GevDeviceRecord = std::array<uint8_t, kGevDeviceRecordSize>;

// Dotted text of the IPv4 address stored at `offset` in network byte order.
std::string GevDottedAddress(const GevDeviceRecord& record, size_t offset);

// The library's device ID for a GigE device: model@MA-C0-AD-DR-ES-S0[serial]##address6##.
std::string GevDeviceID(const GevDeviceRecord& record);

// Overwrites the record's names, serial number, access status and device ID with the GigE record's, and adds the
// address items 1 to 7.
void ApplyGevDeviceRecord(const GevDeviceRecord& gevRecord, CCameraInfo& record);

}  // namespace TALVIR

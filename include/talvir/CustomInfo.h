#pragma once
// Item numbers of ICameraInfo::GetCustomInfo. Which items a record has depends on its transport and producer;
// GetCustomInfo returns null for an item the record does not have.
#include <cstdint>

namespace TALVIR {
namespace CustomInfo {

// GigE Vision devices (from the GigE producer's device record).
constexpr uint32_t GevIPAddress = 1;  // dotted IPv4 address of the device
constexpr uint32_t GevMACAddress = 2; // "00:11:22:33:44:55"
constexpr uint32_t GevAddress3 = 3;   // further addresses as the producer reports them, dotted
constexpr uint32_t GevAddress4 = 4;
constexpr uint32_t GevText5 = 5;
constexpr uint32_t GevAddress6 = 6;
constexpr uint32_t GevAddress7 = 7;

// USB3 Vision devices.
constexpr uint32_t U3VDeviceIDTail = 8; // the producer's device ID after its first blank
constexpr uint32_t U3VInfo1102 = 9;     // texts of the producer's information commands 1102, 1101, 1100
constexpr uint32_t U3VInfo1101 = 10;
constexpr uint32_t U3VInfo1100 = 11;

// Camera Link grabbers: texts of the producer's information commands (numbers as decimal text).
constexpr uint32_t CLInfo1201 = 21;
constexpr uint32_t CLInfo1202 = 22;
constexpr uint32_t CLInfo1203 = 23;
constexpr uint32_t CLInfo1205 = 25;
constexpr uint32_t CLInfo1207 = 27;
constexpr uint32_t CLProtocolDescriptor = 28; // our protocol driver: "<folder>#<file>#<manufacturer>#<family>"
constexpr uint32_t CLGrabberSerialPort = 29;  // "KORIX#CL_GRABBER#SERIAL" followed by the grabber's port text
constexpr uint32_t CLInfo1230 = 30;
constexpr uint32_t CLInfo1231 = 31;

// Every record made by a producer: the file name of that producer.
constexpr uint32_t ProducerFile = 100;

} // namespace CustomInfo
} // namespace TALVIR

#pragma once
// Item numbers of ICameraInfo::GetCustomInfo. Which items a record has depends on its transport and producer;
// GetCustomInfo returns null for an item the record does not have.
#include <cstdint>

namespace TALVIR {
namespace CustomInfo {

// GigE Vision devices (from the GigE producer's device record).
constexpr uint32_t GevIPAddress = 1;   // dotted IPv4 address of the device
constexpr uint32_t GevMACAddress = 2;  // "00:11:22:33:44:55"
constexpr uint32_t GevAddress3 = 3;    // further addresses as the producer reports them, dotted
constexpr uint32_t GevAddress4 = 4;
constexpr uint32_t GevText5 = 5;
constexpr uint32_t GevAddress6 = 6;
constexpr uint32_t GevAddress7 = 7;

// USB3 Vision devices.
constexpr uint32_t U3VDeviceIDTail = 8;  // the producer's device ID after its first blank
constexpr uint32_t U3VInfo1102 = 9;      // texts of the producer's information commands 1102, 1101, 1100
constexpr uint32_t U3VInfo1101 = 10;
constexpr uint32_t U3VInfo1100 = 11;

// Camera Link. A camera's serial link is opened with ICamera::OpenSerial(item 29, item 28), for records of frame
// grabbers (TL type CL or CLHS) and of cameras found on serial ports (TL type CLSerialOnly) alike.
// Frame grabbers: texts of the producer's information commands (numbers as decimal text).
constexpr uint32_t CLInfo1201 = 21;
constexpr uint32_t CLInfo1202 = 22;
constexpr uint32_t CLInfo1203 = 23;
constexpr uint32_t CLInfo1205 = 25;
constexpr uint32_t CLInfo1207 = 27;
// Item 28: the protocol driver's device ID. Grabbers: our driver's template "<folder>#<file>#<manufacturer>#<family>";
// serial-port cameras: the device ID the probe returned (the template with the camera's identity).
constexpr uint32_t CLProtocolDescriptor = 28;
// Item 29: the serial port ID. Grabbers: "KORIX#CL_GRABBER#SERIAL" followed by the grabber's port text (information
// command 1208, "<board>.<channel>"); serial-port cameras: the port the camera answered on, e.g.
// "COM_Port#/dev/ttyUSB0".
constexpr uint32_t CLGrabberSerialPort = 29;
constexpr uint32_t CLInfo1230 = 30;
constexpr uint32_t CLInfo1231 = 31;
// Serial-port cameras (TL type CLSerialOnly): the device family from the probe. The probe's manufacturer, model,
// version and serial number are the record's vendor, model, version and serial number; its optional last field (the
// camera's own name) is the user-defined name; the device ID is item 28.
constexpr uint32_t CLSerialFamily = 40;

// Every record made by a producer: the file name of that producer.
constexpr uint32_t ProducerFile = 100;

}  // namespace CustomInfo
}  // namespace TALVIR

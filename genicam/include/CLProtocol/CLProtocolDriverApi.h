#pragma once
// The C interface of a CLProtocol driver: a shared library that turns register reads and writes into bytes on a
// serial port for one camera protocol. Drivers live in <root>/<platform folder> for each root listed in the
// environment variable GENICAM_CLPROTOCOL, the platform folder being Linux64_x64 on this platform.
//
// Device IDs have the form Directory#DriverFile#Manufacturer#Family#Model[#Version[#Serial]]. A driver sees them
// without the leading Directory#DriverFile part; its templates are such short IDs reaching at least the family.
#include <cstdint>

#include <CLProtocol/CLSerialApi.h>

namespace CLProtocol {

extern "C" {

// The serial port a driver talks through, lent to it for each call. All functions follow the serial library's
// rules (reads return all bytes or time out copying nothing) and return its status codes.
struct CLPSerial {
  void* context;
  int32_t (*read)(void* context, char* buffer, uint32_t* size, uint32_t timeoutMs);
  int32_t (*write)(void* context, const char* buffer, uint32_t* size, uint32_t timeoutMs);
  int32_t (*flush)(void* context);
  int32_t (*getSupportedBaudRates)(void* context, uint32_t* rates);
  int32_t (*setBaudRate)(void* context, uint32_t rate);
};

// A driver's handle of one connected device.
using CLPCookie = void*;

// Parameters of clpGetParam / clpSetParam / clpIsParamSupported (values are 4 bytes, little-endian host order).
enum ECLPParam : uint32_t {
  CLP_PARAM_BAUDRATE = 1,         // the link's current baud-rate bit; setting it switches device and host
  CLP_PARAM_DEFAULT_TIMEOUT = 2,  // register time-out in ms used when a call passes 0
  CLP_PARAM_MAX_BAUDRATES = 3     // read-only: the baud-rate bits both device and host support
};

using PFclpInitLib = int32_t (*)();
using PFclpCloseLib = int32_t (*)();
// Tab-separated short device ID templates.
using PFclpGetShortDeviceIDTemplates = int32_t (*)(char* templates, uint32_t* size);
// Probes at 9600 baud. `deviceId` is a template (find any matching device) or a full short device ID (reconnect
// to exactly that device). On success `answer` holds the probe answer, and `cookie` the connection when not null.
using PFclpProbeDevice = int32_t (*)(const CLPSerial* serial, const char* deviceId, char* answer, uint32_t* size,
                                     CLPCookie* cookie, uint32_t timeoutMs);
// Tab-separated identifiers of the description files the device holds.
using PFclpGetXMLIDs = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, char* ids, uint32_t* size);
// The description file's bytes as stored by the device (plain text or a ZIP archive). With a null buffer, or one
// too small, *size receives the size needed (CL_ERR_BUFFER_TOO_SMALL for a buffer too small).
using PFclpGetXMLDescription = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, const char* xmlId, char* buffer,
                                           uint32_t* size);
using PFclpReadRegister = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, int64_t address, char* buffer,
                                      int64_t length, uint32_t timeoutMs);
// May return CL_ERR_PENDING_WRITE: the device needs longer; continue with clpContinueWriteRegister.
using PFclpWriteRegister = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, int64_t address, const char* buffer,
                                       int64_t length, uint32_t timeoutMs);
// Waits again for a pending write (`keepWaiting` non-zero) or abandons it (0).
using PFclpContinueWriteRegister = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, int32_t keepWaiting,
                                               uint32_t timeoutMs);
// The text of a status for this cookie's last failure (or a generic one with a null cookie).
using PFclpGetErrorText = int32_t (*)(CLPCookie cookie, int32_t status, char* text, uint32_t* size);
using PFclpDisconnect = int32_t (*)(CLPCookie cookie);
using PFclpGetCLProtocolVersion = int32_t (*)(uint32_t* major, uint32_t* minor);
using PFclpGetParam = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, uint32_t param, char* buffer,
                                  uint32_t* size);
using PFclpSetParam = int32_t (*)(const CLPSerial* serial, CLPCookie cookie, uint32_t param, const char* buffer,
                                  uint32_t size);
using PFclpIsParamSupported = int32_t (*)(uint32_t param);
}

}  // namespace CLProtocol

#pragma once
// The C interface of a Camera Link serial library (one library per frame-grabber maker, plus one for the PC's own
// ports): status codes, baud-rate bits and the exported functions' types. Each library exports these functions
// under their plain C names; a library written to an older revision may lack some of them.
#include <cstdint>

#include <CLProtocol/CLProtocolExport.h>

namespace CLProtocol {

// Status codes of the serial libraries and of the protocol drivers.
enum ECLStatus : int32_t {
  CL_ERR_NO_ERR = 0,
  CL_ERR_BUFFER_TOO_SMALL = -10001,
  CL_ERR_MANU_DOES_NOT_EXIST = -10002,
  CL_ERR_PORT_IN_USE = -10003,
  CL_ERR_TIMEOUT = -10004,
  CL_ERR_INVALID_INDEX = -10005,
  CL_ERR_INVALID_REFERENCE = -10006,
  CL_ERR_ERROR_NOT_FOUND = -10007,
  CL_ERR_BAUD_RATE_NOT_SUPPORTED = -10008,
  CL_ERR_OUT_OF_MEMORY = -10009,
  CL_ERR_INVALID_PTR = -10011,
  CL_ERR_IN_USE = -10012,
  CL_ERR_UNABLE_TO_LOAD_DLL = -10098,
  CL_ERR_FUNCTION_NOT_FOUND = -10099,
  // Protocol drivers.
  CL_ERR_PENDING_WRITE = 20101,
  CL_ERR_INVALID_DEVICEID = -20100,
  CL_ERR_NO_DEVICE_FOUND = -20101,
  CL_ERR_NO_XMLDESCRIPTION_FOUND = -20102,
  CL_ERR_INVALID_COOKIE = -20103,
  CL_ERR_GET_LAST_ERROR = -20104,
  CL_ERR_PARAM_NOT_SUPPORTED = -20105,
  CL_ERR_PARAM_READ_ONLY = -20106,
  CL_ERR_PARAM_DATA_SIZE = -20107,
  CL_ERR_PARAM_DATA_VALUE = -20108
};

// Baud-rate bits, as in the supported-rates masks and the set-rate calls. Links start at 9600 baud, 8N1.
enum ECLBaudRate : uint32_t {
  CL_BAUDRATE_9600 = 0x1,
  CL_BAUDRATE_19200 = 0x2,
  CL_BAUDRATE_38400 = 0x4,
  CL_BAUDRATE_57600 = 0x8,
  CL_BAUDRATE_115200 = 0x10,
  CL_BAUDRATE_230400 = 0x20,
  CL_BAUDRATE_460800 = 0x40,
  CL_BAUDRATE_921600 = 0x80
};

// Bits per second of one baud-rate bit; 0 for anything that is not exactly one known bit.
CLPROTOCOL_API uint32_t BaudRateOfBit(uint32_t bit);
// The bit of a rate in bits per second; 0 for a rate without one.
CLPROTOCOL_API uint32_t BitOfBaudRate(uint32_t baud);

// A short English text for a status code ("CL_ERR_TIMEOUT: time-out"); unknown codes give "unknown status <n>".
CLPROTOCOL_API const char* StatusText(int32_t status);

extern "C" {
// A serial port reference handed out by clSerialInit.
using CLSerialRef = void*;

using PFclGetNumSerialPorts = int32_t (*)(uint32_t* count);
using PFclGetSerialPortIdentifier = int32_t (*)(uint32_t index, char* identifier, uint32_t* size);
using PFclGetManufacturerInfo = int32_t (*)(char* name, uint32_t* size, uint32_t* version);
using PFclSerialInit = int32_t (*)(uint32_t index, CLSerialRef* reference);
// Returns only when all *size bytes arrived, or times out and copies nothing.
using PFclSerialRead = int32_t (*)(CLSerialRef reference, char* buffer, uint32_t* size, uint32_t timeoutMs);
using PFclSerialWrite = int32_t (*)(CLSerialRef reference, char* buffer, uint32_t* size, uint32_t timeoutMs);
using PFclGetNumBytesAvail = int32_t (*)(CLSerialRef reference, uint32_t* count);
using PFclFlushPort = int32_t (*)(CLSerialRef reference);
using PFclGetSupportedBaudRates = int32_t (*)(CLSerialRef reference, uint32_t* rates);
using PFclSetBaudRate = int32_t (*)(CLSerialRef reference, uint32_t rate);
using PFclSerialClose = void (*)(CLSerialRef reference);
using PFclGetErrorText = int32_t (*)(int32_t status, char* text, uint32_t* size);
}

}  // namespace CLProtocol

#include <CLProtocol/CLSerialApi.h>

namespace CLProtocol {

uint32_t BaudRateOfBit(uint32_t bit) {
  switch (bit) {
  case CL_BAUDRATE_9600: return 9600;
  case CL_BAUDRATE_19200: return 19200;
  case CL_BAUDRATE_38400: return 38400;
  case CL_BAUDRATE_57600: return 57600;
  case CL_BAUDRATE_115200: return 115200;
  case CL_BAUDRATE_230400: return 230400;
  case CL_BAUDRATE_460800: return 460800;
  case CL_BAUDRATE_921600: return 921600;
  default: return 0;
  }
}

uint32_t BitOfBaudRate(uint32_t baud) {
  for (uint32_t bit = 1; bit <= CL_BAUDRATE_921600; bit <<= 1) {
    if (BaudRateOfBit(bit) == baud) {
      return bit;
    }
  }
  return 0;
}

const char* StatusText(int32_t status) {
  switch (status) {
  case CL_ERR_NO_ERR: return "CL_ERR_NO_ERR: success";
  case CL_ERR_BUFFER_TOO_SMALL: return "CL_ERR_BUFFER_TOO_SMALL: the buffer is too small";
  case CL_ERR_MANU_DOES_NOT_EXIST: return "CL_ERR_MANU_DOES_NOT_EXIST: no such manufacturer";
  case CL_ERR_PORT_IN_USE: return "CL_ERR_PORT_IN_USE: the port is in use";
  case CL_ERR_TIMEOUT: return "CL_ERR_TIMEOUT: time-out";
  case CL_ERR_INVALID_INDEX: return "CL_ERR_INVALID_INDEX: no port with this index";
  case CL_ERR_INVALID_REFERENCE: return "CL_ERR_INVALID_REFERENCE: invalid port reference";
  case CL_ERR_ERROR_NOT_FOUND: return "CL_ERR_ERROR_NOT_FOUND: the port is gone or the code is unknown";
  case CL_ERR_BAUD_RATE_NOT_SUPPORTED: return "CL_ERR_BAUD_RATE_NOT_SUPPORTED: baud rate not supported";
  case CL_ERR_OUT_OF_MEMORY: return "CL_ERR_OUT_OF_MEMORY: out of memory";
  case CL_ERR_INVALID_PTR: return "CL_ERR_INVALID_PTR: invalid pointer";
  case CL_ERR_IN_USE: return "CL_ERR_IN_USE: in use";
  case CL_ERR_UNABLE_TO_LOAD_DLL: return "CL_ERR_UNABLE_TO_LOAD_DLL: the library cannot be loaded";
  case CL_ERR_FUNCTION_NOT_FOUND: return "CL_ERR_FUNCTION_NOT_FOUND: the library lacks this function";
  case CL_ERR_PENDING_WRITE: return "CL_ERR_PENDING_WRITE: the write is still pending";
  case CL_ERR_INVALID_DEVICEID: return "CL_ERR_INVALID_DEVICEID: invalid device ID";
  case CL_ERR_NO_DEVICE_FOUND: return "CL_ERR_NO_DEVICE_FOUND: no device found";
  case CL_ERR_NO_XMLDESCRIPTION_FOUND: return "CL_ERR_NO_XMLDESCRIPTION_FOUND: no description file found";
  case CL_ERR_INVALID_COOKIE: return "CL_ERR_INVALID_COOKIE: invalid connection cookie";
  case CL_ERR_GET_LAST_ERROR: return "CL_ERR_GET_LAST_ERROR: protocol failure";
  case CL_ERR_PARAM_NOT_SUPPORTED: return "CL_ERR_PARAM_NOT_SUPPORTED: parameter not supported";
  case CL_ERR_PARAM_READ_ONLY: return "CL_ERR_PARAM_READ_ONLY: parameter is read-only";
  case CL_ERR_PARAM_DATA_SIZE: return "CL_ERR_PARAM_DATA_SIZE: wrong parameter size";
  case CL_ERR_PARAM_DATA_VALUE: return "CL_ERR_PARAM_DATA_VALUE: parameter value not accepted";
  default: return "unknown status";
  }
}

}  // namespace CLProtocol

// The exported serial interface of the PC's serial library (clsertav.so): the PC's own serial ports, and
// pseudo-terminals named in TALVIR_SERIAL_PORTS, as ports "COM_Port#<device path>".
#include <CLProtocol/CLModuleExport.h>
#include <CLProtocol/CLSerialApi.h>

#include "PcSerialPorts.h"

#include <cstring>
#include <string>

#define CL_EXPORT CL_MODULE_EXPORT

using namespace CLProtocol;
using GenICam::Platform::ESerialResult;

namespace {

constexpr const char* kManufacturer = "COM_Port";
constexpr uint32_t kAllRates = CL_BAUDRATE_9600 | CL_BAUDRATE_19200 | CL_BAUDRATE_38400 | CL_BAUDRATE_57600 |
                               CL_BAUDRATE_115200 | CL_BAUDRATE_230400 | CL_BAUDRATE_460800 | CL_BAUDRATE_921600;

int32_t CopyText(const std::string& text, char* buffer, uint32_t* size) {
  if (size == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  const uint32_t needed = static_cast<uint32_t>(text.size() + 1);
  if (buffer == nullptr || *size < needed) {
    *size = needed;
    return CL_ERR_BUFFER_TOO_SMALL;
  }
  std::memcpy(buffer, text.c_str(), needed);
  *size = needed;
  return CL_ERR_NO_ERR;
}

CPcSerialPorts::SOpenPort* PortOf(void* reference) {
  auto* port = static_cast<CPcSerialPorts::SOpenPort*>(reference);
  return CPcSerialPorts::Instance().IsOpen(port) ? port : nullptr;
}

int32_t StatusOf(ESerialResult result) {
  switch (result) {
  case ESerialResult::Ok: return CL_ERR_NO_ERR;
  case ESerialResult::Timeout: return CL_ERR_TIMEOUT;
  case ESerialResult::Gone: return CL_ERR_ERROR_NOT_FOUND;
  case ESerialResult::Failed: return CL_ERR_INVALID_REFERENCE;
  }
  return CL_ERR_INVALID_REFERENCE;
}

}  // namespace

CL_EXPORT int32_t clGetNumSerialPorts(uint32_t* count) {
  if (count == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  *count = CPcSerialPorts::Instance().Refresh();
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clGetSerialPortIdentifier(uint32_t index, char* identifier, uint32_t* size) {
  std::string path;
  if (!CPcSerialPorts::Instance().PathOf(index, path)) {
    return CL_ERR_INVALID_INDEX;
  }
  return CopyText(path, identifier, size);
}

CL_EXPORT int32_t clGetManufacturerInfo(char* name, uint32_t* size, uint32_t* version) {
  if (version != nullptr) {
    *version = 0x00020000;  // serial interface revision 2.0
  }
  return CopyText(kManufacturer, name, size);
}

CL_EXPORT int32_t clSerialInit(uint32_t index, void** reference) {
  if (reference == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  CPcSerialPorts::SOpenPort* port = nullptr;
  std::string error;
  const int32_t status = CPcSerialPorts::Instance().Open(index, port, error);
  if (status == CL_ERR_NO_ERR) {
    *reference = port;
  }
  return status;
}

CL_EXPORT int32_t clSerialRead(void* reference, char* buffer, uint32_t* size, uint32_t timeoutMs) {
  CPcSerialPorts::SOpenPort* port = PortOf(reference);
  if (port == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (size == nullptr || (buffer == nullptr && *size > 0)) {
    return CL_ERR_INVALID_PTR;
  }
  const std::lock_guard<std::mutex> guard(port->lock);
  const int32_t status = StatusOf(port->device.Read(buffer, *size, timeoutMs));
  if (status != CL_ERR_NO_ERR) {
    *size = 0;
  }
  return status;
}

CL_EXPORT int32_t clSerialWrite(void* reference, char* buffer, uint32_t* size, uint32_t timeoutMs) {
  CPcSerialPorts::SOpenPort* port = PortOf(reference);
  if (port == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (size == nullptr || (buffer == nullptr && *size > 0)) {
    return CL_ERR_INVALID_PTR;
  }
  const std::lock_guard<std::mutex> guard(port->lock);
  return StatusOf(port->device.Write(buffer, *size, timeoutMs));
}

CL_EXPORT int32_t clGetNumBytesAvail(void* reference, uint32_t* count) {
  CPcSerialPorts::SOpenPort* port = PortOf(reference);
  if (port == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (count == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  const std::lock_guard<std::mutex> guard(port->lock);
  *count = static_cast<uint32_t>(port->device.BytesAvailable());
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clFlushPort(void* reference) {
  CPcSerialPorts::SOpenPort* port = PortOf(reference);
  if (port == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  const std::lock_guard<std::mutex> guard(port->lock);
  port->device.Flush();
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clGetSupportedBaudRates(void* reference, uint32_t* rates) {
  if (PortOf(reference) == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (rates == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  *rates = kAllRates;
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clSetBaudRate(void* reference, uint32_t rate) {
  CPcSerialPorts::SOpenPort* port = PortOf(reference);
  if (port == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  const uint32_t baud = BaudRateOfBit(rate);
  const std::lock_guard<std::mutex> guard(port->lock);
  if (baud == 0 || !port->device.SetBaudRate(baud)) {
    return CL_ERR_BAUD_RATE_NOT_SUPPORTED;
  }
  return CL_ERR_NO_ERR;
}

CL_EXPORT void clSerialClose(void* reference) {
  if (CPcSerialPorts::SOpenPort* port = PortOf(reference)) {
    CPcSerialPorts::Instance().Close(port);
  }
}

CL_EXPORT int32_t clGetErrorText(int32_t status, char* text, uint32_t* size) {
  return CopyText(StatusText(status), text, size);
}

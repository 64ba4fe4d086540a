#include "Connection.h"

#include <GCBase/GCException.h>

#include <string>

namespace CLProtocol {

CConnection::CConnection(std::shared_ptr<CSerialLibrary> library, uint32_t index, const std::string& portId)
    : m_library(std::move(library)), m_portId(portId) {
  const int32_t status = m_library->SerialInit(index, &m_reference);
  if (status != CL_ERR_NO_ERR) {
    throw RUNTIME_EXCEPTION("Cannot open serial port %s: %s (%d)", portId.c_str(), m_library->ErrorText(status).c_str(),
                            static_cast<int>(status));
  }
  m_serial.context = this;
  m_serial.read = &ReadThunk;
  m_serial.write = &WriteThunk;
  m_serial.flush = &FlushThunk;
  m_serial.getSupportedBaudRates = &SupportedRatesThunk;
  m_serial.setBaudRate = &SetRateThunk;
}

CConnection::~CConnection() {
  if (m_driver && m_cookie != nullptr) {
    // Leave the camera at the rate every link starts with, so that the next probe finds it.
    uint32_t rate = CL_BAUDRATE_9600;
    if (m_driver->GetParam(&m_serial, m_cookie, CLP_PARAM_BAUDRATE, rate) == CL_ERR_NO_ERR &&
        rate != CL_BAUDRATE_9600) {
      m_driver->SetParam(&m_serial, m_cookie, CLP_PARAM_BAUDRATE, CL_BAUDRATE_9600);
    }
    m_driver->Disconnect(m_cookie);
  }
  m_library->SerialClose(m_reference);
}

void CConnection::Attach(std::shared_ptr<CProtocolDriver> driver, CLPCookie cookie) {
  m_driver = std::move(driver);
  m_cookie = cookie;
}

int32_t CConnection::ReadThunk(void* context, char* buffer, uint32_t* size, uint32_t timeoutMs) {
  auto* self = static_cast<CConnection*>(context);
  return self->m_library->SerialRead(self->m_reference, buffer, size, timeoutMs);
}

int32_t CConnection::WriteThunk(void* context, const char* buffer, uint32_t* size, uint32_t timeoutMs) {
  auto* self = static_cast<CConnection*>(context);
  // The serial interface takes a mutable buffer but only reads it.
  return self->m_library->SerialWrite(self->m_reference, const_cast<char*>(buffer), size, timeoutMs);
}

int32_t CConnection::FlushThunk(void* context) {
  auto* self = static_cast<CConnection*>(context);
  return self->m_library->FlushPort(self->m_reference);
}

int32_t CConnection::SupportedRatesThunk(void* context, uint32_t* rates) {
  auto* self = static_cast<CConnection*>(context);
  const int32_t status = self->m_library->GetSupportedBaudRates(self->m_reference, rates);
  if (status == CL_ERR_FUNCTION_NOT_FOUND) {
    // A library without the function runs at the rate every link starts with.
    *rates = CL_BAUDRATE_9600;
    return CL_ERR_NO_ERR;
  }
  return status;
}

int32_t CConnection::SetRateThunk(void* context, uint32_t rate) {
  auto* self = static_cast<CConnection*>(context);
  return self->m_library->SetBaudRate(self->m_reference, rate);
}

}  // namespace CLProtocol

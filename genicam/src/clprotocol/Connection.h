#pragma once
// One open serial port, lent to a driver as a CLPSerial, and the driver connection made over it.
#include <cstdint>
#include <memory>
#include <string>

#include <CLProtocol/CLProtocolDriverApi.h>

#include "ProtocolDriver.h"
#include "SerialLibrary.h"

namespace CLProtocol {

class CConnection {
public:
  // Opens the port; raises a GenICam exception naming the port and the status when it cannot.
  CConnection(std::shared_ptr<CSerialLibrary> library, uint32_t index, const std::string& portId);
  // Switches the link back to 9600 baud, ends the driver connection (when there is one) and closes the port.
  ~CConnection();
  CConnection(const CConnection&) = delete;
  CConnection& operator=(const CConnection&) = delete;

  const CLPSerial* Serial() const { return &m_serial; }
  const std::string& PortId() const { return m_portId; }
  void Attach(std::shared_ptr<CProtocolDriver> driver, CLPCookie cookie);
  CProtocolDriver* Driver() const { return m_driver.get(); }
  CLPCookie Cookie() const { return m_cookie; }

private:
  static int32_t ReadThunk(void* context, char* buffer, uint32_t* size, uint32_t timeoutMs);
  static int32_t WriteThunk(void* context, const char* buffer, uint32_t* size, uint32_t timeoutMs);
  static int32_t FlushThunk(void* context);
  static int32_t SupportedRatesThunk(void* context, uint32_t* rates);
  static int32_t SetRateThunk(void* context, uint32_t rate);

  std::shared_ptr<CSerialLibrary> m_library;
  CLSerialRef m_reference = nullptr;
  std::string m_portId;
  CLPSerial m_serial{};
  std::shared_ptr<CProtocolDriver> m_driver;
  CLPCookie m_cookie = nullptr;
};

}  // namespace CLProtocol

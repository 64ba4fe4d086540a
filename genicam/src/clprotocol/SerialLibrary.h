#pragma once
// One loaded Camera Link serial library. Every function is resolved on its own: a library written to an older
// revision may lack the newer ones, and a call to a missing one gives CL_ERR_FUNCTION_NOT_FOUND.
#include <cstdint>
#include <string>
#include <vector>

#include <CLProtocol/CLSerialApi.h>

#include "platform/DynamicModule.h"

namespace CLProtocol {

class CSerialLibrary {
public:
  // Loads the library; IsUsable() tells whether it is one (it must at least list and open ports).
  explicit CSerialLibrary(const std::string& path);
  CSerialLibrary(const CSerialLibrary&) = delete;
  CSerialLibrary& operator=(const CSerialLibrary&) = delete;

  bool IsUsable() const;
  const std::string& Path() const { return m_path; }
  // The manufacturer name the library reports (the first part of its port IDs); empty when it cannot tell.
  std::string Manufacturer() const;
  // The identifiers of its ports now, in index order.
  std::vector<std::string> PortNames() const;

  int32_t SerialInit(uint32_t index, CLSerialRef* reference) const;
  int32_t SerialRead(CLSerialRef reference, char* buffer, uint32_t* size, uint32_t timeoutMs) const;
  int32_t SerialWrite(CLSerialRef reference, char* buffer, uint32_t* size, uint32_t timeoutMs) const;
  int32_t GetNumBytesAvail(CLSerialRef reference, uint32_t* count) const;
  int32_t FlushPort(CLSerialRef reference) const;
  int32_t GetSupportedBaudRates(CLSerialRef reference, uint32_t* rates) const;
  int32_t SetBaudRate(CLSerialRef reference, uint32_t rate) const;
  void SerialClose(CLSerialRef reference) const;
  // The library's text for a status, or the common one.
  std::string ErrorText(int32_t status) const;

private:
  std::string m_path;
  GenICam::Platform::CDynamicModule m_module;
  PFclGetNumSerialPorts m_getNumSerialPorts = nullptr;
  PFclGetSerialPortIdentifier m_getSerialPortIdentifier = nullptr;
  PFclGetManufacturerInfo m_getManufacturerInfo = nullptr;
  PFclSerialInit m_serialInit = nullptr;
  PFclSerialRead m_serialRead = nullptr;
  PFclSerialWrite m_serialWrite = nullptr;
  PFclGetNumBytesAvail m_getNumBytesAvail = nullptr;
  PFclFlushPort m_flushPort = nullptr;
  PFclGetSupportedBaudRates m_getSupportedBaudRates = nullptr;
  PFclSetBaudRate m_setBaudRate = nullptr;
  PFclSerialClose m_serialClose = nullptr;
  PFclGetErrorText m_getErrorText = nullptr;
};

}  // namespace CLProtocol

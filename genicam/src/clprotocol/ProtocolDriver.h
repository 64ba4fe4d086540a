#pragma once
// One loaded CLProtocol driver with its functions, each resolved on its own.
#include <string>
#include <vector>

#include <CLProtocol/CLProtocolDriverApi.h>

#include "platform/DynamicModule.h"

namespace CLProtocol {

class CProtocolDriver {
public:
  // Loads the driver and initialises it; IsUsable() tells whether it is one.
  CProtocolDriver(const std::string& directory, const std::string& fileName);
  ~CProtocolDriver();
  CProtocolDriver(const CProtocolDriver&) = delete;
  CProtocolDriver& operator=(const CProtocolDriver&) = delete;

  bool IsUsable() const;
  const std::string& Directory() const { return m_directory; }
  const std::string& FileName() const { return m_fileName; }
  // The driver's short templates (its tab-separated list).
  std::vector<std::string> ShortTemplates() const;
  // The driver's text for a status of a connection (or a generic one), never empty.
  std::string ErrorText(CLPCookie cookie, int32_t status) const;

  int32_t ProbeDevice(const CLPSerial* serial, const std::string& deviceId, std::string& answer, CLPCookie* cookie,
                      uint32_t timeoutMs) const;
  int32_t GetXMLIDs(const CLPSerial* serial, CLPCookie cookie, std::vector<std::string>& ids) const;
  int32_t GetXMLDescription(const CLPSerial* serial, CLPCookie cookie, const std::string& id, std::string& bytes) const;
  int32_t ReadRegister(const CLPSerial* serial, CLPCookie cookie, int64_t address, char* buffer, int64_t length,
                       uint32_t timeoutMs) const;
  int32_t WriteRegister(const CLPSerial* serial, CLPCookie cookie, int64_t address, const char* buffer, int64_t length,
                        uint32_t timeoutMs) const;
  int32_t ContinueWriteRegister(const CLPSerial* serial, CLPCookie cookie, bool keepWaiting, uint32_t timeoutMs) const;
  int32_t Disconnect(CLPCookie cookie) const;
  int32_t GetParam(const CLPSerial* serial, CLPCookie cookie, uint32_t param, uint32_t& value) const;
  int32_t SetParam(const CLPSerial* serial, CLPCookie cookie, uint32_t param, uint32_t value) const;

private:
  std::string m_directory;
  std::string m_fileName;
  GenICam::Platform::CDynamicModule m_module;
  bool m_initialised = false;
  PFclpInitLib m_initLib = nullptr;
  PFclpCloseLib m_closeLib = nullptr;
  PFclpGetShortDeviceIDTemplates m_getShortDeviceIDTemplates = nullptr;
  PFclpProbeDevice m_probeDevice = nullptr;
  PFclpGetXMLIDs m_getXMLIDs = nullptr;
  PFclpGetXMLDescription m_getXMLDescription = nullptr;
  PFclpReadRegister m_readRegister = nullptr;
  PFclpWriteRegister m_writeRegister = nullptr;
  PFclpContinueWriteRegister m_continueWriteRegister = nullptr;
  PFclpGetErrorText m_getErrorText = nullptr;
  PFclpDisconnect m_disconnect = nullptr;
  PFclpGetParam m_getParam = nullptr;
  PFclpSetParam m_setParam = nullptr;
};

}  // namespace CLProtocol

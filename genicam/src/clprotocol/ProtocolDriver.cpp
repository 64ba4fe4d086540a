#include "ProtocolDriver.h"

#include "DeviceId.h"

#include "platform/SelfPath.h"

#include <cstring>

namespace CLProtocol {

CProtocolDriver::CProtocolDriver(const std::string& directory, const std::string& fileName)
    : m_directory(directory), m_fileName(fileName), m_module(directory + GenICam::Platform::kPathSeparator + fileName) {
  m_initLib = m_module.Symbol<PFclpInitLib>("clpInitLib");
  m_closeLib = m_module.Symbol<PFclpCloseLib>("clpCloseLib");
  m_getShortDeviceIDTemplates = m_module.Symbol<PFclpGetShortDeviceIDTemplates>("clpGetShortDeviceIDTemplates");
  m_probeDevice = m_module.Symbol<PFclpProbeDevice>("clpProbeDevice");
  m_getXMLIDs = m_module.Symbol<PFclpGetXMLIDs>("clpGetXMLIDs");
  m_getXMLDescription = m_module.Symbol<PFclpGetXMLDescription>("clpGetXMLDescription");
  m_readRegister = m_module.Symbol<PFclpReadRegister>("clpReadRegister");
  m_writeRegister = m_module.Symbol<PFclpWriteRegister>("clpWriteRegister");
  m_continueWriteRegister = m_module.Symbol<PFclpContinueWriteRegister>("clpContinueWriteRegister");
  m_getErrorText = m_module.Symbol<PFclpGetErrorText>("clpGetErrorText");
  m_disconnect = m_module.Symbol<PFclpDisconnect>("clpDisconnect");
  m_getParam = m_module.Symbol<PFclpGetParam>("clpGetParam");
  m_setParam = m_module.Symbol<PFclpSetParam>("clpSetParam");
  if (IsUsable() && m_initLib != nullptr) {
    m_initialised = m_initLib() == CL_ERR_NO_ERR;
  } else {
    m_initialised = IsUsable();
  }
}

CProtocolDriver::~CProtocolDriver() {
  if (m_initialised && m_closeLib != nullptr) {
    m_closeLib();
  }
}

bool CProtocolDriver::IsUsable() const {
  return m_module.IsLoaded() && m_getShortDeviceIDTemplates != nullptr && m_probeDevice != nullptr &&
         m_readRegister != nullptr && m_writeRegister != nullptr;
}

std::vector<std::string> CProtocolDriver::ShortTemplates() const {
  std::vector<std::string> templates;
  if (m_getShortDeviceIDTemplates == nullptr) {
    return templates;
  }
  uint32_t size = 0;
  m_getShortDeviceIDTemplates(nullptr, &size);
  if (size == 0 || size > (1u << 20)) {
    return templates;
  }
  std::string text(size, '\0');
  if (m_getShortDeviceIDTemplates(&text[0], &size) != CL_ERR_NO_ERR) {
    return templates;
  }
  text.resize(std::strlen(text.c_str()));
  for (const std::string& entry : SplitTokens(text, '\t')) {
    if (!entry.empty()) {
      templates.push_back(entry);
    }
  }
  return templates;
}

std::string CProtocolDriver::ErrorText(CLPCookie cookie, int32_t status) const {
  if (m_getErrorText != nullptr) {
    char text[1024] = {};
    uint32_t size = sizeof text;
    if (m_getErrorText(cookie, status, text, &size) == CL_ERR_NO_ERR) {
      text[sizeof text - 1] = '\0';
      if (text[0] != '\0') {
        return text;
      }
    }
  }
  return StatusText(status);
}

int32_t CProtocolDriver::ProbeDevice(const CLPSerial* serial, const std::string& deviceId, std::string& answer,
                                     CLPCookie* cookie, uint32_t timeoutMs) const {
  char text[2048] = {};
  uint32_t size = sizeof text;
  const int32_t status = m_probeDevice(serial, deviceId.c_str(), text, &size, cookie, timeoutMs);
  text[sizeof text - 1] = '\0';
  answer = status == CL_ERR_NO_ERR ? text : "";
  return status;
}

int32_t CProtocolDriver::GetXMLIDs(const CLPSerial* serial, CLPCookie cookie, std::vector<std::string>& ids) const {
  if (m_getXMLIDs == nullptr) {
    return CL_ERR_FUNCTION_NOT_FOUND;
  }
  char text[4096] = {};
  uint32_t size = sizeof text;
  const int32_t status = m_getXMLIDs(serial, cookie, text, &size);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  text[sizeof text - 1] = '\0';
  for (const std::string& entry : SplitTokens(text, '\t')) {
    if (!entry.empty()) {
      ids.push_back(entry);
    }
  }
  return CL_ERR_NO_ERR;
}

int32_t CProtocolDriver::GetXMLDescription(const CLPSerial* serial, CLPCookie cookie, const std::string& id,
                                           std::string& bytes) const {
  if (m_getXMLDescription == nullptr) {
    return CL_ERR_FUNCTION_NOT_FOUND;
  }
  uint32_t size = 0;
  int32_t status = m_getXMLDescription(serial, cookie, id.c_str(), nullptr, &size);
  if (status != CL_ERR_NO_ERR && status != CL_ERR_BUFFER_TOO_SMALL) {
    return status;
  }
  if (status == CL_ERR_NO_ERR && size == 0) {
    bytes.clear();  // an empty file
    return CL_ERR_NO_ERR;
  }
  bytes.assign(size, '\0');
  status = m_getXMLDescription(serial, cookie, id.c_str(), size > 0 ? &bytes[0] : nullptr, &size);
  if (status == CL_ERR_NO_ERR) {
    bytes.resize(size);
  }
  return status;
}

int32_t CProtocolDriver::ReadRegister(const CLPSerial* serial, CLPCookie cookie, int64_t address, char* buffer,
                                      int64_t length, uint32_t timeoutMs) const {
  return m_readRegister(serial, cookie, address, buffer, length, timeoutMs);
}

int32_t CProtocolDriver::WriteRegister(const CLPSerial* serial, CLPCookie cookie, int64_t address, const char* buffer,
                                       int64_t length, uint32_t timeoutMs) const {
  return m_writeRegister(serial, cookie, address, buffer, length, timeoutMs);
}

int32_t CProtocolDriver::ContinueWriteRegister(const CLPSerial* serial, CLPCookie cookie, bool keepWaiting,
                                               uint32_t timeoutMs) const {
  if (m_continueWriteRegister == nullptr) {
    return CL_ERR_FUNCTION_NOT_FOUND;
  }
  return m_continueWriteRegister(serial, cookie, keepWaiting ? 1 : 0, timeoutMs);
}

int32_t CProtocolDriver::Disconnect(CLPCookie cookie) const {
  return m_disconnect != nullptr ? m_disconnect(cookie) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CProtocolDriver::GetParam(const CLPSerial* serial, CLPCookie cookie, uint32_t param, uint32_t& value) const {
  if (m_getParam == nullptr) {
    return CL_ERR_FUNCTION_NOT_FOUND;
  }
  uint32_t size = sizeof value;
  return m_getParam(serial, cookie, param, reinterpret_cast<char*>(&value), &size);
}

int32_t CProtocolDriver::SetParam(const CLPSerial* serial, CLPCookie cookie, uint32_t param, uint32_t value) const {
  if (m_setParam == nullptr) {
    return CL_ERR_FUNCTION_NOT_FOUND;
  }
  return m_setParam(serial, cookie, param, reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace CLProtocol

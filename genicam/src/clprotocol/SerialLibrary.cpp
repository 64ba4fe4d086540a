#include "SerialLibrary.h"

namespace CLProtocol {

CSerialLibrary::CSerialLibrary(const std::string& path) : m_path(path), m_module(path) {
  m_getNumSerialPorts = m_module.Symbol<PFclGetNumSerialPorts>("clGetNumSerialPorts");
  m_getSerialPortIdentifier = m_module.Symbol<PFclGetSerialPortIdentifier>("clGetSerialPortIdentifier");
  m_getManufacturerInfo = m_module.Symbol<PFclGetManufacturerInfo>("clGetManufacturerInfo");
  m_serialInit = m_module.Symbol<PFclSerialInit>("clSerialInit");
  m_serialRead = m_module.Symbol<PFclSerialRead>("clSerialRead");
  m_serialWrite = m_module.Symbol<PFclSerialWrite>("clSerialWrite");
  m_getNumBytesAvail = m_module.Symbol<PFclGetNumBytesAvail>("clGetNumBytesAvail");
  m_flushPort = m_module.Symbol<PFclFlushPort>("clFlushPort");
  m_getSupportedBaudRates = m_module.Symbol<PFclGetSupportedBaudRates>("clGetSupportedBaudRates");
  m_setBaudRate = m_module.Symbol<PFclSetBaudRate>("clSetBaudRate");
  m_serialClose = m_module.Symbol<PFclSerialClose>("clSerialClose");
  m_getErrorText = m_module.Symbol<PFclGetErrorText>("clGetErrorText");
}

bool CSerialLibrary::IsUsable() const {
  return m_module.IsLoaded() && m_getNumSerialPorts != nullptr && m_serialInit != nullptr && m_serialRead != nullptr &&
         m_serialWrite != nullptr && m_serialClose != nullptr;
}

std::string CSerialLibrary::Manufacturer() const {
  if (m_getManufacturerInfo == nullptr) {
    return {};
  }
  char name[256] = {};
  uint32_t size = sizeof name;
  uint32_t version = 0;
  if (m_getManufacturerInfo(name, &size, &version) != CL_ERR_NO_ERR) {
    return {};
  }
  name[sizeof name - 1] = '\0';
  return name;
}

std::vector<std::string> CSerialLibrary::PortNames() const {
  std::vector<std::string> names;
  uint32_t count = 0;
  if (m_getNumSerialPorts == nullptr || m_getNumSerialPorts(&count) != CL_ERR_NO_ERR) {
    return names;
  }
  for (uint32_t index = 0; index < count; ++index) {
    std::string name;
    if (m_getSerialPortIdentifier != nullptr) {
      char text[512] = {};
      uint32_t size = sizeof text;
      if (m_getSerialPortIdentifier(index, text, &size) == CL_ERR_NO_ERR) {
        text[sizeof text - 1] = '\0';
        name = text;
      }
    }
    if (name.empty()) {
      // A library without identifiers still has its ports, named by index.
      name = "Port" + std::to_string(index);
    }
    names.push_back(name);
  }
  return names;
}

int32_t CSerialLibrary::SerialInit(uint32_t index, CLSerialRef* reference) const {
  return m_serialInit != nullptr ? m_serialInit(index, reference) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CSerialLibrary::SerialRead(CLSerialRef reference, char* buffer, uint32_t* size, uint32_t timeoutMs) const {
  return m_serialRead != nullptr ? m_serialRead(reference, buffer, size, timeoutMs) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CSerialLibrary::SerialWrite(CLSerialRef reference, char* buffer, uint32_t* size, uint32_t timeoutMs) const {
  return m_serialWrite != nullptr ? m_serialWrite(reference, buffer, size, timeoutMs) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CSerialLibrary::GetNumBytesAvail(CLSerialRef reference, uint32_t* count) const {
  return m_getNumBytesAvail != nullptr ? m_getNumBytesAvail(reference, count) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CSerialLibrary::FlushPort(CLSerialRef reference) const {
  return m_flushPort != nullptr ? m_flushPort(reference) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CSerialLibrary::GetSupportedBaudRates(CLSerialRef reference, uint32_t* rates) const {
  return m_getSupportedBaudRates != nullptr ? m_getSupportedBaudRates(reference, rates) : CL_ERR_FUNCTION_NOT_FOUND;
}

int32_t CSerialLibrary::SetBaudRate(CLSerialRef reference, uint32_t rate) const {
  return m_setBaudRate != nullptr ? m_setBaudRate(reference, rate) : CL_ERR_FUNCTION_NOT_FOUND;
}

void CSerialLibrary::SerialClose(CLSerialRef reference) const {
  if (m_serialClose != nullptr) {
    m_serialClose(reference);
  }
}

std::string CSerialLibrary::ErrorText(int32_t status) const {
  if (m_getErrorText != nullptr) {
    char text[512] = {};
    uint32_t size = sizeof text;
    if (m_getErrorText(status, text, &size) == CL_ERR_NO_ERR) {
      text[sizeof text - 1] = '\0';
      return text;
    }
  }
  return StatusText(status);
}

}  // namespace CLProtocol

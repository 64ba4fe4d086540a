// The exported functions of the GenCP-over-serial protocol driver (libTavCLProtocolGenCP.so).
#include <CLProtocol/CLModuleExport.h>
#include <CLProtocol/CLProtocolDriverApi.h>

#include "GenCPSession.h"
#include "platform/SelfPath.h"

#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#define CLP_EXPORT CL_MODULE_EXPORT

using namespace CLProtocol;
using CLProtocol::GenCP::CGenCPSession;

namespace {

std::mutex g_sessionsLock;
std::map<CLPCookie, std::unique_ptr<CGenCPSession>> g_sessions;
// The reason of the last failed probe, for clpGetErrorText with a null cookie. Process-wide rather than per thread:
// thread-local data in a module loaded at run time is dynamic TLS, which the sanitizers' leak scan mishandles.
std::mutex g_probeErrorLock;
std::string g_lastProbeError;

void SetLastProbeError(const std::string& text) {
  const std::lock_guard<std::mutex> guard(g_probeErrorLock);
  g_lastProbeError = text;
}

std::string LastProbeError() {
  const std::lock_guard<std::mutex> guard(g_probeErrorLock);
  return g_lastProbeError;
}

CGenCPSession* SessionOf(CLPCookie cookie) {
  const std::lock_guard<std::mutex> guard(g_sessionsLock);
  const auto found = g_sessions.find(cookie);
  return found != g_sessions.end() ? found->second.get() : nullptr;
}

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

bool SerialUsable(const CLPSerial* serial) {
  return serial != nullptr && serial->read != nullptr && serial->write != nullptr && serial->flush != nullptr &&
         serial->getSupportedBaudRates != nullptr && serial->setBaudRate != nullptr;
}

}  // namespace

CLP_EXPORT int32_t clpInitLib() { return CL_ERR_NO_ERR; }

CLP_EXPORT int32_t clpCloseLib() {
  const std::lock_guard<std::mutex> guard(g_sessionsLock);
  g_sessions.clear();
  return CL_ERR_NO_ERR;
}

CLP_EXPORT int32_t clpGetShortDeviceIDTemplates(char* templates, uint32_t* size) {
  return CopyText(GenCP::kShortTemplate, templates, size);
}

CLP_EXPORT int32_t clpGetCLProtocolVersion(uint32_t* major, uint32_t* minor) {
  if (major == nullptr || minor == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  *major = 1;
  *minor = 1;
  return CL_ERR_NO_ERR;
}

CLP_EXPORT int32_t clpProbeDevice(const CLPSerial* serial, const char* deviceId, char* answer, uint32_t* size,
                                  CLPCookie* cookie, uint32_t timeoutMs) {
  if (!SerialUsable(serial) || deviceId == nullptr || size == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  auto session = std::make_unique<CGenCPSession>();
  std::string text;
  const int32_t status = session->Probe(*serial, deviceId, GenICam::Platform::OwnModulePath(), timeoutMs, text);
  if (status != CL_ERR_NO_ERR) {
    SetLastProbeError(session->LastError());
    return status;
  }
  SetLastProbeError(std::string());
  const int32_t copied = CopyText(text, answer, size);
  if (copied != CL_ERR_NO_ERR) {
    return copied;
  }
  if (cookie != nullptr) {
    CLPCookie handle = session.get();
    const std::lock_guard<std::mutex> guard(g_sessionsLock);
    g_sessions.emplace(handle, std::move(session));
    *cookie = handle;
  }
  return CL_ERR_NO_ERR;
}

CLP_EXPORT int32_t clpDisconnect(CLPCookie cookie) {
  const std::lock_guard<std::mutex> guard(g_sessionsLock);
  return g_sessions.erase(cookie) == 1 ? CL_ERR_NO_ERR : CL_ERR_INVALID_COOKIE;
}

CLP_EXPORT int32_t clpGetErrorText(CLPCookie cookie, int32_t status, char* text, uint32_t* size) {
  std::string detail;
  if (cookie == nullptr) {
    detail = LastProbeError();
  } else if (CGenCPSession* session = SessionOf(cookie)) {
    detail = session->LastError();
  }
  std::string message = StatusText(status);
  if (!detail.empty() && status != CL_ERR_NO_ERR) {
    message += ": " + detail;
  }
  return CopyText(message, text, size);
}

CLP_EXPORT int32_t clpGetXMLIDs(const CLPSerial* serial, CLPCookie cookie, char* ids, uint32_t* size) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial)) {
    return CL_ERR_INVALID_PTR;
  }
  std::string text;
  const int32_t status = session->XmlIds(*serial, text);
  return status != CL_ERR_NO_ERR ? status : CopyText(text, ids, size);
}

CLP_EXPORT int32_t clpGetXMLDescription(const CLPSerial* serial, CLPCookie cookie, const char* xmlId, char* buffer,
                                        uint32_t* size) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial) || xmlId == nullptr || size == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  std::string bytes;
  const int32_t status = session->XmlDescription(*serial, xmlId, bytes);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  const uint32_t needed = static_cast<uint32_t>(bytes.size());
  if ((buffer == nullptr && needed > 0) || *size < needed) {
    *size = needed;
    return CL_ERR_BUFFER_TOO_SMALL;
  }
  if (needed > 0) {
    std::memcpy(buffer, bytes.data(), bytes.size());
  }
  *size = needed;
  return CL_ERR_NO_ERR;
}

CLP_EXPORT int32_t clpReadRegister(const CLPSerial* serial, CLPCookie cookie, int64_t address, char* buffer,
                                   int64_t length, uint32_t timeoutMs) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial) || (buffer == nullptr && length > 0)) {
    return CL_ERR_INVALID_PTR;
  }
  return session->ReadRegister(*serial, address, buffer, length, timeoutMs);
}

CLP_EXPORT int32_t clpWriteRegister(const CLPSerial* serial, CLPCookie cookie, int64_t address, const char* buffer,
                                    int64_t length, uint32_t timeoutMs) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial) || (buffer == nullptr && length > 0)) {
    return CL_ERR_INVALID_PTR;
  }
  return session->WriteRegister(*serial, address, buffer, length, timeoutMs);
}

CLP_EXPORT int32_t clpContinueWriteRegister(const CLPSerial* serial, CLPCookie cookie, int32_t keepWaiting,
                                            uint32_t timeoutMs) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial)) {
    return CL_ERR_INVALID_PTR;
  }
  return session->ContinueWrite(*serial, keepWaiting != 0, timeoutMs);
}

CLP_EXPORT int32_t clpIsParamSupported(uint32_t param) {
  switch (param) {
  case CLP_PARAM_BAUDRATE:
  case CLP_PARAM_DEFAULT_TIMEOUT:
  case CLP_PARAM_MAX_BAUDRATES: return CL_ERR_NO_ERR;
  default: return CL_ERR_PARAM_NOT_SUPPORTED;
  }
}

CLP_EXPORT int32_t clpGetParam(const CLPSerial* serial, CLPCookie cookie, uint32_t param, char* buffer,
                               uint32_t* size) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial) || buffer == nullptr || size == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  if (*size < sizeof(uint32_t)) {
    *size = sizeof(uint32_t);
    return CL_ERR_PARAM_DATA_SIZE;
  }
  uint32_t value = 0;
  switch (param) {
  case CLP_PARAM_BAUDRATE: value = session->CurrentBaudRate(); break;
  case CLP_PARAM_DEFAULT_TIMEOUT: value = session->DefaultTimeoutMs(); break;
  case CLP_PARAM_MAX_BAUDRATES: {
    const int32_t status = session->SharedBaudRates(*serial, value);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    break;
  }
  default: return CL_ERR_PARAM_NOT_SUPPORTED;
  }
  std::memcpy(buffer, &value, sizeof value);
  *size = sizeof value;
  return CL_ERR_NO_ERR;
}

CLP_EXPORT int32_t clpSetParam(const CLPSerial* serial, CLPCookie cookie, uint32_t param, const char* buffer,
                               uint32_t size) {
  CGenCPSession* session = SessionOf(cookie);
  if (session == nullptr) {
    return CL_ERR_INVALID_COOKIE;
  }
  if (!SerialUsable(serial) || buffer == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  if (size != sizeof(uint32_t)) {
    return CL_ERR_PARAM_DATA_SIZE;
  }
  uint32_t value = 0;
  std::memcpy(&value, buffer, sizeof value);
  switch (param) {
  case CLP_PARAM_BAUDRATE: return session->SwitchBaudRate(*serial, value);
  case CLP_PARAM_DEFAULT_TIMEOUT:
    if (value == 0) {
      return CL_ERR_PARAM_DATA_VALUE;
    }
    session->SetDefaultTimeoutMs(value);
    return CL_ERR_NO_ERR;
  case CLP_PARAM_MAX_BAUDRATES: return CL_ERR_PARAM_READ_ONLY;
  default: return CL_ERR_PARAM_NOT_SUPPORTED;
  }
}

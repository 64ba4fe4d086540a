#include <CLProtocol/CLPort.h>

#include <GCBase/GCException.h>

#include <cstdio>

#include "Connection.h"
#include "DeviceId.h"
#include "ModuleRegistry.h"
#include "load/ZipReader.h"

namespace CLProtocol {
namespace {

// Pending writes are continued this many times before they are abandoned.
constexpr int kMaxPendingContinuations = 100;

std::shared_ptr<CProtocolDriver> DriverOf(const std::string& deviceId, std::string& shortId) {
  std::string directory;
  std::string driverFile;
  if (!SplitDeviceId(deviceId, directory, driverFile, shortId)) {
    throw INVALID_ARGUMENT_EXCEPTION("Invalid device ID '%s': expected <folder>#<driver file>#<manufacturer>...",
                                     deviceId.c_str());
  }
  std::shared_ptr<CProtocolDriver> driver = CModuleRegistry::Instance().Driver(directory, driverFile);
  if (!driver) {
    throw RUNTIME_EXCEPTION("No CLProtocol driver %s/%s: %s", directory.c_str(), driverFile.c_str(),
                            StatusText(CL_ERR_UNABLE_TO_LOAD_DLL));
  }
  return driver;
}

std::unique_ptr<CConnection> OpenPort(const std::string& portId) {
  std::shared_ptr<CSerialLibrary> library;
  uint32_t index = 0;
  if (!CModuleRegistry::Instance().FindPort(portId, library, index)) {
    throw INVALID_ARGUMENT_EXCEPTION("No serial port '%s' in any serial library", portId.c_str());
  }
  return std::make_unique<CConnection>(library, index, portId);
}

[[noreturn]] void RaiseFor(const CProtocolDriver& driver, CLPCookie cookie, int32_t status, const std::string& what) {
  const std::string text = driver.ErrorText(cookie, status);
  if (status == CL_ERR_TIMEOUT) {
    throw TIMEOUT_EXCEPTION("%s: %s (%d)", what.c_str(), text.c_str(), static_cast<int>(status));
  }
  throw RUNTIME_EXCEPTION("%s: %s (%d)", what.c_str(), text.c_str(), static_cast<int>(status));
}

}  // namespace

CCLPort::CCLPort() = default;

CCLPort::~CCLPort() = default;

void CCLPort::GetPortIDs(GenICam::gcstring_vector& portIds) {
  for (const std::string& id : CModuleRegistry::Instance().PortIds()) {
    portIds.push_back(id);
  }
}

void CCLPort::GetDeviceIDTemplates(GenICam::gcstring_vector& templates) {
  for (const auto& driver : CModuleRegistry::Instance().Drivers()) {
    for (const std::string& shortTemplate : driver->ShortTemplates()) {
      templates.push_back(driver->Directory() + "#" + driver->FileName() + "#" + shortTemplate);
    }
  }
}

GenICam::gcstring CCLPort::ProbeDevice(const GenICam::gcstring& portId, const GenICam::gcstring& deviceIdTemplate,
                                       unsigned timeoutMs) {
  std::string shortId;
  const std::shared_ptr<CProtocolDriver> driver = DriverOf(deviceIdTemplate, shortId);
  const std::unique_ptr<CConnection> connection = OpenPort(portId);
  std::string answer;
  const int32_t status = driver->ProbeDevice(connection->Serial(), shortId, answer, nullptr, timeoutMs);
  if (status != CL_ERR_NO_ERR) {
    RaiseFor(*driver, nullptr, status, "Probing " + portId + " with " + deviceIdTemplate);
  }
  return answer;
}

void CCLPort::Connect(const GenICam::gcstring& deviceId, const GenICam::gcstring& portId) {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (m_connection) {
    throw LOGICAL_ERROR_EXCEPTION("Already connected to %s", m_connection->PortId().c_str());
  }
  std::string shortId;
  std::shared_ptr<CProtocolDriver> driver = DriverOf(deviceId, shortId);
  std::unique_ptr<CConnection> connection = OpenPort(portId);
  std::string answer;
  CLPCookie cookie = nullptr;
  // Connecting waits longer than a discovery probe: the camera is known to be there.
  const int32_t status = driver->ProbeDevice(connection->Serial(), shortId, answer, &cookie, 2000);
  if (status != CL_ERR_NO_ERR || cookie == nullptr) {
    RaiseFor(*driver, nullptr, status != CL_ERR_NO_ERR ? status : CL_ERR_NO_DEVICE_FOUND,
             "Connecting " + deviceId + " on " + portId);
  }
  connection->Attach(driver, cookie);
  // The fastest rate both sides offer; a failed switch leaves the link at its previous rate.
  uint32_t shared = 0;
  if (driver->GetParam(connection->Serial(), cookie, CLP_PARAM_MAX_BAUDRATES, shared) == CL_ERR_NO_ERR) {
    uint32_t fastest = 0;
    for (uint32_t bit = CL_BAUDRATE_921600; bit > CL_BAUDRATE_9600; bit >>= 1) {
      if ((shared & bit) != 0) {
        fastest = bit;
        break;
      }
    }
    if (fastest != 0) {
      driver->SetParam(connection->Serial(), cookie, CLP_PARAM_BAUDRATE, fastest);
    }
  }
  m_connection = std::move(connection);
}

void CCLPort::Disconnect() {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_connection.reset();
}

bool CCLPort::IsConnected() const {
  const std::lock_guard<std::mutex> guard(m_lock);
  return m_connection != nullptr;
}

GenICam::gcstring CCLPort::GetXML(bool inflate) {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (!m_connection) {
    throw ACCESS_EXCEPTION("GetXML: the port is not connected");
  }
  const CProtocolDriver& driver = *m_connection->Driver();
  std::vector<std::string> ids;
  int32_t status = driver.GetXMLIDs(m_connection->Serial(), m_connection->Cookie(), ids);
  if (status == CL_ERR_NO_ERR && ids.empty()) {
    status = CL_ERR_NO_XMLDESCRIPTION_FOUND;
  }
  if (status != CL_ERR_NO_ERR) {
    RaiseFor(driver, m_connection->Cookie(), status, "Listing the description files");
  }
  std::string bytes;
  status = driver.GetXMLDescription(m_connection->Serial(), m_connection->Cookie(), ids.front(), bytes);
  if (status != CL_ERR_NO_ERR) {
    RaiseFor(driver, m_connection->Cookie(), status, "Reading the description file " + ids.front());
  }
  if (inflate && bytes.size() >= 4 && bytes.compare(0, 4, "PK\x03\x04") == 0) {
    return GenApi::Engine::ExtractFirstFile(bytes.data(), bytes.size());
  }
  return bytes;
}

uint32_t CCLPort::GetBaudRate() {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (!m_connection) {
    throw ACCESS_EXCEPTION("GetBaudRate: the port is not connected");
  }
  uint32_t rate = 0;
  const int32_t status = m_connection->Driver()->GetParam(m_connection->Serial(), m_connection->Cookie(),
                                                          CLP_PARAM_BAUDRATE, rate);
  if (status != CL_ERR_NO_ERR) {
    RaiseFor(*m_connection->Driver(), m_connection->Cookie(), status, "Reading the baud rate");
  }
  return rate;
}

uint32_t CCLPort::GetSupportedBaudRates() {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (!m_connection) {
    throw ACCESS_EXCEPTION("GetSupportedBaudRates: the port is not connected");
  }
  uint32_t rates = 0;
  const int32_t status = m_connection->Driver()->GetParam(m_connection->Serial(), m_connection->Cookie(),
                                                          CLP_PARAM_MAX_BAUDRATES, rates);
  if (status != CL_ERR_NO_ERR) {
    RaiseFor(*m_connection->Driver(), m_connection->Cookie(), status, "Reading the supported baud rates");
  }
  return rates;
}

void CCLPort::SetBaudRate(uint32_t rateBit) {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (!m_connection) {
    throw ACCESS_EXCEPTION("SetBaudRate: the port is not connected");
  }
  const int32_t status = m_connection->Driver()->SetParam(m_connection->Serial(), m_connection->Cookie(),
                                                          CLP_PARAM_BAUDRATE, rateBit);
  if (status != CL_ERR_NO_ERR) {
    RaiseFor(*m_connection->Driver(), m_connection->Cookie(), status,
             "Switching to baud-rate bit " + std::to_string(rateBit));
  }
}

void CCLPort::SetRegisterTimeout(uint32_t timeoutMs) {
  const std::lock_guard<std::mutex> guard(m_lock);
  m_registerTimeoutMs = timeoutMs;
}

GenApi::EAccessMode CCLPort::GetAccessMode() const {
  const std::lock_guard<std::mutex> guard(m_lock);
  return m_connection ? GenApi::RW : GenApi::NA;
}

void CCLPort::Read(void* pBuffer, int64_t Address, int64_t Length) {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (!m_connection) {
    throw ACCESS_EXCEPTION("Read address %#llx: the port is not connected", static_cast<unsigned long long>(Address));
  }
  if (Length < 0 || (Length > 0 && pBuffer == nullptr)) {
    throw INVALID_ARGUMENT_EXCEPTION("Read address %#llx: invalid buffer or length %lld",
                                     static_cast<unsigned long long>(Address), static_cast<long long>(Length));
  }
  const int32_t status = m_connection->Driver()->ReadRegister(m_connection->Serial(), m_connection->Cookie(), Address,
                                                              static_cast<char*>(pBuffer), Length, m_registerTimeoutMs);
  if (status != CL_ERR_NO_ERR) {
    char what[96];
    std::snprintf(what, sizeof what, "Read address %#llx (%lld bytes)", static_cast<unsigned long long>(Address),
                  static_cast<long long>(Length));
    RaiseFor(*m_connection->Driver(), m_connection->Cookie(), status, what);
  }
}

void CCLPort::Write(const void* pBuffer, int64_t Address, int64_t Length) {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (!m_connection) {
    throw ACCESS_EXCEPTION("Write address %#llx: the port is not connected", static_cast<unsigned long long>(Address));
  }
  if (Length < 0 || (Length > 0 && pBuffer == nullptr)) {
    throw INVALID_ARGUMENT_EXCEPTION("Write address %#llx: invalid buffer or length %lld",
                                     static_cast<unsigned long long>(Address), static_cast<long long>(Length));
  }
  const CProtocolDriver& driver = *m_connection->Driver();
  int32_t status = driver.WriteRegister(m_connection->Serial(), m_connection->Cookie(), Address,
                                        static_cast<const char*>(pBuffer), Length, m_registerTimeoutMs);
  for (int round = 0; status == CL_ERR_PENDING_WRITE && round < kMaxPendingContinuations; ++round) {
    status = driver.ContinueWriteRegister(m_connection->Serial(), m_connection->Cookie(), true, m_registerTimeoutMs);
  }
  if (status == CL_ERR_PENDING_WRITE) {
    driver.ContinueWriteRegister(m_connection->Serial(), m_connection->Cookie(), false, m_registerTimeoutMs);
    status = CL_ERR_TIMEOUT;
  }
  if (status != CL_ERR_NO_ERR) {
    char what[96];
    std::snprintf(what, sizeof what, "Write address %#llx (%lld bytes)", static_cast<unsigned long long>(Address),
                  static_cast<long long>(Length));
    RaiseFor(driver, m_connection->Cookie(), status, what);
  }
}

}  // namespace CLProtocol

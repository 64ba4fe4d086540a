#pragma once
// One camera connected through the GenCP-over-serial driver: what the probe learnt from the bootstrap registers,
// the description files of the manifest, the baud rate of the link, and register access.
#include <cstdint>
#include <string>
#include <vector>

#include <CLProtocol/CLProtocolDriverApi.h>

#include "GenCPLink.h"

namespace CLProtocol {
namespace GenCP {

// The manufacturer and family tokens of this driver's device IDs.
constexpr const char* kShortTemplate = "KORIX#GENCP02";

struct SDeviceIdentity {
  std::string manufacturer;
  std::string family;
  std::string model;
  std::string version;
  std::string serialNumber;
  std::string userName;
};

struct SManifestEntry {
  uint32_t fileVersion = 0;
  uint32_t format = 0;
  uint64_t address = 0;
  uint64_t size = 0;
};

class CGenCPSession {
public:
  // Reads the bootstrap registers at 9600 baud and checks them against the short device ID (a template, or a full
  // ID whose model, version and serial number must then match). Fills `answer` with
  // "<driverPath>#<manufacturer>#<family>#<model>#<version>#<serial>[#<user name>]".
  int32_t Probe(const CLPSerial& serial, const std::string& shortId, const std::string& driverPath, uint32_t timeoutMs,
                std::string& answer);

  int32_t XmlIds(const CLPSerial& serial, std::string& ids);
  int32_t XmlDescription(const CLPSerial& serial, const std::string& id, std::string& bytes);
  int32_t ReadRegister(const CLPSerial& serial, int64_t address, char* buffer, int64_t length, uint32_t timeoutMs);
  int32_t WriteRegister(const CLPSerial& serial, int64_t address, const char* buffer, int64_t length,
                        uint32_t timeoutMs);
  int32_t ContinueWrite(const CLPSerial& serial, bool keepWaiting, uint32_t timeoutMs);

  // Baud-rate bits both sides support, the current one, and the switch (with fallback to the previous rate).
  int32_t SharedBaudRates(const CLPSerial& serial, uint32_t& rates);
  uint32_t CurrentBaudRate() const { return m_baudRate; }
  int32_t SwitchBaudRate(const CLPSerial& serial, uint32_t rateBit);

  uint32_t DefaultTimeoutMs() const { return m_defaultTimeoutMs; }
  void SetDefaultTimeoutMs(uint32_t timeoutMs) { m_defaultTimeoutMs = timeoutMs; }
  const std::string& LastError() const;
  const SDeviceIdentity& Identity() const { return m_identity; }

private:
  int32_t ReadString(const CLPSerial& serial, uint64_t address, uint32_t timeoutMs, std::string& text);
  int32_t ReadIdentity(const CLPSerial& serial, uint32_t timeoutMs);
  int32_t ReadManifest(const CLPSerial& serial);
  int32_t Fail(int32_t status, const std::string& text);
  uint32_t Timeout(uint32_t timeoutMs) const { return timeoutMs != 0 ? timeoutMs : m_defaultTimeoutMs; }

  CGenCPLink m_link;
  SDeviceIdentity m_identity;
  uint64_t m_capability = 0;
  uint64_t m_sbrmAddress = 0;
  bool m_manifestRead = false;
  std::vector<SManifestEntry> m_manifest;
  std::vector<std::string> m_descriptions;  // downloaded files by manifest index (empty: not yet)
  uint32_t m_baudRate = CL_BAUDRATE_9600;
  uint32_t m_defaultTimeoutMs = 500;
  std::string m_lastError;
};

}  // namespace GenCP
}  // namespace CLProtocol

#include "GenCPSession.h"

#include "DeviceId.h"
#include "GenCPBootstrap.h"

#include <cstring>

namespace CLProtocol {
namespace GenCP {
namespace {

// A field of the probe answer may not hold the separator.
std::string AnswerField(std::string text) {
  for (char& c : text) {
    if (c == '#' || c == '\t') {
      c = '_';
    }
  }
  return text;
}

std::string FromRegister(const uint8_t* data, size_t size) {
  size_t length = 0;
  while (length < size && data[length] != 0) {
    ++length;
  }
  return std::string(reinterpret_cast<const char*>(data), length);
}

// How long the device has, after a confirmed or failed switch, before a read at the old rate must succeed.
constexpr uint32_t kFallbackWaitMs = 150;
// The confirming write must be acknowledged well inside the device's window.
constexpr uint32_t kConfirmTimeoutMs = 200;

}  // namespace

const std::string& CGenCPSession::LastError() const { return m_lastError.empty() ? m_link.LastError() : m_lastError; }

int32_t CGenCPSession::Fail(int32_t status, const std::string& text) {
  m_lastError = text;
  return status;
}

int32_t CGenCPSession::ReadString(const CLPSerial& serial, uint64_t address, uint32_t timeoutMs, std::string& text) {
  uint8_t data[Bootstrap::kStringSize];
  const int32_t status = m_link.ReadMem(serial, address, data, sizeof data, timeoutMs);
  if (status == CL_ERR_NO_ERR) {
    text = FromRegister(data, sizeof data);
  }
  return status;
}

int32_t CGenCPSession::ReadIdentity(const CLPSerial& serial, uint32_t timeoutMs) {
  const bool hasFamily = (m_capability & Capability::kFamilyName) != 0;
  const bool hasUserName = (m_capability & Capability::kUserDefinedName) != 0;
  if ((m_capability & Capability::kStackedCommands) != 0) {
    std::vector<SStackedEntry> entries;
    for (const uint64_t address : {Bootstrap::kManufacturerName, Bootstrap::kModelName, Bootstrap::kDeviceVersion,
                                   Bootstrap::kSerialNumber, Bootstrap::kFamilyName, Bootstrap::kUserDefinedName}) {
      SStackedEntry entry;
      entry.address = address;
      entry.length = static_cast<uint16_t>(Bootstrap::kStringSize);
      entries.push_back(entry);
    }
    if (!hasUserName) {
      entries.pop_back();
    }
    if (!hasFamily) {
      entries.erase(entries.begin() + 4);
    }
    const int32_t status = m_link.ReadMemStacked(serial, entries, timeoutMs);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    m_identity.manufacturer = FromRegister(entries[0].data.data(), entries[0].data.size());
    m_identity.model = FromRegister(entries[1].data.data(), entries[1].data.size());
    m_identity.version = FromRegister(entries[2].data.data(), entries[2].data.size());
    m_identity.serialNumber = FromRegister(entries[3].data.data(), entries[3].data.size());
    size_t next = 4;
    if (hasFamily) {
      m_identity.family = FromRegister(entries[next].data.data(), entries[next].data.size());
      ++next;
    }
    if (hasUserName) {
      m_identity.userName = FromRegister(entries[next].data.data(), entries[next].data.size());
    }
    return CL_ERR_NO_ERR;
  }
  int32_t status = ReadString(serial, Bootstrap::kManufacturerName, timeoutMs, m_identity.manufacturer);
  if (status == CL_ERR_NO_ERR) {
    status = ReadString(serial, Bootstrap::kModelName, timeoutMs, m_identity.model);
  }
  if (status == CL_ERR_NO_ERR) {
    status = ReadString(serial, Bootstrap::kDeviceVersion, timeoutMs, m_identity.version);
  }
  if (status == CL_ERR_NO_ERR) {
    status = ReadString(serial, Bootstrap::kSerialNumber, timeoutMs, m_identity.serialNumber);
  }
  if (status == CL_ERR_NO_ERR && hasFamily) {
    status = ReadString(serial, Bootstrap::kFamilyName, timeoutMs, m_identity.family);
  }
  if (status == CL_ERR_NO_ERR && hasUserName) {
    status = ReadString(serial, Bootstrap::kUserDefinedName, timeoutMs, m_identity.userName);
  }
  return status;
}

int32_t CGenCPSession::Probe(const CLPSerial& serial, const std::string& shortId, const std::string& driverPath,
                             uint32_t timeoutMs, std::string& answer) {
  if (!DeviceIdMatchesTemplate(shortId, kShortTemplate)) {
    return Fail(CL_ERR_INVALID_DEVICEID, "the device ID '" + shortId + "' is not one of this driver's");
  }
  // Every probe starts at the rate every link starts with.
  serial.setBaudRate(serial.context, CL_BAUDRATE_9600);
  serial.flush(serial.context);
  m_baudRate = CL_BAUDRATE_9600;
  m_link.SetLineRate(BaudRateOfBit(m_baudRate));
  const uint32_t timeout = Timeout(timeoutMs);
  uint8_t word[8];
  // The first read is sent once: a port without a camera then costs one time-out, not four.
  m_link.SetResendLimit(0);
  int32_t status = m_link.ReadMem(serial, Bootstrap::kGenCPVersion, word, 4, timeout);
  m_link.SetResendLimit(CGenCPLink::kMaxResends);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  if (GetU32(word) >> 16 == 0) {
    return Fail(CL_ERR_NO_DEVICE_FOUND, "the device reports GenCP major version 0");
  }
  status = m_link.ReadMem(serial, Bootstrap::kCapability, word, 8, timeout);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  m_capability = GetU64(word);
  m_link.SetWrittenLengthReported((m_capability & Capability::kWrittenLength) != 0);
  status = ReadIdentity(serial, timeout);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  // A full device ID names one camera: model, version and serial number must be this one's.
  const std::vector<std::string> tokens = SplitTokens(shortId);
  const std::string* const mine[] = {&m_identity.model, &m_identity.version, &m_identity.serialNumber};
  for (size_t i = 2; i < tokens.size() && i < 5; ++i) {
    if (tokens[i] != AnswerField(*mine[i - 2])) {
      return Fail(CL_ERR_NO_DEVICE_FOUND, "the camera on this port is not " + shortId);
    }
  }
  if ((m_capability & Capability::kSerialTechnologyMap) != 0) {
    status = m_link.ReadMem(serial, Bootstrap::kSbrmAddress, word, 8, timeout);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    m_sbrmAddress = GetU64(word);
  }
  answer = driverPath + "#" + AnswerField(m_identity.manufacturer) + "#" + AnswerField(m_identity.family) + "#" +
           AnswerField(m_identity.model) + "#" + AnswerField(m_identity.version) + "#" +
           AnswerField(m_identity.serialNumber);
  if (!m_identity.userName.empty()) {
    answer += "#" + AnswerField(m_identity.userName);
  }
  m_lastError.clear();
  return CL_ERR_NO_ERR;
}

int32_t CGenCPSession::ReadManifest(const CLPSerial& serial) {
  if (m_manifestRead) {
    return CL_ERR_NO_ERR;
  }
  uint8_t word[8];
  int32_t status = m_link.ReadMem(serial, Bootstrap::kManifestTableAddress, word, 8, m_defaultTimeoutMs);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  const uint64_t table = GetU64(word);
  if (table == 0) {
    return Fail(CL_ERR_NO_XMLDESCRIPTION_FOUND, "the device has no manifest");
  }
  status = m_link.ReadMem(serial, table, word, 8, m_defaultTimeoutMs);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  const uint64_t count = GetU64(word);
  if (count > Manifest::kMaxEntries) {
    return Fail(CL_ERR_NO_XMLDESCRIPTION_FOUND, "the manifest claims " + std::to_string(count) + " entries");
  }
  std::vector<uint8_t> entries(static_cast<size_t>(count) * Manifest::kEntrySize);
  if (!entries.empty()) {
    status = m_link.ReadMem(serial, table + 8, entries.data(), entries.size(), m_defaultTimeoutMs);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
  }
  m_manifest.clear();
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* entry = entries.data() + i * Manifest::kEntrySize;
    SManifestEntry parsed;
    parsed.fileVersion = GetU32(entry + Manifest::kFileVersion);
    parsed.format = GetU32(entry + Manifest::kFormat);
    parsed.address = GetU64(entry + Manifest::kAddress);
    parsed.size = GetU64(entry + Manifest::kSize);
    m_manifest.push_back(parsed);
  }
  m_descriptions.assign(m_manifest.size(), std::string());
  m_manifestRead = true;
  return CL_ERR_NO_ERR;
}

int32_t CGenCPSession::XmlIds(const CLPSerial& serial, std::string& ids) {
  const int32_t status = ReadManifest(serial);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  ids.clear();
  for (size_t i = 0; i < m_manifest.size(); ++i) {
    if ((m_manifest[i].format & Manifest::kFileTypeMask) != Manifest::kFileTypeDeviceDescription) {
      continue;
    }
    const bool zipped = Manifest::FormatOf(m_manifest[i].format) == Manifest::kFormatZip;
    if (!ids.empty()) {
      ids += '\t';
    }
    ids += "Manifest" + std::to_string(i) + (zipped ? ".zip" : ".xml");
  }
  if (ids.empty()) {
    return Fail(CL_ERR_NO_XMLDESCRIPTION_FOUND, "the manifest lists no device description");
  }
  return CL_ERR_NO_ERR;
}

int32_t CGenCPSession::XmlDescription(const CLPSerial& serial, const std::string& id, std::string& bytes) {
  int32_t status = ReadManifest(serial);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  size_t index = m_manifest.size();
  for (size_t i = 0; i < m_manifest.size(); ++i) {
    const bool zipped = Manifest::FormatOf(m_manifest[i].format) == Manifest::kFormatZip;
    if (id == "Manifest" + std::to_string(i) + (zipped ? ".zip" : ".xml")) {
      index = i;
    }
  }
  if (index == m_manifest.size()) {
    return Fail(CL_ERR_NO_XMLDESCRIPTION_FOUND, "no description file '" + id + "'");
  }
  const SManifestEntry& entry = m_manifest[index];
  // A bound on what a serial camera can hold keeps a damaged entry from exhausting memory.
  if (entry.size > 64u * 1024u * 1024u) {
    return Fail(CL_ERR_NO_XMLDESCRIPTION_FOUND, "the description file claims " + std::to_string(entry.size) + " bytes");
  }
  if (m_descriptions[index].empty() && entry.size > 0) {
    std::string data(static_cast<size_t>(entry.size), '\0');
    status = m_link.ReadMem(serial, entry.address, reinterpret_cast<uint8_t*>(&data[0]), data.size(),
                            m_defaultTimeoutMs);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    m_descriptions[index] = std::move(data);
  }
  bytes = m_descriptions[index];
  return CL_ERR_NO_ERR;
}

int32_t CGenCPSession::ReadRegister(const CLPSerial& serial, int64_t address, char* buffer, int64_t length,
                                    uint32_t timeoutMs) {
  if (length < 0 || address < 0) {
    return Fail(CL_ERR_PARAM_DATA_VALUE, "negative address or length");
  }
  m_lastError.clear();
  return m_link.ReadMem(serial, static_cast<uint64_t>(address), reinterpret_cast<uint8_t*>(buffer),
                        static_cast<size_t>(length), Timeout(timeoutMs));
}

int32_t CGenCPSession::WriteRegister(const CLPSerial& serial, int64_t address, const char* buffer, int64_t length,
                                     uint32_t timeoutMs) {
  if (length < 0 || address < 0) {
    return Fail(CL_ERR_PARAM_DATA_VALUE, "negative address or length");
  }
  m_lastError.clear();
  return m_link.WriteMem(serial, static_cast<uint64_t>(address), reinterpret_cast<const uint8_t*>(buffer),
                         static_cast<size_t>(length), Timeout(timeoutMs), true);
}

int32_t CGenCPSession::ContinueWrite(const CLPSerial& serial, bool keepWaiting, uint32_t timeoutMs) {
  if (!keepWaiting) {
    m_link.AbandonPending();
    return CL_ERR_NO_ERR;
  }
  m_lastError.clear();
  return m_link.ContinueWrite(serial, Timeout(timeoutMs));
}

int32_t CGenCPSession::SharedBaudRates(const CLPSerial& serial, uint32_t& rates) {
  uint32_t host = CL_BAUDRATE_9600;
  if (serial.getSupportedBaudRates(serial.context, &host) != CL_ERR_NO_ERR) {
    host = CL_BAUDRATE_9600;
  }
  uint32_t device = CL_BAUDRATE_9600;
  if ((m_capability & Capability::kSerialTechnologyMap) != 0 && m_sbrmAddress != 0) {
    uint8_t word[4];
    const int32_t status = m_link.ReadMem(serial, m_sbrmAddress + Sbrm::kSupportedBaudRates, word, 4,
                                          m_defaultTimeoutMs);
    if (status != CL_ERR_NO_ERR) {
      return status;
    }
    device = GetU32(word);
  }
  rates = (host & device) | CL_BAUDRATE_9600;
  return CL_ERR_NO_ERR;
}

int32_t CGenCPSession::SwitchBaudRate(const CLPSerial& serial, uint32_t rateBit) {
  if (BaudRateOfBit(rateBit) == 0) {
    return Fail(CL_ERR_PARAM_DATA_VALUE, "not a baud-rate bit: " + std::to_string(rateBit));
  }
  if (rateBit == m_baudRate) {
    return CL_ERR_NO_ERR;
  }
  if ((m_capability & Capability::kSerialTechnologyMap) == 0 || m_sbrmAddress == 0) {
    return Fail(CL_ERR_BAUD_RATE_NOT_SUPPORTED, "the device has no serial technology map: it stays at 9600 baud");
  }
  uint32_t shared = 0;
  int32_t status = SharedBaudRates(serial, shared);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  if ((shared & rateBit) == 0) {
    return Fail(CL_ERR_BAUD_RATE_NOT_SUPPORTED,
                std::to_string(BaudRateOfBit(rateBit)) + " baud is not supported by both device and port");
  }
  const uint32_t oldRate = m_baudRate;
  std::vector<uint8_t> value;
  PutU32(value, rateBit);
  const uint64_t current = m_sbrmAddress + Sbrm::kCurrentBaudRate;
  // Announce at the old rate, switch the port, confirm at the new rate within the device's window.
  status = m_link.WriteMem(serial, current, value.data(), value.size(), m_defaultTimeoutMs, false);
  if (status != CL_ERR_NO_ERR) {
    return status;
  }
  status = serial.setBaudRate(serial.context, rateBit);
  if (status == CL_ERR_NO_ERR) {
    // One attempt only: a resend would arrive after the device's window has closed.
    m_link.SetResendLimit(0);
    status = m_link.WriteMem(serial, current, value.data(), value.size(), kConfirmTimeoutMs, false);
    m_link.SetResendLimit(CGenCPLink::kMaxResends);
    if (status == CL_ERR_NO_ERR) {
      m_baudRate = rateBit;
      m_link.SetLineRate(BaudRateOfBit(m_baudRate));
      m_lastError.clear();
      return CL_ERR_NO_ERR;
    }
  }
  // The device falls back on its own once its window has passed; follow it and check that the link works.
  const std::string reason = m_link.LastError();
  serial.setBaudRate(serial.context, oldRate);
  serial.flush(serial.context);
  uint8_t word[4];
  const int32_t check = m_link.ReadMem(serial, current, word, 4, kFallbackWaitMs + Sbrm::kConfirmWindowMs);
  if (check != CL_ERR_NO_ERR) {
    return Fail(check, "the switch to " + std::to_string(BaudRateOfBit(rateBit)) +
                           " baud failed and the link does not answer at the previous rate: " + m_link.LastError());
  }
  return Fail(CL_ERR_BAUD_RATE_NOT_SUPPORTED, "the switch to " + std::to_string(BaudRateOfBit(rateBit)) +
                                                  " baud was not confirmed (" + reason + "); the link fell back to " +
                                                  std::to_string(BaudRateOfBit(oldRate)) + " baud");
}

}  // namespace GenCP
}  // namespace CLProtocol

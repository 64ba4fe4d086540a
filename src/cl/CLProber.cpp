#include "cl/CLProber.h"

#include "cl/CLCachedLists.h"
#include "platform/SerialFriendlyNames.h"

#include <CLProtocol/CLPort.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace TALVIR {
namespace {

constexpr const char* kDeviceIdPattern = "([^#]*)#([^#]*)#([^#]*)#([^#]*)#([^#]*)#([^#]*)(#([^#]*))?";
constexpr const char* kComPattern = ".*COM(\\d+)(\\s?\\D\\s*)?$";
constexpr unsigned kProbeTimeoutMs = 500;

// Copies at most 255 bytes and the terminator. A longer text is refused: the field stays empty (zeroed) rather than
// holding a cut text.
void BoundedCopy(char (&field)[256], const std::string& text) {
  std::memset(field, 0, sizeof field);
  if (text.size() < sizeof field) {
    std::memcpy(field, text.c_str(), text.size());
  }
}

}  // namespace

std::vector<std::string> ListSerialFriendlyNames() { return Platform::ListSerialPortFriendlyNames(); }

CCLProber::CCLProber(const std::string& deviceIdTemplate, std::list<CLProbeRecord>* results)
    : CCLProber(deviceIdTemplate, results, ListSerialFriendlyNames()) {}

CCLProber::CCLProber(const std::string& deviceIdTemplate, std::list<CLProbeRecord>* results,
                     const std::vector<std::string>& friendlyNames)
    : m_deviceIdTemplate(deviceIdTemplate), m_results(results) {
  const std::regex ownAdapter("^tav.*\\(com(\\d+)\\).*$");
  for (const std::string& name : friendlyNames) {
    std::string lower = name;
    for (char& c : lower) {
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    std::smatch match;
    if (std::regex_match(lower, match, ownAdapter) && match[1].matched) {
      // The pattern tests port IDs, which spell COM in upper case.
      m_excludePatterns.emplace_back(".*COM0?" + match[1].str() + "(\\s?\\D\\s*)?$");
    }
  }
  m_excludePatterns.emplace_back("KORIX#CL_GRABBER#SERIAL\\d+.\\d+");
  m_comPattern = std::regex(kComPattern);
}

void CCLProber::ProbeAll() {
  ProbeAll(GetCachedPortIDs(), [](const std::string& portId, const std::string& deviceIdTemplate, unsigned timeoutMs) {
    return std::string(CLProtocol::CCLPort::ProbeDevice(portId, deviceIdTemplate, timeoutMs));
  });
}

void CCLProber::ProbeAll(const std::list<std::string>& portIds, const ProbeFunction& probe) {
  for (const std::string& id : portIds) {
    if (IsExcludedPort(id) || IsDuplicateComNumber(id)) {
      continue;
    }
    try {
      const std::string answer = probe(id, m_deviceIdTemplate, kProbeTimeoutMs);
      AddProbeResult(id.c_str(), answer.c_str());
    } catch (...) {
      // A port that does not answer is simply not a camera; the walk goes on.
    }
  }
}

bool CCLProber::IsExcludedPort(std::string portId) {
  for (const std::regex& pattern : m_excludePatterns) {
    if (std::regex_match(portId, pattern)) {
      return true;
    }
  }
  return false;
}

bool CCLProber::IsDuplicateComNumber(std::string portId) {
  std::smatch match;
  if (!std::regex_match(portId, match, m_comPattern) || !match[1].matched) {
    return false;
  }
  const int number = std::atoi(match[1].str().c_str());
  return !m_seenComNumbers.insert(number).second;
}

void CCLProber::AddProbeResult(const char* portId, const char* answer) {
  m_deviceIdPattern = std::regex(kDeviceIdPattern);
  const std::string text = answer != nullptr ? answer : "";
  const std::string port = portId != nullptr ? portId : "";
  std::smatch match;
  if (!std::regex_match(text, match, m_deviceIdPattern)) {
    std::cout << "ERR-->: " << port << ": " << text << std::endl;
    return;
  }
  std::string deviceId = match[1].str();
  // The driver names itself by path; a device ID separates the folder from the file with "#", which takes the place
  // of the last separator ("/" on Linux, "\\" on Windows).
  const size_t separator = deviceId.find_last_of("\\/");
  if (separator != std::string::npos) {
    deviceId[separator] = '#';
  }
  deviceId += "#KORIX#GENCP02";
  const std::string manufacturer = match[2].str();
  const std::string model = match[4].str();
  if (manufacturer.empty() && model.empty()) {
    return;
  }
  CLProbeRecord record{};
  BoundedCopy(record.portId, port);
  BoundedCopy(record.deviceId, deviceId);
  BoundedCopy(record.manufacturer, manufacturer);
  BoundedCopy(record.family, match[3].str());
  BoundedCopy(record.model, model);
  BoundedCopy(record.version, match[5].str());
  BoundedCopy(record.serialNumber, match[6].str());
  BoundedCopy(record.extra, match[8].matched ? match[8].str() : std::string());
  m_results->push_back(record);
}

}  // namespace TALVIR

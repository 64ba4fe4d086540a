#pragma once
// Finding Camera Link cameras on serial ports: the ports are filtered (adapters of our own, the frame grabber's
// serial channels, COM numbers already seen) and every other port is probed with our protocol driver's template.
#include <functional>
#include <list>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace TALVIR {

// One camera found by probing. Each field holds a NUL-terminated text of at most 255 bytes.
struct CLProbeRecord {
  char portId[256];
  char deviceId[256];
  char manufacturer[256];
  char family[256];
  char model[256];
  char version[256];
  char serialNumber[256];
  char extra[256];
};

// The friendly names of the PC's serial ports ("<description> (<port name>)"), in the system's order.
std::vector<std::string> ListSerialFriendlyNames();

class CCLProber {
public:
  // Probes one port with a device ID template and returns the driver's answer; throws when the probe fails.
  using ProbeFunction =
      std::function<std::string(const std::string& portId, const std::string& deviceIdTemplate, unsigned timeoutMs)>;

  // Builds the exclusion patterns from the PC's serial-port friendly names. `results` is not owned.
  CCLProber(const std::string& deviceIdTemplate, std::list<CLProbeRecord>* results);
  // The same with the friendly names given (for other name sources and for tests).
  CCLProber(const std::string& deviceIdTemplate, std::list<CLProbeRecord>* results,
            const std::vector<std::string>& friendlyNames);

  // Probes every cached port ID that passes the filters (500 ms each) through the CLProtocol layer.
  void ProbeAll();
  // The same over the given port IDs with the given probe.
  void ProbeAll(const std::list<std::string>& portIds, const ProbeFunction& probe);

  bool IsExcludedPort(std::string portId);
  // True when the ID's COM number was seen before in this pass; the number is recorded either way.
  bool IsDuplicateComNumber(std::string portId);
  // Turns a probe answer into a record (or an "ERR-->: " line on standard output when it does not parse).
  void AddProbeResult(const char* portId, const char* answer);

private:
  std::string m_deviceIdTemplate;
  std::list<CLProbeRecord>* m_results;  // not owned; records are appended
  std::vector<std::regex> m_excludePatterns;
  std::regex m_comPattern;
  std::set<int> m_seenComNumbers;
  std::regex m_deviceIdPattern;
};

}  // namespace TALVIR

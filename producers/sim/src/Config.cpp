#include "Config.h"

#include "platform/Environment.h"
#include "platform/FileIO.h"
#include "platform/SelfPath.h"
#include "talvirsim/TestPattern.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <set>
#include <stdexcept>

namespace TalvirSim {
namespace {

using nlohmann::json;

std::string UpperStem(const std::string& path) {
  const size_t slash = path.find_last_of(TALVIR::Platform::kPathSeparators);
  std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  const size_t dot = name.find_last_of('.');
  if (dot != std::string::npos) {
    name.resize(dot);
  }
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
  return name;
}

std::vector<uint32_t> MonoFormats() {
  std::vector<uint32_t> codes;
  for (const SPixelFormat& format : AllPixelFormats()) {
    if (std::string(format.name).rfind("Mono", 0) == 0) {
      codes.push_back(format.code);
    }
  }
  return codes;
}

std::vector<uint32_t> EveryFormat() {
  std::vector<uint32_t> codes;
  for (const SPixelFormat& format : AllPixelFormats()) {
    codes.push_back(format.code);
  }
  return codes;
}

// Serial numbers are eight characters so that a U3V status report (which names a device by the first eight
// characters of its serial number) identifies it.
std::string SerialPrefix(EFlavour flavour) {
  switch (flavour) {
  case EFlavour::GEV: return "GEV";
  case EFlavour::U3V: return "U3V";
  case EFlavour::CL: return "CLG";
  case EFlavour::CXP: return "CXP";
  case EFlavour::Custom: break;
  }
  return "SIM";
}

SDeviceConfig DefaultDevice(EFlavour flavour, int index, bool colour) {
  SDeviceConfig device;
  char serial[16];
  std::snprintf(serial, sizeof serial, "%s%05d", SerialPrefix(flavour).c_str(), index + 1);
  device.serial = serial;
  device.model = colour ? "SimColor" : "SimMono";
  // U3V device IDs carry the serial number after a blank; the others join model and serial with a dash.
  device.id = device.model + (flavour == EFlavour::U3V ? " " : "-") + device.serial;
  device.displayName = device.model + " (" + device.serial + ")";
  device.userName = colour ? "colour" : "mono";
  device.pixelFormats = colour ? EveryFormat() : MonoFormats();
  // A colour sensor delivers raw Bayer data unless asked for another format.
  device.pixelFormat = colour ? 0x01080009 /* BayerRG8 */ : 0x01080001 /* Mono8 */;
  const int host = 11 + index;
  device.ip = "192.168.77." + std::to_string(host);
  device.gateway = "192.168.77.254";
  device.hostIp = "192.168.77.1";
  char mac[24];
  std::snprintf(mac, sizeof mac, "02:54:56:00:00:%02X", host);
  device.mac = mac;
  device.interfaceText = "Simulated network adapter 0";
  if (flavour == EFlavour::CL) {
    device.requireAcquisitionStart = false;
    device.sensorWidth = 1024;
    device.sensorHeight = 768;
    device.customInfo[1201] = {true, 0, ""};
    device.customInfo[1202] = {true, static_cast<uint64_t>(index), ""};
    device.customInfo[1203] = {false, 0, "SimGrabber CL-2"};
    device.customInfo[1204] = {false, 0, "GRB00001"};
    device.customInfo[1205] = {false, 0, "Talvir"};
    device.customInfo[1206] = {false, 0, "Base"};
    device.customInfo[1207] = {false, 0, "1X-1Y"};
    // "<board>.<channel>": the serial channel of the simulated grabber's serial library (clserkrx.so) behind which
    // the camera's simulated serial side answers.
    device.customInfo[1208] = {false, 0, "0." + std::to_string(index)};
    device.customInfo[1209] = {false, 0, "SimCLProtocol"};
    device.customInfo[1230] = {true, 85, ""};
    device.customInfo[1231] = {false, 0, "2.4.1"};
  }
  if (flavour == EFlavour::U3V) {
    char guid[40];
    std::snprintf(guid, sizeof guid, "5441-5649-5253-494D-%012d", index + 1);
    device.customInfo[1100] = {false, 0, guid};
    device.customInfo[1101] = {false, 0, "SuperSpeed"};
    device.customInfo[1102] = {false, 0, "Bus 2 Port " + std::to_string(index + 1)};
  }
  if (flavour == EFlavour::CXP) {
    device.zeroBufferHeight = true;
  }
  return device;
}

// ---- JSON reading with messages that name the offending key ----

class CReader {
public:
  CReader(const json& object, std::string path) : m_object(object), m_path(std::move(path)) {
    if (!m_object.is_object()) {
      throw std::runtime_error(m_path + ": expected a JSON object");
    }
  }

  // Rejects keys that no reader asked for, so that a misspelt key is reported instead of silently ignored.
  void RejectUnknown() const {
    for (auto it = m_object.begin(); it != m_object.end(); ++it) {
      if (m_known.count(it.key()) == 0) {
        throw std::runtime_error(m_path + "." + it.key() + ": unknown key");
      }
    }
  }

  const json* Find(const std::string& key) {
    m_known.insert(key);
    auto it = m_object.find(key);
    return it == m_object.end() ? nullptr : &*it;
  }

  std::string Path(const std::string& key) const { return m_path + "." + key; }

  void String(const std::string& key, std::string& target) {
    if (const json* value = Find(key)) {
      if (!value->is_string()) {
        throw std::runtime_error(Path(key) + ": expected a string");
      }
      target = value->get<std::string>();
    }
  }
  void Bool(const std::string& key, bool& target) {
    if (const json* value = Find(key)) {
      if (!value->is_boolean()) {
        throw std::runtime_error(Path(key) + ": expected true or false");
      }
      target = value->get<bool>();
    }
  }
  template <typename T>
  void Unsigned(const std::string& key, T& target) {
    if (const json* value = Find(key)) {
      if (!value->is_number_unsigned() && !(value->is_number_integer() && value->get<int64_t>() >= 0)) {
        throw std::runtime_error(Path(key) + ": expected a non-negative integer");
      }
      const uint64_t number = value->get<uint64_t>();
      if (number > static_cast<uint64_t>(std::numeric_limits<T>::max())) {
        throw std::runtime_error(Path(key) + ": value too large");
      }
      target = static_cast<T>(number);
    }
  }
  void Number(const std::string& key, double& target, double minimum) {
    if (const json* value = Find(key)) {
      if (!value->is_number()) {
        throw std::runtime_error(Path(key) + ": expected a number");
      }
      target = value->get<double>();
      if (target < minimum) {
        throw std::runtime_error(Path(key) + ": must be at least " + std::to_string(minimum));
      }
    }
  }

private:
  const json& m_object;
  std::string m_path;
  std::set<std::string> m_known;
};

// The INFO_DATATYPE names a typed answer may use, with the size of a "value" of that type (0: "hex" only).
struct STypedName {
  const char* name;
  int32_t type;
  size_t valueSize;
};
constexpr STypedName kTypedNames[] = {
    {"STRING", 1, 0}, {"STRINGLIST", 2, 0}, {"INT16", 3, 2},   {"UINT16", 4, 2},   {"INT32", 5, 4},
    {"UINT32", 6, 4}, {"INT64", 7, 8},      {"UINT64", 8, 8},  {"FLOAT64", 9, 0},  {"PTR", 10, 8},
    {"BOOL8", 11, 1}, {"SIZET", 12, 8},     {"BUFFER", 13, 0}, {"PTRDIFF", 14, 8},
};

// {"type": "PTR", "value": 123} answers the value's low bytes (little-endian) in the type's size;
// {"type": "BUFFER", "hex": "00ff..."} answers exactly those bytes.
SCustomInfo ReadTypedAnswer(const json& object, const std::string& path) {
  CReader reader(object, path);
  std::string typeName;
  reader.String("type", typeName);
  const STypedName* found = nullptr;
  for (const STypedName& candidate : kTypedNames) {
    if (typeName == candidate.name) {
      found = &candidate;
    }
  }
  if (found == nullptr) {
    throw std::runtime_error(reader.Path("type") + ": expected an INFO_DATATYPE name such as \"PTR\" or \"BUFFER\"");
  }
  SCustomInfo answer;
  answer.typed = true;
  answer.type = found->type;
  const json* value = reader.Find("value");
  const json* hex = reader.Find("hex");
  if ((value == nullptr) == (hex == nullptr)) {
    throw std::runtime_error(path + ": give either \"value\" or \"hex\"");
  }
  if (value != nullptr) {
    if (!value->is_number_unsigned() || found->valueSize == 0) {
      throw std::runtime_error(reader.Path("value") + ": expected a non-negative integer for a numeric type");
    }
    const uint64_t number = value->get<uint64_t>();
    for (size_t index = 0; index < found->valueSize; ++index) {
      answer.bytes.push_back(static_cast<uint8_t>(number >> (8 * index)));
    }
  } else {
    const std::string digits = hex->is_string() ? hex->get<std::string>() : std::string("?");
    if (digits.size() % 2 != 0 ||
        !std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isxdigit(c) != 0; })) {
      throw std::runtime_error(reader.Path("hex") + ": expected an even number of hexadecimal digits");
    }
    for (size_t index = 0; index < digits.size(); index += 2) {
      answer.bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(index, 2), nullptr, 16)));
    }
  }
  reader.RejectUnknown();
  return answer;
}

uint32_t ParsePixelFormat(const json& value, const std::string& path) {
  if (value.is_string()) {
    const SPixelFormat* format = FindPixelFormat(value.get<std::string>());
    if (format == nullptr) {
      throw std::runtime_error(path + ": unknown pixel format '" + value.get<std::string>() + "'");
    }
    return format->code;
  }
  if (value.is_number_unsigned()) {
    const SPixelFormat* format = FindPixelFormat(value.get<uint32_t>());
    if (format == nullptr) {
      throw std::runtime_error(path + ": unsupported pixel format code " + std::to_string(value.get<uint32_t>()));
    }
    return format->code;
  }
  throw std::runtime_error(path + ": expected a pixel format name");
}

int32_t ParseAccessStatus(const json& value, const std::string& path) {
  static const std::map<std::string, int32_t> names = {{"Unknown", 0},     {"ReadWrite", 1}, {"ReadOnly", 2},
                                                       {"NoAccess", 3},    {"Busy", 4},      {"OpenReadWrite", 5},
                                                       {"OpenReadOnly", 6}};
  if (value.is_string()) {
    auto it = names.find(value.get<std::string>());
    if (it == names.end()) {
      throw std::runtime_error(path + ": unknown access status '" + value.get<std::string>() + "'");
    }
    return it->second;
  }
  if (value.is_number_integer() && value.get<int64_t>() >= 0 && value.get<int64_t>() <= 6) {
    return static_cast<int32_t>(value.get<int64_t>());
  }
  throw std::runtime_error(path + ": expected an access status name or 0..6");
}

void ReadFaults(const json& object, const std::string& path, SFaultConfig& faults) {
  CReader reader(object, path);
  reader.Unsigned("readFailAddress", faults.readFailAddress);
  reader.Unsigned("incompleteEveryN", faults.incompleteEveryN);
  reader.Unsigned("lateFrameId", faults.lateFrameId);
  reader.Unsigned("lateByMs", faults.lateByMs);
  reader.Unsigned("loseAfterFrames", faults.loseAfterFrames);
  reader.Bool("failDeviceRecord", faults.failDeviceRecord);
  reader.RejectUnknown();
}

void ReadDevice(const json& object, const std::string& path, SDeviceConfig& device) {
  CReader reader(object, path);
  reader.String("id", device.id);
  reader.String("vendor", device.vendor);
  reader.String("model", device.model);
  reader.String("serial", device.serial);
  reader.String("userName", device.userName);
  reader.String("version", device.version);
  reader.String("displayName", device.displayName);
  if (const json* value = reader.Find("accessStatus")) {
    device.accessStatus = ParseAccessStatus(*value, reader.Path("accessStatus"));
  }
  reader.Unsigned("timestampFrequency", device.timestampFrequency);
  reader.Unsigned("sensorWidth", device.sensorWidth);
  reader.Unsigned("sensorHeight", device.sensorHeight);
  reader.Unsigned("width", device.width);
  reader.Unsigned("height", device.height);
  if (const json* value = reader.Find("pixelFormats")) {
    if (value->is_string() && value->get<std::string>() == "all") {
      device.pixelFormats = EveryFormat();
    } else if (value->is_array() && !value->empty()) {
      device.pixelFormats.clear();
      for (size_t i = 0; i < value->size(); ++i) {
        device.pixelFormats.push_back(
            ParsePixelFormat((*value)[i], reader.Path("pixelFormats") + "[" + std::to_string(i) + "]"));
      }
      device.pixelFormat = 0;
    } else {
      throw std::runtime_error(reader.Path("pixelFormats") + ": expected a non-empty list of names or \"all\"");
    }
  }
  if (const json* value = reader.Find("pixelFormat")) {
    device.pixelFormat = ParsePixelFormat(*value, reader.Path("pixelFormat"));
  }
  reader.Number("frameRate", device.frameRate, 0.0);
  reader.Number("exposureTime", device.exposureTime, 1.0);
  reader.Bool("lineScan", device.lineScan);
  reader.Number("lineRate", device.lineRate, 1.0);
  reader.Unsigned("bufferAnnounceMin", device.bufferAnnounceMin);
  reader.Bool("xmlZipped", device.xmlZipped);
  reader.String("urlScheme", device.urlScheme);
  reader.Unsigned("eventLayoutVersion", device.eventLayoutVersion);
  reader.Bool("requireAcquisitionStart", device.requireAcquisitionStart);
  reader.Bool("zeroBufferHeight", device.zeroBufferHeight);
  reader.Bool("legacyChunkPayload", device.legacyChunkPayload);
  reader.Bool("pixelBigEndianNode", device.pixelBigEndianNode);
  reader.Unsigned("packetSize", device.packetSize);
  reader.Unsigned("packetSizeMin", device.packetSizeMin);
  reader.Unsigned("packetSizeMax", device.packetSizeMax);
  reader.Unsigned("packetSizeInc", device.packetSizeInc);
  reader.String("ip", device.ip);
  reader.String("subnet", device.subnet);
  reader.String("gateway", device.gateway);
  reader.String("hostIp", device.hostIp);
  reader.String("mac", device.mac);
  reader.String("interfaceText", device.interfaceText);
  if (const json* value = reader.Find("customInfo")) {
    CReader custom(*value, reader.Path("customInfo"));
    for (auto it = value->begin(); it != value->end(); ++it) {
      custom.Find(it.key());
      int32_t command = 0;
      try {
        command = std::stoi(it.key());
      } catch (const std::exception&) {
        throw std::runtime_error(custom.Path(it.key()) + ": the key must be a command number");
      }
      if (command < 1000) {
        throw std::runtime_error(custom.Path(it.key()) + ": custom commands start at 1000");
      }
      if (it->is_string()) {
        device.customInfo[command] = {false, 0, it->get<std::string>()};
      } else if (it->is_number_unsigned()) {
        device.customInfo[command] = {true, it->get<uint64_t>(), ""};
      } else if (it->is_object()) {
        device.customInfo[command] = ReadTypedAnswer(*it, custom.Path(it.key()));
      } else {
        throw std::runtime_error(custom.Path(it.key()) +
                                 ": expected a string, a non-negative integer or {\"type\", \"value\" or \"hex\"}");
      }
    }
  }
  if (const json* value = reader.Find("faults")) {
    ReadFaults(*value, reader.Path("faults"), device.faults);
  }
  reader.RejectUnknown();
}

void Validate(const SConfig& config) {
  std::set<std::string> interfaceIds;
  for (const SInterfaceConfig& iface : config.interfaces) {
    if (iface.id.empty()) {
      throw std::runtime_error("interfaces: an interface has an empty id");
    }
    if (!interfaceIds.insert(iface.id).second) {
      throw std::runtime_error("interfaces: the id '" + iface.id + "' is used twice");
    }
    std::set<std::string> deviceIds;
    for (const SDeviceConfig& device : iface.devices) {
      const std::string where = "device '" + device.id + "'";
      if (device.id.empty()) {
        throw std::runtime_error("interface '" + iface.id + "': a device has an empty id");
      }
      if (!deviceIds.insert(device.id).second) {
        throw std::runtime_error("interface '" + iface.id + "': the device id '" + device.id + "' is used twice");
      }
      if (device.sensorWidth < 16 || device.sensorHeight < 1 || device.sensorWidth > 65536 ||
          device.sensorHeight > 65536) {
        throw std::runtime_error(where + ": the sensor size must be 16..65536 x 1..65536");
      }
      if (device.width > device.sensorWidth || device.height > device.sensorHeight) {
        throw std::runtime_error(where + ": width/height exceed the sensor size");
      }
      if (device.width != 0 && (device.width < 16 || device.width % 4 != 0)) {
        throw std::runtime_error(where + ": width must be a multiple of 4, at least 16");
      }
      if (std::find(device.pixelFormats.begin(), device.pixelFormats.end(), device.pixelFormat) ==
          device.pixelFormats.end()) {
        throw std::runtime_error(where + ": pixelFormat is not among pixelFormats");
      }
      if (device.eventLayoutVersion != 1 && device.eventLayoutVersion != 2) {
        throw std::runtime_error(where + ": eventLayoutVersion must be 1 or 2");
      }
      std::string scheme = device.urlScheme;
      std::transform(scheme.begin(), scheme.end(), scheme.begin(), [](unsigned char c) { return std::tolower(c); });
      if (scheme != "local:") {
        throw std::runtime_error(where + ": urlScheme must be 'local:' in any letter case");
      }
      if (device.packetSizeMin > device.packetSizeMax || device.packetSize < device.packetSizeMin ||
          device.packetSize > device.packetSizeMax || device.packetSizeInc == 0) {
        throw std::runtime_error(where + ": packet sizes must satisfy min <= packetSize <= max, inc > 0");
      }
    }
  }
}

void FinishDevice(SDeviceConfig& device) {
  if (device.width == 0) {
    device.width = device.sensorWidth - device.sensorWidth % 4;
  }
  if (device.height == 0) {
    device.height = device.sensorHeight;
  }
  if (device.pixelFormat == 0 && !device.pixelFormats.empty()) {
    device.pixelFormat = device.pixelFormats.front();
  }
  if (device.displayName.empty()) {
    device.displayName = device.model + " (" + device.serial + ")";
  }
}

}  // namespace

EFlavour FlavourFromFileName(const std::string& path) {
  const std::string stem = UpperStem(path);
  if (stem.find("GEVTL") != std::string::npos) {
    return EFlavour::GEV;
  }
  if (stem.find("U3V") != std::string::npos) {
    return EFlavour::U3V;
  }
  if (stem.find("CXP") != std::string::npos) {
    return EFlavour::CXP;
  }
  if (stem.size() >= 2 && stem.compare(stem.size() - 2, 2, "CL") == 0) {
    return EFlavour::CL;
  }
  return EFlavour::Custom;
}

const char* FlavourTLType(EFlavour flavour) {
  switch (flavour) {
  case EFlavour::GEV: return "GEV";
  case EFlavour::U3V: return "U3V";
  case EFlavour::CL: return "CL";
  case EFlavour::CXP: return "CXP";
  case EFlavour::Custom: break;
  }
  return "Custom";
}

SConfig DefaultConfig(EFlavour flavour, const std::string& modulePath) {
  SConfig config;
  config.flavour = flavour;
  config.tlType = FlavourTLType(flavour);
  config.modulePath = modulePath;
  const size_t slash = modulePath.find_last_of(TALVIR::Platform::kPathSeparators);
  config.moduleName = slash == std::string::npos ? modulePath : modulePath.substr(slash + 1);
  config.id = "TalvirSim" + std::string(flavour == EFlavour::Custom ? "" : config.tlType);
  SInterfaceConfig iface;
  iface.id = config.id + "-IF0";
  iface.displayName = "Simulated " + config.tlType + " interface 0";
  iface.devices.push_back(DefaultDevice(flavour, 0, false));
  iface.devices.push_back(DefaultDevice(flavour, 1, true));
  for (SDeviceConfig& device : iface.devices) {
    FinishDevice(device);
  }
  config.interfaces.push_back(iface);
  return config;
}

SConfig ParseConfig(const std::string& jsonText, EFlavour flavour, const std::string& modulePath) {
  json document;
  try {
    document = json::parse(jsonText);
  } catch (const json::parse_error& error) {
    throw std::runtime_error(std::string("not valid JSON: ") + error.what());
  }
  SConfig config = DefaultConfig(flavour, modulePath);
  CReader reader(document, "config");
  reader.String("tlType", config.tlType);
  reader.String("id", config.id);
  reader.String("vendor", config.vendor);
  reader.String("model", config.model);
  reader.String("version", config.version);
  reader.Bool("failInitLib", config.failInitLib);
  reader.Bool("failTLOpen", config.failTLOpen);
  reader.Unsigned("interfaceListDelayMs", config.interfaceListDelayMs);
  if (const json* list = reader.Find("interfaces")) {
    if (!list->is_array()) {
      throw std::runtime_error("config.interfaces: expected a list");
    }
    config.interfaces.clear();
    for (size_t i = 0; i < list->size(); ++i) {
      const std::string path = "config.interfaces[" + std::to_string(i) + "]";
      CReader ifaceReader((*list)[i], path);
      SInterfaceConfig iface;
      iface.id = config.id + "-IF" + std::to_string(i);
      ifaceReader.String("id", iface.id);
      iface.displayName = iface.id;
      ifaceReader.String("displayName", iface.displayName);
      ifaceReader.Unsigned("enumerationDelayMs", iface.enumerationDelayMs);
      if (const json* devices = ifaceReader.Find("devices")) {
        if (!devices->is_array()) {
          throw std::runtime_error(path + ".devices: expected a list");
        }
        for (size_t d = 0; d < devices->size(); ++d) {
          // Each device starts from the flavour's default mono (even index) or colour (odd index) camera.
          SDeviceConfig device = DefaultDevice(flavour, static_cast<int>(d), d % 2 == 1);
          ReadDevice((*devices)[d], path + ".devices[" + std::to_string(d) + "]", device);
          FinishDevice(device);
          iface.devices.push_back(device);
        }
      }
      ifaceReader.RejectUnknown();
      config.interfaces.push_back(iface);
    }
  }
  reader.RejectUnknown();
  Validate(config);
  return config;
}

SConfig LoadConfig(const std::string& modulePath) {
  const EFlavour flavour = FlavourFromFileName(modulePath);
  std::string path;
  const std::optional<std::string> fromEnvironment = TALVIR::Platform::EnvironmentVariable("TALVIR_SIM_CONFIG");
  if (fromEnvironment && !fromEnvironment->empty()) {
    path = *fromEnvironment;
    const auto content = TALVIR::Platform::ReadWholeFile(path);
    if (!content) {
      throw std::runtime_error("cannot read the configuration file '" + path + "' named by TALVIR_SIM_CONFIG");
    }
    try {
      return ParseConfig(std::string(content->begin(), content->end()), flavour, modulePath);
    } catch (const std::exception& error) {
      throw std::runtime_error(path + ": " + error.what());
    }
  }
  path = modulePath + ".json";
  const auto content = TALVIR::Platform::ReadWholeFile(path);
  if (!content) {
    return DefaultConfig(flavour, modulePath);
  }
  try {
    return ParseConfig(std::string(content->begin(), content->end()), flavour, modulePath);
  } catch (const std::exception& error) {
    throw std::runtime_error(path + ": " + error.what());
  }
}

uint64_t TransportTypeCode(const std::string& tlType, bool mixedAllowed) {
  static const char* const names[] = {"Custom", "GEV", "U3V", "CL", "CXP", "Mixed"};
  const uint64_t count = mixedAllowed ? 6 : 5;
  for (uint64_t i = 0; i < count; ++i) {
    if (tlType == names[i]) {
      return i;
    }
  }
  return 0;
}

}  // namespace TalvirSim

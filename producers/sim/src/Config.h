#pragma once
// What the simulated producer offers: interfaces, devices and faults. Built from defaults that depend on the flavour
// (chosen by the module's file name) and optionally from a JSON file; see producers/sim/README.md for the keys.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace TalvirSim {

enum class EFlavour { Custom = 0, GEV = 1, U3V = 2, CL = 3, CXP = 4 };

// The flavour a module file name selects ("TalvirSimGEVTL.cti" -> GEV, ...), and the TL type string it reports.
EFlavour FlavourFromFileName(const std::string& path);
const char* FlavourTLType(EFlavour flavour);

// The code of a transport-layer type name: "Custom" 0, "GEV" 1, "U3V" 2, "CL" 3, "CXP" 4, and "Mixed" 5 when
// mixedAllowed (system and interface modules); 0 for anything else.
uint64_t TransportTypeCode(const std::string& tlType, bool mixedAllowed);

constexpr uint64_t kNoAddress = 0xFFFFFFFFFFFFFFFFull;

struct SFaultConfig {
  uint64_t readFailAddress = kNoAddress;  // remote-port reads covering this address fail with GC_ERR_IO
  uint32_t incompleteEveryN = 0;          // every Nth frame (by frame ID) is incomplete
  uint64_t lateFrameId = 0;               // this frame is delivered lateByMs late
  uint32_t lateByMs = 0;
  uint64_t loseAfterFrames = 0;   // the device is lost once this many frames were delivered
  bool failDeviceRecord = false;  // IFGetDeviceInfo command 1001 fails
};

struct SCustomInfo {
  SCustomInfo() = default;
  SCustomInfo(bool isNumeric, uint64_t value, std::string answerText)
      : numeric(isNumeric), number(value), text(std::move(answerText)) {}

  bool numeric = false;
  uint64_t number = 0;
  std::string text;
  // An answer of any INFO_DATATYPE with exactly these bytes ({"type": ..., "value" or "hex": ...}).
  bool typed = false;
  int32_t type = 0;
  std::vector<uint8_t> bytes;
};

struct SDeviceConfig {
  std::string id;
  std::string vendor = "Talvir";
  std::string model;
  std::string serial;
  std::string userName;
  std::string version = "1.0.0";
  std::string displayName;
  int32_t accessStatus = 1;  // DEVICE_ACCESS_STATUS_READWRITE
  uint64_t timestampFrequency = 1000000000;
  uint32_t sensorWidth = 640;
  uint32_t sensorHeight = 480;
  uint32_t width = 0;  // 0: the sensor size
  uint32_t height = 0;
  std::vector<uint32_t> pixelFormats;  // PFNC codes; the first is the initial format unless pixelFormat is set
  uint32_t pixelFormat = 0;
  double frameRate = 100.0;  // 0: as fast as buffers allow
  double exposureTime = 1000.0;
  bool lineScan = false;
  double lineRate = 10000.0;
  size_t bufferAnnounceMin = 1;
  bool xmlZipped = false;
  std::string urlScheme = "local:";
  uint32_t eventLayoutVersion = 1;
  bool requireAcquisitionStart = true;
  bool zeroBufferHeight = false;
  bool legacyChunkPayload = false;  // buffers report payload type CHUNK_DATA, width 0xFFFFFFFF, height = bytes
  bool pixelBigEndianNode = false;  // the description carries pgrPixelBigEndian
  uint32_t packetSize = 1500;
  uint32_t packetSizeMin = 576;
  uint32_t packetSizeMax = 9000;
  uint32_t packetSizeInc = 4;
  std::string ip;  // GigE: device address, subnet mask, gateway, host address, MAC, interface text
  std::string subnet = "255.255.255.0";
  std::string gateway;
  std::string hostIp;
  std::string mac;
  std::string interfaceText;
  std::map<int32_t, SCustomInfo> customInfo;  // producer-specific IFGetDeviceInfo commands
  SFaultConfig faults;
};

struct SInterfaceConfig {
  std::string id;
  std::string displayName;
  uint32_t enumerationDelayMs = 0;  // IFUpdateDeviceList sleeps this long
  std::vector<SDeviceConfig> devices;
};

struct SConfig {
  EFlavour flavour = EFlavour::Custom;
  std::string tlType;
  std::string id;
  std::string vendor = "Talvir";
  std::string model = "TalvirSim";
  std::string version = "1.0.0";
  std::string moduleName;
  std::string modulePath;
  bool failInitLib = false;
  bool failTLOpen = false;
  uint32_t interfaceListDelayMs = 0;
  std::vector<SInterfaceConfig> interfaces;
};

// The default configuration of a flavour.
SConfig DefaultConfig(EFlavour flavour, const std::string& modulePath);

// Applies a JSON document to the defaults. Throws std::runtime_error with a message naming the bad key.
SConfig ParseConfig(const std::string& jsonText, EFlavour flavour, const std::string& modulePath);

// Finds and loads the configuration of the module at `modulePath`: the file named by TALVIR_SIM_CONFIG, else
// "<modulePath>.json" when it exists, else the defaults. Throws std::runtime_error on a bad or unreadable file.
SConfig LoadConfig(const std::string& modulePath);

}  // namespace TalvirSim

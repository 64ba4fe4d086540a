#pragma once
// Why a camera does not show up.
//
// GetDiscoveryReport() describes the last discovery as data: which producer files were considered, whether each
// one loaded (and if not, at which step it stopped), each interface with its ID and device count, and every rule
// that kept devices out of the list. talvir-cli prints the same report with "discover --verbose".
//
//   TALVIR::Init();
//   std::list<TALVIR::ICameraInfo*> devices = TALVIR::Discovery(nullptr);
//   TALVIR::DiscoveryReport report = TALVIR::GetDiscoveryReport();
//
// SetDiagnosticCallback() registers a function that receives one line per GenTL call that failed, for every call
// the library makes to any producer. It is off by default and costs nothing while off.
#include <talvir/Export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TALVIR {

// How far the library got with one producer file.
enum class ProducerState : int32_t {
  NotTried = 0,         // no discovery has asked for it yet
  Loaded = 1,           // loaded, its functions bound, its system module and interfaces opened
  FileNotLoadable = 2,  // the system loader refused the file: see ProducerReport::loaderError
  FunctionMissing = 3,  // a required GenTL function is not exported: see ProducerReport::missingFunction
  OpenFailed = 4,       // initialising the producer or opening its system or an interface failed: see openStatus
};

// A rule that kept devices out of a discovery, or that changed what a device record holds.
enum class DiscoveryRule : int32_t {
  EmptyInterface = 1,         // an interface without devices: the whole producer lists nothing (the default rule)
  EmptyInterfaceSkipped = 2,  // an interface without devices, skipped because of SkipEmptyInterfaces
  InterfaceUpdateFailed = 3,  // IFUpdateDeviceList failed: the whole producer lists nothing
  InterfaceCountFailed = 4,   // IFGetNumDevices failed: the whole producer lists nothing
  DeviceIDFailed = 5,         // IFGetDeviceID failed: that device is left out
  DeviceIDTooLong = 6,        // a device ID that does not fit 1023 bytes: the whole producer lists nothing
  InfoQueryFailed = 7,        // a device information query failed: the record keeps that field empty
  GigERecordIgnored = 8,      // command 1001 answered something other than the 420-byte GigE device record
  NotSelectedByType = 9,      // the producer's transport-layer type is outside the discovery's mask
  ProducerTypeUnknown = 10,   // the producer did not say its transport-layer type (IFGetInfo): only a mask of
                              // every type selects it
  NotLoaded = 11,             // the producer did not load: see its state
  EnumerationFailed = 12,     // the producer's enumeration failed: its earlier device list stays in force for
                              // CreateCameraBySN, and this discovery lists none of its devices
};

// One rule applied during a discovery, with where it applied.
struct DiscoveryNote {
  DiscoveryRule rule = DiscoveryRule::EmptyInterface;
  std::string interfaceID;  // empty when the rule concerns the whole producer
  std::string deviceID;     // empty unless the rule concerns one device
  int32_t errorCode = 0;    // the GenTL error code of the call that failed, 0 when no call failed
  std::string text;         // one line for a person
};

struct InterfaceReport {
  std::string id;
  bool counted = false;      // the device list was updated and counted
  uint32_t deviceCount = 0;  // what IFGetNumDevices answered
  uint32_t devicesListed = 0;
};

struct ProducerReport {
  std::string name;    // as configured or found: a file name, or a full path for a GENICAM_GENTL64_PATH folder
  std::string path;    // the file the library loads
  std::string origin;  // "DiscoveryCfg.ini", "library folder", "GENICAM_GENTL64_PATH" or "by name"
  ProducerState state = ProducerState::NotTried;
  std::string loaderError;      // FileNotLoadable: the system loader's text
  std::string missingFunction;  // FunctionMissing: the first required function the file does not export
  int32_t openStatus = 0;       // OpenFailed: -1 GCInitLib, -2 TLOpen, -3 TLUpdateInterfaceList,
                                // -4 TLGetNumInterfaces, -5 no interface, -6 TLGetInterfaceID, -7 TLOpenInterface
  std::string openStatusText;   // what openStatus means
  int32_t errorCode = 0;        // OpenFailed: the GenTL error code of the call that failed
  std::string lastErrorText;    // OpenFailed: the producer's own GCGetLastError text after that call
  uint32_t tlType = 0;          // TLType bit of its first interface; 0 when unknown
  bool selected = false;        // took part in the last discovery
  bool enumerated = false;      // its enumeration ran in the last discovery
  bool enumerationSucceeded = false;
  uint32_t devicesListed = 0;  // records the last discovery got from it
  std::vector<InterfaceReport> interfaces;
  std::vector<DiscoveryNote> notes;
};

struct DiscoveryReport {
  bool initialised = false;  // false before Init and after UnInit: everything else is empty
  std::string directory;     // the library's folder, where producers and DiscoveryCfg.ini are looked for
  std::string configurationPath;
  bool configurationRead = false;
  bool skipEmptyInterfaces = false;
  bool searchGenTLPath = false;
  std::vector<std::string> genTLPathFolders;  // the GENICAM_GENTL64_PATH folders searched (searchGenTLPath)
  bool discoveryRan = false;                  // false until the first discovery after Init
  std::string request;                        // what the last discovery asked for
  std::vector<ProducerReport> producers;      // in the order the last discovery considered them
};

// The report of the last discovery (Discovery, DiscoveryByTLType, or the one CreateCameraBySN runs). Before the
// first discovery it lists the producers a discovery would consider, none tried yet.
TALVIR_API DiscoveryReport GetDiscoveryReport();

// The text for an OpenFailed status (ProducerReport::openStatus).
TALVIR_API const char* OpenStatusText(int32_t openStatus);
// The GenTL name of an error code ("GC_ERR_IO"); "GC_ERR_CUSTOM" for producer-specific codes.
TALVIR_API const char* GenTLErrorName(int32_t errorCode);

// One failed GenTL call. The pointers are valid only during the callback.
struct GenTLCallFailure {
  const char* producer;       // the producer's name as in ProducerReport::name
  const char* function;       // "IFGetNumDevices", ...
  const char* handleKind;     // "library", "system", "interface", "device", "data stream", "port", "event source",
                              // "event"
  const void* handle;         // the handle the call was made on; null for calls without one
  int32_t errorCode;          // what the function returned
  const char* errorName;      // GenTLErrorName(errorCode)
  const char* lastErrorText;  // the producer's GCGetLastError text right after the call; empty when it has none
  const char* line;           // all of the above as one line
};

using DiagnosticCallback = void (*)(const GenTLCallFailure& failure, void* context);

// Registers `callback` (null: none) with `context`, process-wide, from now on and across Init and UnInit. The
// callback runs on the thread that made the failed call, possibly on several threads at once, and must return
// quickly. When this function returns, the previous callback is no longer running and will not be called again.
// Calls from inside a callback are ignored, and GenTL failures caused by the callback itself are not reported.
TALVIR_API void SetDiagnosticCallback(DiagnosticCallback callback, void* context);

}  // namespace TALVIR

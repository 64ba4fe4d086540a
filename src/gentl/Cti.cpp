#include "gentl/Cti.h"

#include "gentl/CameraInfo.h"
#include "gentl/GenTLErrorText.h"
#include "gentl/TLTypeTable.h"

#include <talvir/TLType.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace TALVIR {
namespace {

// Time-out for the producer's interface and device list updates, in milliseconds.
constexpr uint64_t kUpdateListTimeoutMs = 1000;
// Size of the buffer for text answers of information queries.
constexpr size_t kInfoTextSize = 256;

std::string TextOf(const char* buffer, size_t capacity) { return std::string(buffer, strnlen(buffer, capacity)); }

std::string DecimalText(uint64_t value) {
  char text[64];
  std::snprintf(text, sizeof text, "%" PRIu64, value);
  return text;
}

// A producer-specific device information command and where its answer goes.
struct CSpecificCommand {
  int32_t command;
  bool numeric;
  uint32_t item;
};

// Camera Link grabbers: 1209 and 1208 are handled on their own below.
constexpr CSpecificCommand kCameraLinkCommands[] = {
    {1201, true, CustomInfo::CLInfo1201},  {1230, true, CustomInfo::CLInfo1230},  {1202, true, CustomInfo::CLInfo1202},
    {1205, false, CustomInfo::CLInfo1205}, {1203, false, CustomInfo::CLInfo1203}, {1207, false, CustomInfo::CLInfo1207},
    {1231, false, CustomInfo::CLInfo1231},
};
constexpr int32_t kCameraLinkProtocolCommand = 1209;
constexpr int32_t kCameraLinkSerialPortCommand = 1208;
constexpr const char* kCameraLinkSerialPortPrefix = "KORIX#CL_GRABBER#SERIAL";

constexpr CSpecificCommand kUsb3VisionCommands[] = {
    {1101, false, CustomInfo::U3VInfo1101},
    {1100, false, CustomInfo::U3VInfo1100},
    {1102, false, CustomInfo::U3VInfo1102},
};

// The report of the enumeration running on this thread: device information queries run inside FillCameraInfo,
// which an overriding producer class may call, so they reach the report through the thread.
thread_local CEnumerationReport* t_enumerationReport = nullptr;

class CEnumerationReportScope {
public:
  explicit CEnumerationReportScope(CEnumerationReport& report) : m_previous(t_enumerationReport) {
    t_enumerationReport = &report;
  }
  ~CEnumerationReportScope() { t_enumerationReport = m_previous; }
  CEnumerationReportScope(const CEnumerationReportScope&) = delete;
  CEnumerationReportScope& operator=(const CEnumerationReportScope&) = delete;

private:
  CEnumerationReport* m_previous;
};

DiscoveryNote Note(DiscoveryRule rule, std::string interfaceID, std::string deviceID, int32_t errorCode,
                   std::string text) {
  DiscoveryNote note;
  note.rule = rule;
  note.interfaceID = std::move(interfaceID);
  note.deviceID = std::move(deviceID);
  note.errorCode = errorCode;
  note.text = std::move(text);
  return note;
}

std::string CallFailure(const char* function, int32_t code) {
  return std::string(function) + " returned " + std::to_string(code) + " (" + GenTLErrorCodeName(code) + ")";
}

}  // namespace

CCti::CCti(std::string fileName, CCtiEnvironment environment)
    : m_fileName(std::move(fileName)), m_environment(std::move(environment)) {
  m_callContext.producer = m_fileName;
  m_loadReport.name = m_fileName;
  m_loadReport.path = m_environment.directory + m_fileName;
}

CCti::~CCti() {
  if (m_module == nullptr) {
    return;
  }
  {
    std::lock_guard<std::mutex> lock(m_cacheMutex);
    GiveUp(m_deviceCache);
  }
  if (m_systemHandle != nullptr) {
    for (std::unique_ptr<IGenTLModule>& interfaceModule : m_interfaces) {
      m_api.IFClose(interfaceModule->Handle());
      interfaceModule.reset();
    }
    m_interfaces.clear();
    m_api.TLClose(m_systemHandle);
    m_systemHandle = nullptr;
    m_systemPort.reset();
  }
  // Binding may have stopped before GCCloseLib.
  if (m_api.GCCloseLib != nullptr) {
    m_api.GCCloseLib();
  }
  Platform::FreeModule(m_module);
  m_module = nullptr;
}

bool CCti::Load() {
  m_module = Platform::LoadModule(m_environment.directory + m_fileName);
  if (m_module == nullptr) {
    m_loadReport.state = ProducerState::FileNotLoadable;
    m_loadReport.loaderError = Platform::LastModuleError();
    return false;
  }
  std::string missingFunction;
  const bool bound = BindGenTLFunctions(m_module, m_api, &m_callContext, &missingFunction);
  // Also for a producer that stays half bound: its close is still called and may fail.
  m_callContext.lastError = m_api.GCGetLastError.Raw();
  if (!bound) {
    m_loadReport.state = ProducerState::FunctionMissing;
    m_loadReport.missingFunction = missingFunction;
    return false;
  }
  // Optional (GenTL 1.6): many buffer information queries in one call.
  m_bufferInfoStacked =
      reinterpret_cast<GenTL::PFN_DSGetBufferInfoStacked>(Platform::FindSymbol(m_module, "DSGetBufferInfoStacked"));
  const int32_t status = OpenProducer();
  m_loadReport.openStatus = status;
  m_loadReport.openStatusText = OpenProducerStatusText(status);
  if (status != OpenProducerStatus::Ok) {
    m_loadReport.state = ProducerState::OpenFailed;
    return false;
  }
  m_loadReport.state = ProducerState::Loaded;
  return true;
}

int32_t CCti::OpenFailure(int32_t status, GenTL::GC_ERROR code) {
  m_loadReport.errorCode = code;
  // Asked at once, on the thread of the failed call: the producer keeps its last error per thread.
  m_loadReport.lastErrorText = ProducerLastErrorText(m_api.GCGetLastError.Raw());
  return status;
}

std::unique_ptr<IGenTLModule> CCti::MakeModuleRecord(void* handle) {
  if (m_environment.makeModulePort) {
    return m_environment.makeModulePort(*this, handle);
  }
  return std::make_unique<CBareModule>(handle);
}

int32_t CCti::OpenProducer() {
  GenTL::GC_ERROR code = m_api.GCInitLib();
  if (code != GenTL::GC_ERR_SUCCESS) {
    return OpenFailure(OpenProducerStatus::InitLibFailed, code);
  }
  code = m_api.TLOpen(&m_systemHandle);
  if (code != GenTL::GC_ERR_SUCCESS) {
    m_systemHandle = nullptr;
    return OpenFailure(OpenProducerStatus::TLOpenFailed, code);
  }
  m_systemPort = MakeModuleRecord(m_systemHandle);

  GenTL::bool8_t changed = 0;
  code = m_api.TLUpdateInterfaceList(m_systemHandle, &changed, kUpdateListTimeoutMs);
  if (code != GenTL::GC_ERR_SUCCESS) {
    return OpenFailure(OpenProducerStatus::UpdateInterfaceListFailed, code);
  }
  uint32_t interfaceCount = 0;
  code = m_api.TLGetNumInterfaces(m_systemHandle, &interfaceCount);
  if (code != GenTL::GC_ERR_SUCCESS) {
    return OpenFailure(OpenProducerStatus::GetNumInterfacesFailed, code);
  }
  if (interfaceCount == 0) {
    return OpenProducerStatus::NoInterface;
  }

  m_interfaces.clear();
  m_interfaceIDs.clear();
  // The size is set once and deliberately carries over from one call to the next, each call receiving the size the
  // previous one returned: an interface ID longer than the one before it fails the whole open.
  size_t idSize = kGenTLIDBufferSize;
  for (uint32_t index = 0; index < interfaceCount; ++index) {
    std::array<char, kGenTLIDBufferSize> id{};
    code = m_api.TLGetInterfaceID(m_systemHandle, index, id.data(), &idSize);
    if (code != GenTL::GC_ERR_SUCCESS) {
      return OpenFailure(OpenProducerStatus::GetInterfaceIDFailed, code);
    }
    GenTL::IF_HANDLE interfaceHandle = nullptr;
    const std::string interfaceID = TextOf(id.data(), id.size());
    code = m_api.TLOpenInterface(m_systemHandle, interfaceID.c_str(), &interfaceHandle);
    if (code != GenTL::GC_ERR_SUCCESS) {
      return OpenFailure(OpenProducerStatus::OpenInterfaceFailed, code);
    }
    m_interfaces.push_back(MakeModuleRecord(interfaceHandle));
    m_interfaceIDs.push_back(interfaceID);
  }
  return OpenProducerStatus::Ok;
}

bool CCti::EnumDevices(std::list<CCameraInfo*>& out) {
  CEnumerationReport report;
  report.ran = true;
  for (const std::string& id : m_interfaceIDs) {
    InterfaceReport interfaceReport;
    interfaceReport.id = id;
    report.interfaces.push_back(interfaceReport);
  }
  bool succeeded = false;
  try {
    CEnumerationReportScope scope(report);
    succeeded = EnumerateInterfaces(out, report);
  } catch (...) {
    std::lock_guard<std::mutex> lock(m_reportMutex);
    m_lastEnumeration = std::move(report);
    throw;
  }
  report.succeeded = succeeded;
  if (!succeeded) {
    report.devicesListed = 0;
    report.notes.push_back(Note(DiscoveryRule::EnumerationFailed, "", "", 0,
                                "the enumeration failed, so this discovery lists none of this producer's devices; "
                                "its earlier device list stays in force"));
  }
  std::lock_guard<std::mutex> lock(m_reportMutex);
  m_lastEnumeration = std::move(report);
  return succeeded;
}

bool CCti::EnumerateInterfaces(std::list<CCameraInfo*>& out, CEnumerationReport& report) {
  if (m_interfaces.empty()) {
    return false;
  }
  for (size_t interfaceIndex = 0; interfaceIndex < m_interfaces.size(); ++interfaceIndex) {
    IGenTLModule* const interfaceModule = m_interfaces[interfaceIndex].get();
    InterfaceReport& interfaceReport = report.interfaces.at(interfaceIndex);
    void* const interfaceHandle = interfaceModule->Handle();
    GenTL::bool8_t changed = 0;
    GenTL::GC_ERROR code = m_api.IFUpdateDeviceList(interfaceHandle, &changed, kUpdateListTimeoutMs);
    if (code != GenTL::GC_ERR_SUCCESS) {
      report.notes.push_back(Note(DiscoveryRule::InterfaceUpdateFailed, interfaceReport.id, "", code,
                                  CallFailure("IFUpdateDeviceList", code) + ": the whole producer lists nothing"));
      return false;
    }
    uint32_t deviceCount = 0;
    code = m_api.IFGetNumDevices(interfaceHandle, &deviceCount);
    if (code != GenTL::GC_ERR_SUCCESS) {
      report.notes.push_back(Note(DiscoveryRule::InterfaceCountFailed, interfaceReport.id, "", code,
                                  CallFailure("IFGetNumDevices", code) + ": the whole producer lists nothing"));
      return false;
    }
    interfaceReport.counted = true;
    interfaceReport.deviceCount = deviceCount;
    if (deviceCount == 0) {
      if (m_environment.skipEmptyInterfaces) {
        report.notes.push_back(Note(DiscoveryRule::EmptyInterfaceSkipped, interfaceReport.id, "", 0,
                                    "no device on this interface; skipped (SkipEmptyInterfaces)"));
        continue;
      }
      // One empty interface fails the whole enumeration, so that the previous device list stays in force.
      report.notes.push_back(Note(DiscoveryRule::EmptyInterface, interfaceReport.id, "", 0,
                                  "no device on this interface, so the whole producer lists nothing (set "
                                  "SkipEmptyInterfaces=1 in DiscoveryCfg.ini to skip such interfaces)"));
      return false;
    }
    for (uint32_t index = 0; index < deviceCount; ++index) {
      std::array<char, kGenTLIDBufferSize> id{};
      size_t idSize = id.size();
      code = m_api.IFGetDeviceID(interfaceHandle, index, id.data(), &idSize);
      if (code != GenTL::GC_ERR_SUCCESS) {
        report.notes.push_back(Note(DiscoveryRule::DeviceIDFailed, interfaceReport.id, "", code,
                                    CallFailure("IFGetDeviceID", code) + " for device index " + std::to_string(index) +
                                        ": that device is left out"));
        continue;
      }
      // The terminating zero goes at the returned size; a producer that claims the whole buffer or more leaves no
      // room for it.
      if (idSize >= id.size()) {
        report.notes.push_back(Note(DiscoveryRule::DeviceIDTooLong, interfaceReport.id, "", 0,
                                    "device index " + std::to_string(index) + " has an ID of " +
                                        std::to_string(idSize) + " bytes, more than the 1023 that fit"));
        throw std::out_of_range("device ID of " + std::to_string(idSize) + " bytes from producer " + m_fileName +
                                " does not fit the " + std::to_string(id.size()) + "-byte ID buffer");
      }
      id[idSize] = '\0';
      auto* record = new CCameraInfo(this, interfaceModule);
      record->m_deviceID = TextOf(id.data(), id.size());
      record->m_producerDeviceID = record->m_deviceID;
      record->m_customInfo[CustomInfo::ProducerFile] = m_fileName;
      out.push_back(record);
      FillCameraInfo(*record, record->m_deviceID);
      ++interfaceReport.devicesListed;
      ++report.devicesListed;
    }
  }
  return true;
}

std::string CCti::InterfaceIDOf(const IGenTLModule& interfaceModule) const {
  for (size_t index = 0; index < m_interfaces.size() && index < m_interfaceIDs.size(); ++index) {
    if (m_interfaces[index].get() == &interfaceModule) {
      return m_interfaceIDs[index];
    }
  }
  return std::string();
}

CEnumerationReport CCti::LastEnumeration() const {
  std::lock_guard<std::mutex> lock(m_reportMutex);
  return m_lastEnumeration;
}

void CCti::NoteForEnumeration(DiscoveryNote note) {
  if (t_enumerationReport != nullptr) {
    t_enumerationReport->notes.push_back(std::move(note));
  }
}

bool CCti::QueryDeviceBuffer(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command, void* buffer,
                             size_t size, GenTL::INFO_DATATYPE* type, size_t* answeredSize) {
  GenTL::INFO_DATATYPE answerType = GenTL::INFO_DATATYPE_UNKNOWN;
  size_t bufferSize = size;
  const GenTL::GC_ERROR code = m_api.IFGetDeviceInfo(interfaceModule.Handle(), deviceID.c_str(), command, &answerType,
                                                     buffer, &bufferSize);
  if (code != GenTL::GC_ERR_SUCCESS) {
    NoteForEnumeration(Note(DiscoveryRule::InfoQueryFailed, InterfaceIDOf(interfaceModule), deviceID, code,
                            CallFailure("IFGetDeviceInfo", code) + " for command " + std::to_string(command) +
                                ": the record keeps that field empty"));
    return false;
  }
  if (type != nullptr) {
    *type = answerType;
  }
  if (answeredSize != nullptr) {
    *answeredSize = bufferSize;
  }
  return true;
}

bool CCti::QueryDeviceText(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command,
                           std::string& text) {
  std::array<char, kInfoTextSize> buffer{};
  if (!QueryDeviceBuffer(interfaceModule, deviceID, command, buffer.data(), buffer.size())) {
    return false;
  }
  text = TextOf(buffer.data(), buffer.size());
  return true;
}

bool CCti::QueryDeviceNumber(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command,
                             uint64_t& value) {
  // Narrower answers (32-bit access status) fill the low bytes of the zeroed value.
  uint64_t answer = 0;
  if (!QueryDeviceBuffer(interfaceModule, deviceID, command, &answer, sizeof answer)) {
    return false;
  }
  value = answer;
  return true;
}

void CCti::FillCameraInfo(CCameraInfo& record, const std::string& deviceID) {
  IGenTLModule* const interfaceModule = record.Interface();
  if (interfaceModule == nullptr) {
    return;
  }
  QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_VENDOR, record.m_vendor);
  std::string tlTypeName;
  if (QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_TLTYPE, tlTypeName)) {
    record.m_tlType = TLTypeFromName(tlTypeName);
  }
  QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_MODEL, record.m_model);
  QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_DISPLAYNAME, record.m_displayName);
  QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_USER_DEFINED_NAME, record.m_userDefinedName);
  QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_SERIAL_NUMBER, record.m_serialNumber);
  QueryDeviceText(*interfaceModule, deviceID, GenTL::DEVICE_INFO_VERSION, record.m_version);
  uint64_t number = 0;
  if (QueryDeviceNumber(*interfaceModule, deviceID, GenTL::DEVICE_INFO_ACCESS_STATUS, number)) {
    record.m_accessStatus = static_cast<uint32_t>(number);
  }
  QueryDeviceNumber(*interfaceModule, deviceID, GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY, record.m_timestampFrequency);
  ProducerSpecificInfo(record, deviceID, *interfaceModule);
}

void CCti::ProducerSpecificInfo(CCameraInfo& record, const std::string& deviceID, IGenTLModule& interfaceModule) {
  const uint32_t producerType = ProducerTLType();
  if (producerType == TLType::CL) {
    for (const CSpecificCommand& specific : kCameraLinkCommands) {
      if (specific.numeric) {
        uint64_t value = 0;
        if (QueryDeviceNumber(interfaceModule, deviceID, specific.command, value)) {
          record.m_customInfo[specific.item] = DecimalText(value);
        }
      } else {
        std::string text;
        if (QueryDeviceText(interfaceModule, deviceID, specific.command, text)) {
          record.m_customInfo[specific.item] = text;
        }
      }
    }
    // The grabber's own answer names its protocol; what the camera behind it needs is our protocol driver.
    std::string ignored;
    if (QueryDeviceText(interfaceModule, deviceID, kCameraLinkProtocolCommand, ignored)) {
      record.m_customInfo[CustomInfo::CLProtocolDescriptor] =
          m_environment.clProtocolDescriptor ? m_environment.clProtocolDescriptor() : std::string();
    }
    std::string serialPort;
    if (QueryDeviceText(interfaceModule, deviceID, kCameraLinkSerialPortCommand, serialPort)) {
      record.m_customInfo[CustomInfo::CLGrabberSerialPort] = kCameraLinkSerialPortPrefix + serialPort;
    }
  } else if (producerType == TLType::U3V) {
    std::string fullID;
    if (QueryDeviceText(interfaceModule, deviceID, GenTL::DEVICE_INFO_ID, fullID)) {
      const size_t blank = fullID.find(' ');
      if (blank != std::string::npos) {
        record.m_customInfo[CustomInfo::U3VDeviceIDTail] = fullID.substr(blank + 1);
      }
    }
    for (const CSpecificCommand& specific : kUsb3VisionCommands) {
      std::string text;
      if (QueryDeviceText(interfaceModule, deviceID, specific.command, text)) {
        record.m_customInfo[specific.item] = text;
      }
    }
  }
}

uint32_t CCti::ProducerTLType() const {
  if (m_interfaces.empty() || m_api.IFGetInfo == nullptr) {
    return 0;
  }
  std::array<char, kInfoTextSize> buffer{};
  size_t size = buffer.size();
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  if (m_api.IFGetInfo(m_interfaces.front()->Handle(), GenTL::INTERFACE_INFO_TLTYPE, &type, buffer.data(), &size) !=
      GenTL::GC_ERR_SUCCESS) {
    return 0;
  }
  return TLTypeFromName(TextOf(buffer.data(), buffer.size()));
}

void CCti::GiveUp(std::list<CCameraInfo*>& records) {
  for (CCameraInfo* record : records) {
    record->Destroy();
  }
  records.clear();
}

void CCti::Discover(std::list<ICameraInfo*>* out) {
  std::list<CCameraInfo*> fresh;
  bool enumerated = false;
  try {
    enumerated = EnumDevices(fresh);
  } catch (...) {
    GiveUp(fresh);
    throw;
  }
  if (!enumerated) {
    GiveUp(fresh);
    return;
  }
  std::lock_guard<std::mutex> lock(m_cacheMutex);
  GiveUp(m_deviceCache);
  m_deviceCache = std::move(fresh);
  // References are taken before the mutex goes: a concurrent discovery of the same producer could otherwise drop
  // the cache's reference, and so the record, first.
  if (out != nullptr) {
    for (CCameraInfo* record : m_deviceCache) {
      if (record->IsReleased()) {
        continue;
      }
      record->AddRef();
      out->push_back(record);
    }
  }
}

ICameraInfo* CCti::FindBySerial(const std::string& serial) {
  std::lock_guard<std::mutex> lock(m_cacheMutex);
  for (CCameraInfo* record : m_deviceCache) {
    if (record->m_serialNumber == serial) {
      record->AddRef();
      return record;
    }
  }
  return nullptr;
}

}  // namespace TALVIR

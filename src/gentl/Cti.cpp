#include "gentl/Cti.h"

#include "gentl/CameraInfo.h"
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

std::string TextOf(const char* buffer, size_t capacity) {
  return std::string(buffer, strnlen(buffer, capacity));
}

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

} // namespace

CCti::CCti(std::string fileName, CCtiEnvironment environment)
    : m_fileName(std::move(fileName)), m_environment(std::move(environment)) {}

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
    return false;
  }
  if (!BindGenTLFunctions(m_module, m_api)) {
    return false;
  }
  return OpenProducer() == OpenProducerStatus::Ok;
}

std::unique_ptr<IGenTLModule> CCti::MakeModuleRecord(void* handle) {
  if (m_environment.makeModulePort) {
    return m_environment.makeModulePort(*this, handle);
  }
  return std::make_unique<CBareModule>(handle);
}

int32_t CCti::OpenProducer() {
  if (m_api.GCInitLib() != GenTL::GC_ERR_SUCCESS) {
    return OpenProducerStatus::InitLibFailed;
  }
  if (m_api.TLOpen(&m_systemHandle) != GenTL::GC_ERR_SUCCESS) {
    m_systemHandle = nullptr;
    return OpenProducerStatus::TLOpenFailed;
  }
  m_systemPort = MakeModuleRecord(m_systemHandle);

  GenTL::bool8_t changed = 0;
  if (m_api.TLUpdateInterfaceList(m_systemHandle, &changed, kUpdateListTimeoutMs) != GenTL::GC_ERR_SUCCESS) {
    return OpenProducerStatus::UpdateInterfaceListFailed;
  }
  uint32_t interfaceCount = 0;
  if (m_api.TLGetNumInterfaces(m_systemHandle, &interfaceCount) != GenTL::GC_ERR_SUCCESS) {
    return OpenProducerStatus::GetNumInterfacesFailed;
  }
  if (interfaceCount == 0) {
    return OpenProducerStatus::NoInterface;
  }

  m_interfaces.clear();
  // The size is set once and deliberately carries over from one call to the next, each call receiving the size the
  // previous one returned: an interface ID longer than the one before it fails the whole open.
  size_t idSize = kGenTLIDBufferSize;
  for (uint32_t index = 0; index < interfaceCount; ++index) {
    std::array<char, kGenTLIDBufferSize> id{};
    if (m_api.TLGetInterfaceID(m_systemHandle, index, id.data(), &idSize) != GenTL::GC_ERR_SUCCESS) {
      return OpenProducerStatus::GetInterfaceIDFailed;
    }
    GenTL::IF_HANDLE interfaceHandle = nullptr;
    const std::string interfaceID = TextOf(id.data(), id.size());
    if (m_api.TLOpenInterface(m_systemHandle, interfaceID.c_str(), &interfaceHandle) != GenTL::GC_ERR_SUCCESS) {
      return OpenProducerStatus::OpenInterfaceFailed;
    }
    m_interfaces.push_back(MakeModuleRecord(interfaceHandle));
  }
  return OpenProducerStatus::Ok;
}

bool CCti::EnumDevices(std::list<CCameraInfo*>& out) {
  if (m_interfaces.empty()) {
    return false;
  }
  for (const std::unique_ptr<IGenTLModule>& interfaceModule : m_interfaces) {
    void* const interfaceHandle = interfaceModule->Handle();
    GenTL::bool8_t changed = 0;
    if (m_api.IFUpdateDeviceList(interfaceHandle, &changed, kUpdateListTimeoutMs) != GenTL::GC_ERR_SUCCESS) {
      return false;
    }
    uint32_t deviceCount = 0;
    if (m_api.IFGetNumDevices(interfaceHandle, &deviceCount) != GenTL::GC_ERR_SUCCESS || deviceCount == 0) {
      return false;
    }
    for (uint32_t index = 0; index < deviceCount; ++index) {
      std::array<char, kGenTLIDBufferSize> id{};
      size_t idSize = id.size();
      if (m_api.IFGetDeviceID(interfaceHandle, index, id.data(), &idSize) != GenTL::GC_ERR_SUCCESS) {
        continue;
      }
      // The terminating zero goes at the returned size; a producer that claims the whole buffer or more leaves no
      // room for it.
      if (idSize >= id.size()) {
        throw std::out_of_range("device ID of " + std::to_string(idSize) + " bytes from producer " + m_fileName +
                                " does not fit the " + std::to_string(id.size()) + "-byte ID buffer");
      }
      id[idSize] = '\0';
      auto* record = new CCameraInfo(this, interfaceModule.get());
      record->m_deviceID = TextOf(id.data(), id.size());
      record->m_producerDeviceID = record->m_deviceID;
      record->m_customInfo[CustomInfo::ProducerFile] = m_fileName;
      out.push_back(record);
      FillCameraInfo(*record, record->m_deviceID);
    }
  }
  return true;
}

bool CCti::QueryDeviceBuffer(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command, void* buffer,
                             size_t size) {
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  size_t bufferSize = size;
  return m_api.IFGetDeviceInfo(interfaceModule.Handle(), deviceID.c_str(), command, &type, buffer, &bufferSize) ==
         GenTL::GC_ERR_SUCCESS;
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

} // namespace TALVIR

#pragma once
// One loaded GenTL producer: its library, its function table, its system and interface modules, and the device
// records of its last successful enumeration.
#include "gentl/GenTLFunctionTable.h"
#include "gentl/GenTLModule.h"

#include <talvir/Diagnostics.h>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace TALVIR {

class CCameraInfo;
class ICameraInfo;

// What a producer needs from the code that creates it.
struct CCtiEnvironment {
  // Folder the producer file is loaded from, ending with a separator (the library's own folder).
  std::string directory;
  // Makes the record of each opened system and interface module; null gives records without a port.
  ModulePortFactory makeModulePort;
  // The Camera Link protocol descriptor stored with Camera Link grabber devices; null stores an empty text.
  std::function<std::string()> clProtocolDescriptor;
  // Interfaces without devices are skipped instead of failing the whole enumeration (DiscoveryCfg.ini,
  // SkipEmptyInterfaces); off by default.
  bool skipEmptyInterfaces = false;
};

// What the last enumeration of a producer saw: its interfaces, and every rule that kept devices out.
struct CEnumerationReport {
  bool ran = false;
  bool succeeded = false;
  uint32_t devicesListed = 0;
  std::vector<InterfaceReport> interfaces;
  std::vector<DiscoveryNote> notes;
};

// Status codes of OpenProducer.
namespace OpenProducerStatus {
constexpr int32_t Ok = 0;
constexpr int32_t InitLibFailed = -1;
constexpr int32_t TLOpenFailed = -2;
constexpr int32_t UpdateInterfaceListFailed = -3;
constexpr int32_t GetNumInterfacesFailed = -4;
constexpr int32_t NoInterface = -5;
constexpr int32_t GetInterfaceIDFailed = -6;
constexpr int32_t OpenInterfaceFailed = -7;
}  // namespace OpenProducerStatus

// Size of the buffers for interface and device IDs; an ID needs its terminating zero inside.
constexpr size_t kGenTLIDBufferSize = 1024;

class CCti {
public:
  CCti(std::string fileName, CCtiEnvironment environment);
  virtual ~CCti();
  CCti(const CCti&) = delete;
  CCti& operator=(const CCti&) = delete;

  // Enumerates the devices of every interface into new records appended to `out` (each with the cache's one
  // reference). False when there is no interface or any interface fails to update, to count, or counts zero
  // devices: one empty interface fails the whole enumeration, so that the previous records stay in force.
  // Throws std::out_of_range for a device ID that leaves no room for its terminating zero.
  virtual bool EnumDevices(std::list<CCameraInfo*>& out);
  // Asks the producer for one device's information and stores it in `record`; a failing query leaves its field.
  virtual void FillCameraInfo(CCameraInfo& record, const std::string& deviceID);
  // Initialises the GenTL library, opens the system module and every interface: OpenProducerStatus.
  virtual int32_t OpenProducer();

  // Loads the producer file from the environment's folder, binds its functions and opens it. False on any failure;
  // the object must then be destroyed (which unloads the library).
  bool Load();
  // Enumerates the devices. On success the new records replace the device cache and, when `out` is given, are
  // appended to it, each with one reference taken for the caller. On failure the old cache stays and nothing is
  // appended.
  void Discover(std::list<ICameraInfo*>* out);
  // The first cached record whose serial number equals `serial` exactly, with one reference added; null if none.
  ICameraInfo* FindBySerial(const std::string& serial);

  // The transport-layer type (TLType bit) that the producer reports for its first interface; 0 when unknown.
  uint32_t ProducerTLType() const;

  // How loading went: state, missing function, open status with the failing call's error and last-error text.
  ProducerReport LoadReport() const { return m_loadReport; }
  // The report of the last enumeration (empty until one ran).
  CEnumerationReport LastEnumeration() const;
  // The IDs of the opened interfaces, in order.
  const std::vector<std::string>& InterfaceIDs() const { return m_interfaceIDs; }

  const std::string& FileName() const { return m_fileName; }
  const CGenTLFunctionTable& Api() const { return m_api; }
  // DSGetBufferInfoStacked when the producer exports it (GenTL 1.6), else null. Calls through it are not reported to
  // the diagnostic callback: each query's own result says whether it failed.
  GenTL::PFN_DSGetBufferInfoStacked BufferInfoStacked() const { return m_bufferInfoStacked; }
  bool IsLoaded() const { return m_module != nullptr; }
  void* SystemHandle() const { return m_systemHandle; }
  IGenTLModule* SystemModule() const { return m_systemPort.get(); }
  size_t InterfaceCount() const { return m_interfaces.size(); }
  IGenTLModule* Interface(size_t index) const { return m_interfaces.at(index).get(); }

protected:
  // One device information query into a zeroed text buffer of 256 bytes; false when the producer refuses.
  bool QueryDeviceText(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command, std::string& text);
  // One numeric device information query of at most 8 bytes into a zeroed 64-bit value.
  bool QueryDeviceNumber(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command, uint64_t& value);
  // One device information query into a caller's buffer of `size` bytes; the answer's type and size go to `type`
  // and `answeredSize` when given. A refused query is noted in the running enumeration's report.
  bool QueryDeviceBuffer(IGenTLModule& interfaceModule, const std::string& deviceID, int32_t command, void* buffer,
                         size_t size, GenTL::INFO_DATATYPE* type = nullptr, size_t* answeredSize = nullptr);
  // Adds a note to the report of the enumeration running on this thread, if any.
  static void NoteForEnumeration(DiscoveryNote note);
  // The ID of one of this producer's interface records; empty for another record.
  std::string InterfaceIDOf(const IGenTLModule& interfaceModule) const;

private:
  bool EnumerateInterfaces(std::list<CCameraInfo*>& out, CEnumerationReport& report);
  // Records why opening stopped (the GenTL error of the failing call and the producer's text) and returns `status`.
  int32_t OpenFailure(int32_t status, GenTL::GC_ERROR code);
  void ProducerSpecificInfo(CCameraInfo& record, const std::string& deviceID, IGenTLModule& interfaceModule);
  std::unique_ptr<IGenTLModule> MakeModuleRecord(void* handle);
  static void GiveUp(std::list<CCameraInfo*>& records);

  std::string m_fileName;
  CCtiEnvironment m_environment;
  Platform::ModuleHandle m_module = nullptr;
  void* m_systemHandle = nullptr;
  std::unique_ptr<IGenTLModule> m_systemPort;
  std::vector<std::unique_ptr<IGenTLModule>> m_interfaces;
  std::vector<std::string> m_interfaceIDs;
  std::list<CCameraInfo*> m_deviceCache;
  std::mutex m_cacheMutex;
  CGenTLCallContext m_callContext;
  CGenTLFunctionTable m_api;
  GenTL::PFN_DSGetBufferInfoStacked m_bufferInfoStacked = nullptr;
  ProducerReport m_loadReport;
  mutable std::mutex m_reportMutex;
  CEnumerationReport m_lastEnumeration;
};

}  // namespace TALVIR

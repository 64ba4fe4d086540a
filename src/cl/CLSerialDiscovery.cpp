#include "cl/CLSerialDiscovery.h"

#include "cl/CLProtocolTemplate.h"
#include "gentl/CameraInfo.h"

#include <talvir/CustomInfo.h>
#include <talvir/TLType.h>

#include <new>
#include <string>

namespace TALVIR {

CCameraInfo* MakeCLSerialRecord(const CLProbeRecord& probe) {
  auto* const record = new (std::nothrow) CCameraInfo(nullptr, nullptr);
  if (record == nullptr) {
    return nullptr;
  }
  record->m_tlType = TLType::CLSerialOnly;
  record->m_deviceID = probe.deviceId;
  record->m_serialNumber = probe.serialNumber;
  record->m_vendor = probe.manufacturer;
  record->m_model = probe.model;
  record->m_version = probe.version;
  record->m_userDefinedName = probe.extra;
  record->m_displayName = std::string(probe.model) + " (" + probe.portId + ")";
  record->m_customInfo[CustomInfo::CLProtocolDescriptor] = probe.deviceId;
  record->m_customInfo[CustomInfo::CLGrabberSerialPort] = probe.portId;
  record->m_customInfo[CustomInfo::CLSerialFamily] = probe.family;
  return record;
}

std::list<ICameraInfo*> DiscoverCLSerialCameras() {
  std::list<CLProbeRecord> found;
  {
    CCLProber prober(GetCLProtocolDeviceIDTemplate(), &found);
    prober.ProbeAll();
  }
  std::list<ICameraInfo*> records;
  for (const CLProbeRecord& probe : found) {
    CCameraInfo* const record = MakeCLSerialRecord(probe);
    if (record != nullptr) {
      records.push_back(record);
    }
  }
  return records;
}

}  // namespace TALVIR

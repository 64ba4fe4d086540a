#include "gentl/GevCti.h"

#include "gentl/CameraInfo.h"
#include "gentl/GevDeviceRecord.h"

namespace TALVIR {

CGevCti::~CGevCti() {
  Platform::FreeModule(m_extraModule);
  m_extraModule = nullptr;
}

void CGevCti::FillCameraInfo(CCameraInfo& record, const std::string& deviceID) {
  CCti::FillCameraInfo(record, deviceID);
  IGenTLModule* const interfaceModule = record.Interface();
  if (interfaceModule == nullptr) {
    return;
  }
  GevDeviceRecord gevRecord{};
  // A producer without the GigE record leaves the standard information in place.
  if (!QueryDeviceBuffer(*interfaceModule, deviceID, kGevDeviceRecordCommand, gevRecord.data(), gevRecord.size())) {
    return;
  }
  ApplyGevDeviceRecord(gevRecord, record);
}

} // namespace TALVIR

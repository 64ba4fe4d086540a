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
  // Zeroed, so that no byte a producer leaves unwritten reaches the record.
  GevDeviceRecord gevRecord{};
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  size_t answeredSize = 0;
  // A producer without the GigE record leaves the standard information in place.
  if (!QueryDeviceBuffer(*interfaceModule, deviceID, kGevDeviceRecordCommand, gevRecord.data(), gevRecord.size(), &type,
                         &answeredSize)) {
    return;
  }
  // Commands above 1000 are each producer's own: another producer's 1001 may mean something else entirely. Only
  // a buffer of exactly the record's size is the record.
  if (type != GenTL::INFO_DATATYPE_BUFFER || answeredSize != kGevDeviceRecordSize) {
    DiscoveryNote note;
    note.rule = DiscoveryRule::GigERecordIgnored;
    note.interfaceID = InterfaceIDOf(*interfaceModule);
    note.deviceID = deviceID;
    note.text = "command " + std::to_string(kGevDeviceRecordCommand) + " answered type " + std::to_string(type) +
                " with " + std::to_string(answeredSize) + " bytes, not the " + std::to_string(kGevDeviceRecordSize) +
                "-byte GigE device record (a buffer): the record keeps its standard fields";
    NoteForEnumeration(std::move(note));
    return;
  }
  ApplyGevDeviceRecord(gevRecord, record);
}

}  // namespace TALVIR

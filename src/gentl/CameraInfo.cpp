#include "gentl/CameraInfo.h"

#include <talvir/TLType.h>

#include <cstring>

namespace TALVIR {
namespace {

bool SameText(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) {
    return a == b;
  }
  return std::strcmp(a, b) == 0;
}

}  // namespace

CCameraInfo::CCameraInfo(CCti* producer, IGenTLModule* interfaceModule)
    : m_producer(producer), m_interface(interfaceModule) {}

const char* CCameraInfo::GetCustomInfo(uint32_t item) const {
  const auto found = m_customInfo.find(item);
  return found == m_customInfo.end() ? nullptr : found->second.c_str();
}

bool SameDevice(const CCameraInfo& record, const ICameraInfo* other) {
  if (other == nullptr || record.GetTLType() == TLType::CLSerialOnly) {
    return false;
  }
  // Records that no producer of ours made cannot describe one of our devices.
  const auto* otherRecord = dynamic_cast<const CCameraInfo*>(other);
  if (otherRecord == nullptr) {
    return false;
  }
  if (record.Producer() != otherRecord->Producer() || record.GetTLType() != otherRecord->GetTLType() ||
      record.m_deviceID != otherRecord->m_deviceID || record.m_serialNumber != otherRecord->m_serialNumber ||
      record.m_vendor != otherRecord->m_vendor || record.m_model != otherRecord->m_model) {
    return false;
  }
  if (record.GetTLType() != TLType::GEV) {
    return true;
  }
  for (uint32_t item : {CustomInfo::GevIPAddress, CustomInfo::GevMACAddress, CustomInfo::GevAddress6}) {
    if (!SameText(record.GetCustomInfo(item), otherRecord->GetCustomInfo(item))) {
      return false;
    }
  }
  return true;
}

}  // namespace TALVIR

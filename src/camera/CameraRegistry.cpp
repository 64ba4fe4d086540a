#include "camera/CameraRegistry.h"

#include "gentl/CameraInfo.h"

#include <talvir/TLType.h>

namespace TALVIR {

CCameraRegistry::CCameraRegistry() = default;

CCameraRegistry::~CCameraRegistry() = default;

ICamera* CCameraRegistry::CreateCamera(ICameraInfo* info) {
  if (info == nullptr) {
    return nullptr;
  }
  if (info->GetTLType() == TLType::CLSerialOnly) {
    // Cameras known only by their serial port are made by the Camera Link path, which does not exist yet.
    return nullptr;
  }
  const auto* record = dynamic_cast<const CCameraInfo*>(info);
  if (record == nullptr || record->Producer() == nullptr) {
    return nullptr;
  }
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  // No camera class yet: nothing to find and nothing to make.
  return nullptr;
}

} // namespace TALVIR

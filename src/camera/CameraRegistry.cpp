#include "camera/CameraRegistry.h"

#include "camera/Camera.h"
#include "gentl/CameraInfo.h"

#include <talvir/TLType.h>

#include <new>

namespace TALVIR {
namespace {

// The camera class of a transport. GigE Vision, USB3 Vision and Camera Link frame grabbers get their own classes
// once their transport specifics exist; until then they are served by the common camera.
CCamera* MakeCamera(CCameraInfo* info, CCameraRegistry* registry) {
  switch (info->GetTLType()) {
  case TLType::GEV:
  case TLType::U3V:
  case TLType::CL:
  case TLType::CLHS:
  default:
    return new (std::nothrow) CCamera(info, registry);
  }
}

} // namespace

CCameraRegistry::CCameraRegistry() {
  m_cameras.max_load_factor(1.0f);
}

CCameraRegistry::~CCameraRegistry() {
  std::unordered_set<CCamera*> cameras;
  {
    std::lock_guard<std::recursive_mutex> lock(m_lock);
    cameras.swap(m_cameras);
  }
  for (CCamera* camera : cameras) {
    camera->Release();
  }
}

ICamera* CCameraRegistry::CreateCamera(ICameraInfo* info) {
  if (info == nullptr) {
    return nullptr;
  }
  if (info->GetTLType() == TLType::CLSerialOnly) {
    // Cameras known only by their serial port are made by the Camera Link path, which does not exist yet.
    return nullptr;
  }
  auto* const record = dynamic_cast<CCameraInfo*>(info);
  if (record == nullptr || record->Producer() == nullptr) {
    return nullptr;
  }
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  for (CCamera* camera : m_cameras) {
    const auto* own = dynamic_cast<const CCameraInfo*>(camera->GetCameraInfo());
    if (own != nullptr && SameDevice(*own, record)) {
      return camera;
    }
  }
  return MakeCamera(record, this);
}

void CCameraRegistry::AddCamera(CCamera* camera) {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  m_cameras.insert(camera);
}

void CCameraRegistry::RemoveCamera(CCamera* camera) {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  m_cameras.erase(camera);
}

size_t CCameraRegistry::CameraCount() {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  return m_cameras.size();
}

} // namespace TALVIR

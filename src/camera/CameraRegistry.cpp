#include "camera/CameraRegistry.h"

#include "camera/Camera.h"
#include "camera/GevCamera.h"
#include "camera/HelperLibrary.h"
#include "camera/U3vCamera.h"
#include "gentl/CameraInfo.h"

#include <talvir/CustomInfo.h>
#include <talvir/TLType.h>

#include <cstdio>
#include <cstring>
#include <new>

namespace TALVIR {
namespace {

// The registry the status handlers work on, and what keeps it from going while one of them runs. Recursive: a
// handler's notification may reach code that takes it again.
std::recursive_mutex g_currentLock;
CCameraRegistry* g_current = nullptr;

const char* AddressTextOf(ICameraInfo& info) { return info.GetCustomInfo(CustomInfo::GevIPAddress); }
const char* SerialOf(ICameraInfo& info) { return info.GetSerialNumber(); }

// The GigE address's dotted text, least significant byte first, so that an address in network byte order prints
// in its usual order.
constexpr size_t kAddressTextSize = 16;
// U3V identifiers are compared with serial numbers over this many characters.
constexpr size_t kU3vCompareLength = 8;

}  // namespace

CCameraRegistry::CCameraRegistry(const std::string& helperName, const std::string& u3vProducerName) {
  m_cameras.max_load_factor(1.0f);
  {
    std::lock_guard<std::recursive_mutex> lock(g_currentLock);
    g_current = this;
  }
  CHelperLibrary& helper = CHelperLibrary::Process();
  helper.Load(helperName, &CCameraRegistry::OnGevStatus);
  m_helperName = helper.IsLoaded() ? helper.Name() : std::string();
  m_u3vModule = Platform::LoadModule(u3vProducerName);
  if (m_u3vModule != nullptr) {
    m_u3vName = u3vProducerName;
    const auto hook =
        reinterpret_cast<SetU3VCameraStatusCallbackFn>(Platform::FindSymbol(m_u3vModule, "SetU3VCameraStatusCallback"));
    if (hook != nullptr) {
      hook(&CCameraRegistry::OnU3vStatus);
    }
  }
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
  {
    // Waits for a status handler that is still at work.
    std::lock_guard<std::recursive_mutex> lock(g_currentLock);
    if (g_current == this) {
      g_current = nullptr;
    }
  }
  Platform::FreeModule(m_u3vModule);
  m_u3vModule = nullptr;
  m_u3vName.clear();
  CHelperLibrary::Process().Free();
  m_helperName.clear();
}

ICamera* CCameraRegistry::CreateCamera(ICameraInfo* info) {
  if (info == nullptr) {
    return nullptr;
  }
  if (info->GetTLType() == TLType::CLSerialOnly) {
    return CreateSerialOnlyCamera();
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
  return MakeCamera(record);
}

void CCameraRegistry::SetCameraLinkFactory(CameraLinkFactory factory) {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  m_cameraLinkFactory = std::move(factory);
}

ICamera* CCameraRegistry::CreateSerialOnlyCamera() {
  CameraLinkFactory factory;
  {
    std::lock_guard<std::recursive_mutex> lock(m_lock);
    factory = m_cameraLinkFactory;
  }
  if (!factory) {
    return nullptr;
  }
  auto* const record = new (std::nothrow) CCameraInfo(nullptr, nullptr);
  if (record == nullptr) {
    return nullptr;
  }
  record->m_tlType = TLType::CLSerialOnly;
  CCamera* const camera = factory(record, this);
  // The camera holds its own reference; the creator's goes.
  record->ReleaseRef();
  return camera;
}

CCamera* CCameraRegistry::MakeCamera(CCameraInfo* info) {
  switch (info->GetTLType()) {
  case TLType::GEV: return new (std::nothrow) CGevCamera(info, this);
  case TLType::U3V: return new (std::nothrow) CU3VCamera(info, this);
  case TLType::CL:
  case TLType::CLHS:
    if (m_cameraLinkFactory) {
      return m_cameraLinkFactory(info, this);
    }
    // Without the Camera Link area (camera core tests) the common camera serves the frame grabber.
    return new (std::nothrow) CCamera(info, this);
  default: return new (std::nothrow) CCamera(info, this);
  }
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

void CCameraRegistry::OnGevStatus(uint32_t address, bool online) {
  std::lock_guard<std::recursive_mutex> lock(g_currentLock);
  if (g_current == nullptr || online) {
    return;
  }
  char text[kAddressTextSize] = {};
  std::snprintf(text, sizeof text, "%u.%u.%u.%u", address & 0xFFu, (address >> 8) & 0xFFu, (address >> 16) & 0xFFu,
                (address >> 24) & 0xFFu);
  g_current->MarkOffline(TLType::GEV, text, kAddressTextSize, &AddressTextOf);
}

void CCameraRegistry::OnU3vStatus(const char* identifier, bool online) {
  std::lock_guard<std::recursive_mutex> lock(g_currentLock);
  if (g_current == nullptr || online || identifier == nullptr) {
    return;
  }
  g_current->MarkOffline(TLType::U3V, identifier, kU3vCompareLength, &SerialOf);
}

void CCameraRegistry::MarkOffline(uint32_t tlType, const char* text, size_t length,
                                  const char* (*textOf)(ICameraInfo&)) {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  CCamera* found = nullptr;
  for (CCamera* camera : m_cameras) {
    ICameraInfo* const info = camera->GetCameraInfo();
    const char* const own = info != nullptr ? textOf(*info) : nullptr;
    if (info != nullptr && info->GetTLType() == tlType && own != nullptr && std::strncmp(own, text, length) == 0) {
      found = camera;
      break;
    }
  }
  if (found == nullptr) {
    return;
  }
  // Only the transport's own camera class keeps a connection state that these reports change.
  const bool ofClass = tlType == TLType::GEV ? dynamic_cast<CGevCamera*>(found) != nullptr
                                             : dynamic_cast<CU3VCamera*>(found) != nullptr;
  // Notified under the lock, once per loss: the flag was set by the last open.
  if (ofClass && found->ExchangeConnected(false)) {
    found->Notify(Notification::DeviceLost, 0, 0);
  }
}

}  // namespace TALVIR

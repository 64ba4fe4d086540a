#pragma once
// The set of live cameras and the camera factory, owned by the producer manager from Init to UnInit. It also links
// the library at run time to the helper library and to the USB3 Vision producer's status hook, whose reports of
// devices going away reach the cameras as device-lost notifications.
#include "platform/DynamicModule.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_set>

namespace TALVIR {

class CCamera;
class ICamera;
class ICameraInfo;

// The module names the registry links to by default.
constexpr const char* kHelperLibraryName = "VendraLib.dll";
constexpr const char* kU3vProducerName = "U3VTLTAV.cti";

class CCameraRegistry {
public:
  // Publishes itself as the process's registry (for the status handlers), then links the helper library and the
  // USB3 Vision producer by these names; either may be absent. Tests give other names.
  explicit CCameraRegistry(const std::string& helperName = kHelperLibraryName,
                           const std::string& u3vProducerName = kU3vProducerName);
  // Releases every camera that still exists, then unlinks the modules.
  ~CCameraRegistry();
  CCameraRegistry(const CCameraRegistry&) = delete;
  CCameraRegistry& operator=(const CCameraRegistry&) = delete;

  // The camera for `info`: the existing one for an equal record, else a new one of the class that matches the
  // device's transport. Null for a null record, a record that no producer found, and a Camera Link camera known
  // only by its serial port (made by the Camera Link path).
  ICamera* CreateCamera(ICameraInfo* info);

  // Called by every camera's constructor and on its release.
  void AddCamera(CCamera* camera);
  void RemoveCamera(CCamera* camera);

  size_t CameraCount();
  const std::string& HelperName() const { return m_helperName; }
  const std::string& U3vProducerName() const { return m_u3vName; }

  // The status handlers the helper modules call from their own threads: a device that went away (online false)
  // marks its camera disconnected and notifies it once per loss. Reports of devices coming back are ignored.
  static void OnGevStatus(uint32_t address, bool online);
  static void OnU3vStatus(const char* identifier, bool online);

private:
  // Marks the first camera of `tlType` whose info text (`textOf`) equals `text` over `length` characters.
  void MarkOffline(uint32_t tlType, const char* text, size_t length, const char* (*textOf)(ICameraInfo&));

  std::unordered_set<CCamera*> m_cameras;
  // Recursive: a device-lost notification runs under it and may create or release a camera.
  std::recursive_mutex m_lock;
  std::string m_helperName;
  Platform::ModuleHandle m_u3vModule = nullptr;
  std::string m_u3vName;
};

} // namespace TALVIR

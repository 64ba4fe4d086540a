#pragma once
// The set of live cameras and the camera factory, owned by the producer manager from Init to UnInit. It also links
// the library at run time to the helper library and to the USB3 Vision producer's status hook, whose reports of
// devices going away reach the cameras as device-lost notifications.
#include "platform/DynamicModule.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_set>

namespace TALVIR {

class CCamera;
class CCameraInfo;
class ICamera;
class ICameraInfo;

// The module names the registry links to by default.
constexpr const char* kHelperLibraryName = "VendraLib.dll";
constexpr const char* kU3vProducerName = "U3VTLTAV.cti";

class CCameraRegistry {
public:
  // Makes a Camera Link camera, whose class lives in the Camera Link area above the camera core: for a frame
  // grabber's record (TL type CL or CLHS), or for a blank record of TL type CLSerialOnly (a camera reached only over
  // its serial link). The camera enters `registry` itself. Null when it cannot be made.
  using CameraLinkFactory = std::function<CCamera*(CCameraInfo* info, CCameraRegistry* registry)>;

  // Publishes itself as the process's registry (for the status handlers), then links the helper library and the
  // USB3 Vision producer by these names; either may be absent. Tests give other names.
  explicit CCameraRegistry(const std::string& helperName = kHelperLibraryName,
                           const std::string& u3vProducerName = kU3vProducerName);
  // Releases every camera that still exists, then unlinks the modules.
  ~CCameraRegistry();
  CCameraRegistry(const CCameraRegistry&) = delete;
  CCameraRegistry& operator=(const CCameraRegistry&) = delete;

  // Installed by the library front when it creates the registry. Without a factory, frame grabbers get the common
  // camera and no serial-only camera is made.
  void SetCameraLinkFactory(CameraLinkFactory factory);

  // The camera for `info`: the existing one for an equal record, else a new one of the class that matches the
  // device's transport. A record of TL type CLSerialOnly gives a new blank Camera Link camera (the record itself is
  // not attached: the application connects the camera with OpenSerial). Null for a null record and for any other
  // record that no producer found.
  ICamera* CreateCamera(ICameraInfo* info);
  // A new blank Camera Link camera, on a fresh record of TL type CLSerialOnly without producer; null without a
  // Camera Link factory.
  ICamera* CreateSerialOnlyCamera();

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

  CCamera* MakeCamera(CCameraInfo* info);

  std::unordered_set<CCamera*> m_cameras;
  // Recursive: a device-lost notification runs under it and may create or release a camera.
  std::recursive_mutex m_lock;
  std::string m_helperName;
  Platform::ModuleHandle m_u3vModule = nullptr;
  std::string m_u3vName;
  CameraLinkFactory m_cameraLinkFactory;
};

}  // namespace TALVIR

#pragma once
// The set of live cameras and the camera factory, owned by the producer manager from Init to UnInit.
#include <mutex>
#include <unordered_set>

namespace TALVIR {

class CCamera;
class ICamera;
class ICameraInfo;

class CCameraRegistry {
public:
  CCameraRegistry();
  // Releases every camera that still exists.
  ~CCameraRegistry();
  CCameraRegistry(const CCameraRegistry&) = delete;
  CCameraRegistry& operator=(const CCameraRegistry&) = delete;

  // The camera for `info`: the existing one for an equal record, else a new one of the class that matches the
  // device's transport. Null for a null record, a record that no producer found, and a Camera Link camera known
  // only by its serial port (made by the Camera Link path).
  ICamera* CreateCamera(ICameraInfo* info);

  // Called by every camera's constructor and destructor.
  void AddCamera(CCamera* camera);
  void RemoveCamera(CCamera* camera);

  size_t CameraCount();

private:
  std::unordered_set<CCamera*> m_cameras;
  // Recursive: a device-lost notification runs under it and may create or release a camera.
  std::recursive_mutex m_lock;
};

} // namespace TALVIR

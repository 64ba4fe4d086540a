#pragma once
// The set of live cameras and the camera factory, owned by the producer manager from Init to UnInit.
#include <mutex>

namespace TALVIR {

class ICamera;
class ICameraInfo;

class CCameraRegistry {
public:
  CCameraRegistry();
  ~CCameraRegistry();
  CCameraRegistry(const CCameraRegistry&) = delete;
  CCameraRegistry& operator=(const CCameraRegistry&) = delete;

  // The camera for `info`: the existing one for an equal record, else a new one of the class that matches the
  // device's transport. Null for a null record, a record that no producer found, and while no camera class exists
  // for the device's transport (camera objects are not part of the library yet).
  ICamera* CreateCamera(ICameraInfo* info);

private:
  std::recursive_mutex m_lock;
};

} // namespace TALVIR

#pragma once
// What a camera shares with the images it handed out: the way back to the camera while it exists. The camera
// clears it when it goes, so that an image released (or converted) after its camera only frees itself instead of
// reaching into a destroyed camera.
#include <shared_mutex>

namespace TALVIR {

class CCamera;

class CCameraLink {
public:
  explicit CCameraLink(CCamera* camera) : m_pCamera(camera) {}

  // Runs `action(camera)` while the camera is guaranteed to exist; returns false without running it otherwise.
  // Several images may use the link at once; only the camera's destruction waits for them.
  template <typename TAction>
  bool WithCamera(TAction&& action) {
    std::shared_lock<std::shared_mutex> lock(m_mutex);
    if (m_pCamera == nullptr) {
      return false;
    }
    action(*m_pCamera);
    return true;
  }

  // Called by the camera's destructor: waits for images inside WithCamera, then cuts the link.
  void Detach() {
    std::unique_lock<std::shared_mutex> lock(m_mutex);
    m_pCamera = nullptr;
  }

private:
  std::shared_mutex m_mutex;
  CCamera* m_pCamera;
};

}  // namespace TALVIR

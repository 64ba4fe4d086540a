#include "camera/HelperLibrary.h"

namespace TALVIR {
namespace {

template <typename TFunction>
TFunction Bind(Platform::ModuleHandle module, const char* name) {
  return reinterpret_cast<TFunction>(Platform::FindSymbol(module, name));
}

}  // namespace

CHelperLibrary& CHelperLibrary::Process() {
  static CHelperLibrary link;
  return link;
}

void CHelperLibrary::Load(const std::string& name, GevStatusHandler handler) {
  m_module = Platform::LoadModule(name);
  if (m_module == nullptr) {
    return;
  }
  m_name = name;
  SetCameraStatusCallback = Bind<SetCameraStatusCallbackFn>(m_module, "SetCameraStatusCallback");
  const SetCameraStatusCallbackFn registerHandler = SetCameraStatusCallback.load();
  if (registerHandler != nullptr) {
    registerHandler(handler);
  }
  SetCameraFrameRate = Bind<SetCameraFrameRateFn>(m_module, "SetCameraFrameRate");
  SetCameraScanType = Bind<SetCameraScanTypeFn>(m_module, "SetCameraScanType");
  SetCameraTriggerSelector = Bind<SetCameraTriggerSelectorFn>(m_module, "SetCameraTriggerSelector");
  SetCameraSCPD = Bind<SetCameraSCPDFn>(m_module, "SetCameraSCPD");
  SetCameraExposureTime = Bind<SetCameraExposureTimeFn>(m_module, "SetCameraExposureTime");
}

void CHelperLibrary::Free() {
  // Cleared before the module goes: no camera outlives the registry, but nothing may call into an unloaded module.
  SetCameraStatusCallback = nullptr;
  SetCameraFrameRate = nullptr;
  SetCameraScanType = nullptr;
  SetCameraTriggerSelector = nullptr;
  SetCameraSCPD = nullptr;
  SetCameraExposureTime = nullptr;
  Platform::FreeModule(m_module);
  m_module = nullptr;
  m_name.clear();
}

bool CHelperLibrary::HasSetFunctions() const {
  return SetCameraFrameRate.load() != nullptr && SetCameraScanType.load() != nullptr &&
         SetCameraTriggerSelector.load() != nullptr && SetCameraSCPD.load() != nullptr &&
         SetCameraExposureTime.load() != nullptr;
}

}  // namespace TALVIR

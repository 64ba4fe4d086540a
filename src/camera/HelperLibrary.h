#pragma once
// The run-time link to the optional helper library that receives each GigE camera's acquisition settings and
// reports GigE devices going away. Loaded by the camera registry; its set functions are used by the GigE camera.
#include "platform/DynamicModule.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace TALVIR {

// How the library calls the helper library's exports (the platform's C calling convention). Addresses are IPv4
// addresses in network byte order.
using GevStatusHandler = void (*)(uint32_t address, bool online);
using SetCameraStatusCallbackFn = void (*)(GevStatusHandler handler);
using SetCameraFrameRateFn = void (*)(uint32_t address, float framesPerSecond);
using SetCameraScanTypeFn = void (*)(uint32_t address, bool lineScan);
using SetCameraTriggerSelectorFn = void (*)(uint32_t address, int lineStartTriggerOn);
using SetCameraSCPDFn = void (*)(uint32_t address, uint32_t packetDelay);
using SetCameraExposureTimeFn = void (*)(uint32_t address, float exposure);
// The USB3 Vision producer's status hook: (the device's identifier, online).
using U3vStatusHandler = void (*)(const char* identifier, bool online);
using SetU3VCameraStatusCallbackFn = void (*)(U3vStatusHandler handler);

class CHelperLibrary {
public:
  // The process's one link (cameras read the set functions through it).
  static CHelperLibrary& Process();

  // Loads `name` ("X.dll" names are mapped to the platform's) and binds its six exports; registers `handler` with
  // it when it offers the status callback. A missing module or export is silent: that function stays unbound.
  void Load(const std::string& name, GevStatusHandler handler);
  // Forgets the bound functions and unloads the module.
  void Free();

  bool IsLoaded() const { return m_module != nullptr; }
  const std::string& Name() const { return m_name; }
  // Whether all five set functions are bound: the GigE camera pushes nothing otherwise.
  bool HasSetFunctions() const;

  std::atomic<SetCameraStatusCallbackFn> SetCameraStatusCallback{nullptr};
  std::atomic<SetCameraFrameRateFn> SetCameraFrameRate{nullptr};
  std::atomic<SetCameraScanTypeFn> SetCameraScanType{nullptr};
  std::atomic<SetCameraTriggerSelectorFn> SetCameraTriggerSelector{nullptr};
  std::atomic<SetCameraSCPDFn> SetCameraSCPD{nullptr};
  std::atomic<SetCameraExposureTimeFn> SetCameraExposureTime{nullptr};

private:
  Platform::ModuleHandle m_module = nullptr;
  std::string m_name;
};

}  // namespace TALVIR

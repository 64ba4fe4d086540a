#pragma once
// The simulated helper library's exports: the six the camera library binds, and test controls. Tests bind the
// controls by name from the loaded module (the library loads the same file).
#include <cstdint>

#if defined(_WIN32)
#define TALVIR_SIM_HELPER_API extern "C" __declspec(dllexport)
#else
#define TALVIR_SIM_HELPER_API extern "C" __attribute__((visibility("default")))
#endif

// One recorded call of a set function.
struct SHelperPush {
  char function[32];  // "SetCameraFrameRate", ...
  uint32_t address;   // IPv4 address in network byte order
  double value;       // the value passed (bools and integers converted)
};

// The helper library's own exports.
TALVIR_SIM_HELPER_API void SetCameraStatusCallback(void (*callback)(uint32_t address, bool online));
TALVIR_SIM_HELPER_API void SetCameraFrameRate(uint32_t address, float framesPerSecond);
TALVIR_SIM_HELPER_API void SetCameraScanType(uint32_t address, bool lineScan);
TALVIR_SIM_HELPER_API void SetCameraTriggerSelector(uint32_t address, int lineStartTriggerOn);
TALVIR_SIM_HELPER_API void SetCameraSCPD(uint32_t address, uint32_t packetDelay);
TALVIR_SIM_HELPER_API void SetCameraExposureTime(uint32_t address, float exposure);

// Test controls.
// Number of recorded pushes, and one of them (false past the end).
TALVIR_SIM_HELPER_API uint32_t HelperSimPushCount();
TALVIR_SIM_HELPER_API bool HelperSimGetPush(uint32_t index, SHelperPush* push);
TALVIR_SIM_HELPER_API void HelperSimClearPushes();
// Whether a status callback is registered.
TALVIR_SIM_HELPER_API bool HelperSimHasStatusCallback();
// Reports a device lost (online false) or back, from a thread of the helper's own, as the real helper does.
TALVIR_SIM_HELPER_API void HelperSimReportStatus(uint32_t address, bool online);
// Waits until every report made so far has been delivered.
TALVIR_SIM_HELPER_API void HelperSimWaitReports();

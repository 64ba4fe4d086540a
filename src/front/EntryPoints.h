#pragma once
// The logic behind the exported functions, over an explicit manager so that it can be tested without the
// process-wide one.
#include <functional>

namespace TALVIR {

class CCtiManager;
class ICamera;
class ICameraInfo;

using CameraFactory = std::function<ICamera*(ICameraInfo*)>;

// Finds the record with exactly this serial number among the loaded producers; when there is none, runs one full
// discovery and looks again. The record found is handed to `createCamera`, and its lookup reference dropped
// afterwards. Null for a null or empty serial number or a device that is not found.
ICamera* CreateCameraBySerial(CCtiManager& manager, const char* serialNumber, const CameraFactory& createCamera);

}  // namespace TALVIR

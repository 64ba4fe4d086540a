#include "front/EntryPoints.h"

#include "camera/CameraRegistry.h"
#include "cl/CLCachedLists.h"
#include "front/CtiManager.h"
#include "front/Discovery.h"
#include "front/DiscoveryReport.h"
#include "gentl/DiagnosticSink.h"
#include "gentl/GenTLErrorText.h"
#include "image/ImgTool.h"
#include "platform/SelfPath.h"

#include <talvir/Talvir.h>

#include <cstdio>
#include <string>

namespace TALVIR {
namespace {

// The one manager of the process, between Init and UnInit. Init and UnInit must not race with other calls.
CCtiManager* g_manager = nullptr;

}  // namespace

ICamera* CreateCameraBySerial(CCtiManager& manager, const char* serialNumber, const CameraFactory& createCamera) {
  if (serialNumber == nullptr || serialNumber[0] == '\0') {
    return nullptr;
  }
  const std::string serial(serialNumber);
  ICameraInfo* record = manager.FindBySerial(serial);
  if (record == nullptr) {
    // The discovery refreshes the producers' device caches; its own references are not needed.
    for (ICameraInfo* discovered : DiscoverByName(manager, nullptr)) {
      discovered->Destroy();
    }
    record = manager.FindBySerial(serial);
    if (record == nullptr) {
      return nullptr;
    }
  }
  ICamera* const camera = createCamera(record);
  record->Destroy();
  return camera;
}

void Init() {
  if (g_manager != nullptr) {
    return;
  }
  g_manager = new CCtiManager(Platform::OwnModuleDirectory());
}

void UnInit() {
  if (g_manager == nullptr) {
    return;
  }
  delete g_manager;
  g_manager = nullptr;
}

std::list<ICameraInfo*> Discovery(const char* ctiName) {
  if (g_manager == nullptr) {
    return {};
  }
  return DiscoverByName(*g_manager, ctiName);
}

std::list<ICameraInfo*> DiscoveryByTLType(uint64_t tlTypeMask) {
  if (g_manager == nullptr) {
    return {};
  }
  return DiscoverByTLType(*g_manager, tlTypeMask);
}

ICamera* CreateCamera(ICameraInfo* info) {
  if (g_manager == nullptr) {
    return nullptr;
  }
  return g_manager->Registry()->CreateCamera(info);
}

ICamera* CreateCameraBySN(const char* serialNumber) {
  if (g_manager == nullptr) {
    return nullptr;
  }
  CCameraRegistry* const registry = g_manager->Registry();
  return CreateCameraBySerial(*g_manager, serialNumber,
                              [registry](ICameraInfo* info) { return registry->CreateCamera(info); });
}

ICamera* CreateCameraWithCLCamOnly() {
  // A trace line on standard output, which applications of the serial-link-only camera have come to expect.
  std::printf("ICamera* CreateCameraWithCLCamOnly()\n");
  std::fflush(stdout);
  if (g_manager == nullptr) {
    return nullptr;
  }
  return g_manager->Registry()->CreateSerialOnlyCamera();
}

std::list<std::string> GetCLProtocols() { return GetCachedCLProtocols(); }

std::list<std::string> GetCLSerials() { return GetCachedCLSerials(); }

uint32_t ConvertedPixelFormat(uint32_t pixelFormat) { return CImgTool::OutputFormatOf(pixelFormat); }

DiscoveryReport GetDiscoveryReport() {
  if (g_manager == nullptr) {
    return DiscoveryReport();
  }
  return BuildDiscoveryReport(*g_manager);
}

const char* OpenStatusText(int32_t openStatus) { return OpenProducerStatusText(openStatus); }

const char* GenTLErrorName(int32_t errorCode) { return GenTLErrorCodeName(errorCode); }

void SetDiagnosticCallback(DiagnosticCallback callback, void* context) { CDiagnosticSink::Set(callback, context); }

}  // namespace TALVIR

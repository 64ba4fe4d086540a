#pragma once
// The library's entry points.
//
//   TALVIR::Init();
//   for (TALVIR::ICameraInfo* info : TALVIR::Discovery(nullptr)) { ...; info->Destroy(); }
//   TALVIR::UnInit();
//
// Producers (.cti files) are looked for beside the library, or named in "DiscoveryCfg.ini" there (section "User",
// key "CtiNames", names separated by ';'). No entry point reports an error: before Init, after UnInit or on
// failure they return an empty list or a null pointer.
#include <talvir/CameraLink.h>
#include <talvir/CameraTypes.h>
#include <talvir/CustomInfo.h>
#include <talvir/Diagnostics.h>
#include <talvir/Export.h>
#include <talvir/ICamera.h>
#include <talvir/ICameraInfo.h>
#include <talvir/IChunk.h>
#include <talvir/IImage.h>
#include <talvir/IXml.h>
#include <talvir/TLType.h>

#include <cstdint>
#include <list>

namespace TALVIR {

// Creates the process-wide manager and reads the discovery configuration; a second call does nothing.
TALVIR_API void Init();
// Releases every camera and producer; Init may be called again afterwards.
TALVIR_API void UnInit();
// Discovers the devices of every producer, or of the one producer file named by `ctiName` (null or empty: all).
TALVIR_API std::list<ICameraInfo*> Discovery(const char* ctiName);
// Discovers the devices of the producers whose transport-layer type shares a bit with `tlTypeMask` (TLType bits);
// TLType::AllProducers selects every producer, TLType::CLSerialOnly probes serial ports for Camera Link cameras.
TALVIR_API std::list<ICameraInfo*> DiscoveryByTLType(uint64_t tlTypeMask);
// The camera for a discovered device; the same camera again for a device that already has one.
TALVIR_API ICamera* CreateCamera(ICameraInfo* info);
// The camera whose serial number equals `serialNumber` exactly; runs one discovery when the device is not yet known.
TALVIR_API ICamera* CreateCameraBySN(const char* serialNumber);
// What IImage::GetConvertedImage produces for images of this PFNC pixel format: 0x01080001 (Mono8) for monochrome
// formats, 0x02180015 (BGR8) for colour formats, 0 for a format the library does not convert.
TALVIR_API uint32_t ConvertedPixelFormat(uint32_t pixelFormat);

}  // namespace TALVIR

#pragma once
// Camera Link cameras: a frame grabber delivers the images, the camera's own features are reached over its serial
// link (a PC serial port or the grabber's serial channel), which ICamera::OpenSerial opens.
//
//   TALVIR::Init();
//   for (TALVIR::ICameraInfo* info : TALVIR::DiscoveryByTLType(TALVIR::TLType::CLSerialOnly)) { // probes the ports
//     TALVIR::ICamera* camera = TALVIR::CreateCamera(info); // a blank camera, connected with OpenSerial
//     camera->OpenSerial(info->GetCustomInfo(TALVIR::CustomInfo::CLGrabberSerialPort),
//                        info->GetCustomInfo(TALVIR::CustomInfo::CLProtocolDescriptor));
//     ... camera->GetRemoteXml()->GetNodeMap() ...
//     camera->Release();
//     info->Destroy();
//   }
//   TALVIR::UnInit();
#include <talvir/Export.h>
#include <talvir/ICamera.h>

#include <list>
#include <string>

namespace TALVIR {

// A new Camera Link camera without frame grabber, for working with a serial link alone (OpenSerial,
// GetRemoteXml); Open fails on it. Writes the line "ICamera* CreateCameraWithCLCamOnly()" to standard output.
// Null before Init.
TALVIR_API ICamera* CreateCameraWithCLCamOnly();
// The device-ID templates of the installed Camera Link protocol drivers (ours ends "#KORIX#GENCP02"). Read once per
// process; an empty answer is asked for again on the next call.
TALVIR_API std::list<std::string> GetCLProtocols();
// The serial port IDs of the installed Camera Link serial libraries ("COM_Port#/dev/ttyUSB0",
// "KORIX#CL_GRABBER#SERIAL0.0", ...). Read once per process like GetCLProtocols.
TALVIR_API std::list<std::string> GetCLSerials();

}  // namespace TALVIR

#pragma once
// Camera Link cameras found on serial ports, as device records: one record per camera that answered our protocol
// driver's probe. The records have no producer; a camera is made for one with CreateCamera (a blank Camera Link
// camera) and connected with OpenSerial(custom item 29, custom item 28).
#include "cl/CLProber.h"

#include <list>

namespace TALVIR {

class CCameraInfo;
class ICameraInfo;

// The record of one probe answer: TL type CLSerialOnly, vendor, model, version and serial number from the probe,
// device ID and custom item 28 the probe's device ID, custom item 29 the port ID, custom item 40 the family, the
// user-defined name the camera's own name (the probe's optional last field). Carries one reference for the caller.
CCameraInfo* MakeCLSerialRecord(const CLProbeRecord& probe);

// Probes every serial port (our driver's template, 500 ms a port) and returns one record per answering camera.
std::list<ICameraInfo*> DiscoverCLSerialCameras();

}  // namespace TALVIR

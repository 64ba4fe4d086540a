#pragma once
// A camera object. Creation is available through the entry points; the camera's operations come with the camera
// object model.
#include <talvir/Export.h>

namespace TALVIR {

class ICamera;

} // namespace TALVIR

#include "cl/CLGrabberGeometry.h"

#include "image/PixelLayout.h"

#include <GenApi/GenApi.h>

namespace TALVIR {

uint64_t SGrabberGeometry::PayloadSize() const { return ImageSizeBytes(pixelFormat, width, height); }

bool ReadGrabberGeometry(GenApi::INodeMap& grabber, SGrabberGeometry& geometry) {
  try {
    GenApi::CIntegerPtr width(grabber.GetNode("Width"));
    GenApi::CIntegerPtr height(grabber.GetNode("Height"));
    if (!GenApi::IsReadable(width) || !GenApi::IsReadable(height)) {
      return false;
    }
    const int64_t w = width->GetValue();
    const int64_t h = height->GetValue();
    if (w <= 0 || h <= 0) {
      return false;
    }
    SGrabberGeometry read;
    read.width = static_cast<uint64_t>(w);
    read.height = static_cast<uint64_t>(h);
    GenApi::CEnumerationPtr format(grabber.GetNode("PixelFormat"));
    if (format.IsValid()) {
      const int64_t pf = format->GetIntValue();
      if (pf <= 0 || pf > static_cast<int64_t>(UINT32_MAX)) {
        return false;
      }
      read.pixelFormat = static_cast<uint32_t>(pf);
    }
    geometry = read;
    return true;
  } catch (const GenICam::GenericException&) {
    return false;
  }
}

}  // namespace TALVIR

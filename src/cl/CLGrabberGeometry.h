#pragma once
// The image geometry a Camera Link frame grabber is set to, read from the grabber device's own features: the
// camera's features are on the serial link, and only the grabber knows what it will deliver.
#include <cstdint>

namespace GenApi {
struct INodeMap;
}  // namespace GenApi

namespace TALVIR {

struct SGrabberGeometry {
  uint64_t width = 0;
  uint64_t height = 0;
  // PFNC; Mono8 when the grabber has no PixelFormat.
  uint32_t pixelFormat = 0x01080001;

  // Bytes of one image of this geometry; 0 when the format is unknown or the size is 0.
  uint64_t PayloadSize() const;
};

// Reads the integers Width and Height and the enumeration PixelFormat (optional). False when Width or Height is
// missing, not readable, not positive, or when reading throws.
bool ReadGrabberGeometry(GenApi::INodeMap& grabber, SGrabberGeometry& geometry);

}  // namespace TALVIR

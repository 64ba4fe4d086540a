#pragma once
// What a GigE Vision camera reads from feature trees: the settings pushed to the helper library, the stream packet
// size limits given to the producer, and the partial-image policy. Works on any node map, so that every rule can be
// checked on descriptions written for the purpose.
#include <GenApi/GenApi.h>

#include <cstdint>
#include <string>

namespace TALVIR {

// The five values pushed to the helper library before each start.
struct SHelperSettings {
  bool lineScan = false;     // the camera has AcquisitionLineRate
  int lineStartTrigger = 0;  // 1 when TriggerMode is On for the LineStart trigger
  float frameRate = 0.0f;    // frames per second (line-scan: ResultingLineRate / Height); 0 when it cannot be read
  float exposure = 0.0f;     // the first present of ExposureTime, ExposureTimeAbs, ExposureTimeRaw, as a float node
  uint32_t packetDelay = 0;  // GevSCPD
};

// The stream packet size limits written to the producer, 16 bits each.
struct SPacketSizeLimits {
  uint16_t minimum = 0;
  uint16_t maximum = 0;
  uint16_t increment = 0;
};

class CGevFeatures {
public:
  // Reads the helper settings from the camera's features. The trigger selector is switched to LineStart to read
  // its mode and put back; every value that cannot be read is 0.
  static SHelperSettings ReadHelperSettings(GenApi::INodeMap& features);
  // The limits of GevSCPSPacketSize: a minimum or maximum of -1 becomes 0, an increment of 1 becomes 4. False when
  // the camera has no such feature; a LogicalErrorException when it is not an integer feature.
  static bool ReadPacketSizeLimits(GenApi::INodeMap& features, SPacketSizeLimits& limits);
  // The code of a PartialImageOutputMode entry (0 output, 1 discard, 2 filled); false for any other name.
  static bool PartialImageModeOf(const std::string& symbolic, uint32_t& code);
};

}  // namespace TALVIR

#include "camera/GevFeatures.h"

#include <initializer_list>

namespace TALVIR {
namespace {

// A device that reports an increment of 1 is given 4-byte steps.
constexpr int64_t kMinimumPacketStep = 4;

bool ReadTrigger(GenApi::INodeMap& features) {
  GenApi::CEnumerationPtr selector(features.GetNode("TriggerSelector"));
  if (!selector.IsValid()) {
    return false;
  }
  const GenICam::gcstring previous = selector->ToString(true, true);
  selector->FromString("LineStart");
  GenApi::CEnumerationPtr mode(features.GetNode("TriggerMode"));
  const bool on = mode.IsValid() && mode->ToString(true, true) == "On";
  selector->FromString(previous);
  return on;
}

float ReadFrameRate(GenApi::INodeMap& features, bool lineScan) {
  if (lineScan) {
    GenApi::CIntegerPtr height(features.GetNode("Height"));
    GenApi::CFloatPtr lineRate(features.GetNode("ResultingLineRate"));
    if (!height.IsValid() || !lineRate.IsValid()) {
      return 0.0f;
    }
    const auto lines = static_cast<float>(height->GetValue(true, true));
    return lines != 0.0f ? static_cast<float>(lineRate->GetValue(true, true)) / lines : 0.0f;
  }
  GenApi::INode* rateNode = features.GetNode("ResultingFrameRateAbs");
  if (rateNode == nullptr) {
    rateNode = features.GetNode("ResultingFrameRate");
  }
  GenApi::CFloatPtr rate(rateNode);
  return rate.IsValid() ? static_cast<float>(rate->GetValue(true, true)) : 0.0f;
}

float ReadExposure(GenApi::INodeMap& features) {
  GenApi::INode* exposureNode = nullptr;
  for (const char* name : {"ExposureTime", "ExposureTimeAbs", "ExposureTimeRaw"}) {
    exposureNode = features.GetNode(name);
    if (exposureNode != nullptr) {
      break;
    }
  }
  // Only a float feature counts: an integer exposure (as ExposureTimeRaw usually is) gives 0.
  GenApi::CFloatPtr exposure(exposureNode);
  return exposure.IsValid() ? static_cast<float>(exposure->GetValue(true, true)) : 0.0f;
}

template <typename TRead>
auto OrZero(TRead&& read) -> decltype(read()) {
  try {
    return read();
  } catch (const GenICam::GenericException&) {
    return {};
  }
}

}  // namespace

SHelperSettings CGevFeatures::ReadHelperSettings(GenApi::INodeMap& features) {
  SHelperSettings settings;
  settings.lineScan = features.GetNode("AcquisitionLineRate") != nullptr;
  settings.lineStartTrigger = OrZero([&] { return ReadTrigger(features); }) ? 1 : 0;
  settings.frameRate = OrZero([&] { return ReadFrameRate(features, settings.lineScan); });
  settings.exposure = OrZero([&] { return ReadExposure(features); });
  settings.packetDelay = OrZero([&] {
    GenApi::CIntegerPtr delay(features.GetNode("GevSCPD"));
    return delay.IsValid() ? static_cast<uint32_t>(delay->GetValue(true, true)) : uint32_t{0};
  });
  return settings;
}

bool CGevFeatures::ReadPacketSizeLimits(GenApi::INodeMap& features, SPacketSizeLimits& limits) {
  GenApi::INode* const node = features.GetNode("GevSCPSPacketSize");
  if (node == nullptr) {
    return false;
  }
  GenApi::CIntegerPtr packetSize(node);
  if (!packetSize.IsValid()) {
    throw LOGICAL_ERROR_EXCEPTION("GevSCPSPacketSize is not an integer feature");
  }
  const int64_t minimum = packetSize->GetMin();
  const int64_t maximum = packetSize->GetMax();
  const int64_t increment = packetSize->GetInc();
  limits.minimum = static_cast<uint16_t>(minimum == -1 ? 0 : minimum);
  limits.maximum = static_cast<uint16_t>(maximum == -1 ? 0 : maximum);
  limits.increment = static_cast<uint16_t>(increment == 1 ? kMinimumPacketStep : increment);
  return true;
}

bool CGevFeatures::PartialImageModeOf(const std::string& symbolic, uint32_t& code) {
  if (symbolic == "PartialImageOutput") {
    code = 0;
  } else if (symbolic == "PartialImageDiscard") {
    code = 1;
  } else if (symbolic == "PartialImageFilled") {
    code = 2;
  } else {
    return false;
  }
  return true;
}

}  // namespace TALVIR

#include <CLProtocol/ProbeAnswer.h>

#include "DeviceId.h"

#include <vector>

namespace CLProtocol {

bool ParseProbeAnswer(const std::string& answer, SProbeAnswer& parsed) {
  const std::vector<std::string> fields = SplitTokens(answer);
  if (fields.size() != 6 && fields.size() != 7) {
    return false;
  }
  parsed.driverPath = fields[0];
  parsed.manufacturer = fields[1];
  parsed.family = fields[2];
  parsed.model = fields[3];
  parsed.version = fields[4];
  parsed.serialNumber = fields[5];
  parsed.hasExtra = fields.size() == 7;
  parsed.extra = parsed.hasExtra ? fields[6] : std::string();
  return true;
}

std::string DeviceIdPartOfDriverPath(const std::string& driverPath) {
  const size_t separator = driverPath.find_last_of("/\\");
  if (separator == std::string::npos) {
    return driverPath;
  }
  std::string text = driverPath;
  text[separator] = '#';
  return text;
}

}  // namespace CLProtocol

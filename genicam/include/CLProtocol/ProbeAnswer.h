#pragma once
// The answer of a CLProtocol probe: "<driver path>#<manufacturer>#<family>#<model>#<version>#<serial>[#<extra>]".
#include <string>

#include <CLProtocol/CLProtocolExport.h>

namespace CLProtocol {

struct SProbeAnswer {
  std::string driverPath;
  std::string manufacturer;
  std::string family;
  std::string model;
  std::string version;
  std::string serialNumber;
  std::string extra;  // empty when absent
  bool hasExtra = false;
};

// Splits an answer of six or seven "#"-separated fields; false for any other count.
CLPROTOCOL_API bool ParseProbeAnswer(const std::string& answer, SProbeAnswer& parsed);

// A driver path cut at its last separator ('/' or '\') into the folder and file of a device ID, joined by "#";
// a path without a separator is returned unchanged.
CLPROTOCOL_API std::string DeviceIdPartOfDriverPath(const std::string& driverPath);

}  // namespace CLProtocol

#include "cl/CLProtocolTemplate.h"

#include "platform/FileStatus.h"
#include "platform/SelfPath.h"

namespace TALVIR {
namespace {

constexpr const char* kPlatformFolder = "Linux64_x64";
constexpr const char* kDriverFile = "libTavCLProtocolGenCP.so";
constexpr const char* kManufacturerAndFamily = "KORIX#GENCP02";

}  // namespace

std::string GetModuleDirectory() { return Platform::OwnModuleDirectory(); }

std::string GetCLProtocolDeviceIDTemplate() {
  // The check only chooses between the driver folder beside the library and the one in its parent folder; the
  // result is always rooted at the library's own folder.
  const std::string besideUs = std::string("./CLProtocol/") + kPlatformFolder + "/" + kDriverFile;
  const char* const folder = Platform::PathExists(besideUs) ? "./CLProtocol/" : "../CLProtocol/";
  return GetModuleDirectory() + folder + kPlatformFolder + "#" + kDriverFile + "#" + kManufacturerAndFamily;
}

}  // namespace TALVIR

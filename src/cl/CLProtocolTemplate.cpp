#include "cl/CLProtocolTemplate.h"

#include "platform/CLProtocolLocation.h"
#include "platform/DynamicModule.h"
#include "platform/SelfPath.h"

namespace TALVIR {
namespace {

constexpr const char* kDriverModule = "TavCLProtocolGenCP.dll";
constexpr const char* kManufacturerAndFamily = "KORIX#GENCP02";

}  // namespace

std::string GetModuleDirectory() { return Platform::OwnModuleDirectory(); }

std::string GetCLProtocolDeviceIDTemplate() {
  const std::string platformFolder = Platform::CLProtocolPlatformFolder();
  const std::string driverFile = Platform::NativeModuleName(kDriverModule);
  // The search only chooses between the driver folder beside the library and the one in its parent folder; the
  // result is always rooted at the library's own folder.
  const std::string besideUs = "./CLProtocol/" + platformFolder + "/" + driverFile;
  const char* const folder = Platform::IsFoundBySystemSearch(besideUs) ? "./CLProtocol/" : "../CLProtocol/";
  return GetModuleDirectory() + folder + platformFolder + "#" + driverFile + "#" + kManufacturerAndFamily;
}

}  // namespace TALVIR

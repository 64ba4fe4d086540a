#include "platform/ModuleNames.h"

namespace GenICam {
namespace Platform {

const char* CLProtocolPlatformFolder() { return "Linux64_x64"; }

const char* ModuleFileSuffix() { return ".so"; }

}  // namespace Platform
}  // namespace GenICam

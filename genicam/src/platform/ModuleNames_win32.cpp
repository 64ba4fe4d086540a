#include "platform/ModuleNames.h"

namespace GenICam {
namespace Platform {

const char* CLProtocolPlatformFolder() { return "Win64_x64"; }

const char* ModuleFileSuffix() { return ".dll"; }

}  // namespace Platform
}  // namespace GenICam

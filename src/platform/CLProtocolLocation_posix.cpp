#include "platform/CLProtocolLocation.h"

#include "platform/FileStatus.h"

namespace TALVIR::Platform {

const char* CLProtocolPlatformFolder() { return "Linux64_x64"; }

bool IsFoundBySystemSearch(const std::string& relativePath) { return PathExists(relativePath); }

}  // namespace TALVIR::Platform

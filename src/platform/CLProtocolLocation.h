#pragma once
// Where Camera Link protocol drivers live on this platform, and how the library tells whether its own is reachable.
#include <string>

namespace TALVIR::Platform {

// The folder of this platform's drivers inside a "CLProtocol" folder: "Win64_x64" on 64-bit Windows, "Linux64_x64"
// on 64-bit Linux.
const char* CLProtocolPlatformFolder();

// Whether the system's file search finds `relativePath` (written with '/'): on Windows SearchPathW without a search
// path (the program's folder, the current folder, the system folders and PATH), on Linux the path taken from the
// current folder.
bool IsFoundBySystemSearch(const std::string& relativePath);

}  // namespace TALVIR::Platform

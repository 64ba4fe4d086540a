#pragma once
// Where the library's own Camera Link protocol driver lives, in the form the protocol layer expects.
#include <string>

namespace TALVIR {

// The folder of this library's file, ending with its separator; empty when the loader cannot tell.
std::string GetModuleDirectory();

// The device-ID template of our protocol driver: "<folder>#<driver file>#<manufacturer>#<family>". The folder is
// "./CLProtocol/<platform>" or "../CLProtocol/<platform>" appended to the library's folder: the first when the
// system's file search finds the driver under that relative path, the second otherwise.
std::string GetCLProtocolDeviceIDTemplate();

}  // namespace TALVIR

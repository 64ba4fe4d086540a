#pragma once
// How the protocol layer's modules are named and filed on this platform.

namespace GenICam {
namespace Platform {

// The folder of this platform's protocol drivers inside a "CLProtocol" folder: "Win64_x64" on 64-bit Windows,
// "Linux64_x64" on 64-bit Linux.
const char* CLProtocolPlatformFolder();

// The ending of a loadable module's file name: ".dll" on Windows, ".so" on Linux.
const char* ModuleFileSuffix();

}  // namespace Platform
}  // namespace GenICam

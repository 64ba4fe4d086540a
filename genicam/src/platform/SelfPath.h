#pragma once
// Where the module that contains this code lives. The platform layer is linked statically into each module, so
// each module (the protocol layer, a driver, a serial library) finds its own file.
#include <string>

namespace GenICam {
namespace Platform {

// Full path of the module file that contains this function; empty if the loader cannot tell.
std::string OwnModulePath();

// OwnModulePath() cut after its last separator, so the separator stays; empty for a path without one.
std::string OwnModuleDirectory();

// The path separator of this platform.
#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

}  // namespace Platform
}  // namespace GenICam

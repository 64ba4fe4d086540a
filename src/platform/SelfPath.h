#pragma once
// Where the module that contains this code lives (the library itself, or a program that links the platform
// layer statically).
#include <string>

namespace TALVIR::Platform {

// Full path of the module file that contains this function; empty if the loader cannot tell.
std::string OwnModulePath();

// OwnModulePath() cut after its last separator, so the separator stays; empty for a path without one.
std::string OwnModuleDirectory();

// The path separator of this platform, as appended after a directory and as searched for when a path is cut into
// its folder and file name.
#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

// Every character the system accepts between folders ("\\" and "/" on Windows), for code that takes paths from
// anywhere (users, tests, configuration files) rather than from the system.
#ifdef _WIN32
constexpr const char* kPathSeparators = "\\/";
#else
constexpr const char* kPathSeparators = "/";
#endif

}  // namespace TALVIR::Platform

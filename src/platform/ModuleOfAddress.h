#pragma once
// Which loaded module holds an address: lets a program that links the library find the library's own folder (where
// its producers live) without knowing how it was installed.
#include <string>

namespace TALVIR::Platform {

// Full path of the module file that contains `address`; empty if the loader cannot tell.
std::string ModulePathOf(const void* address);

}  // namespace TALVIR::Platform

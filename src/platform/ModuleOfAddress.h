#pragma once
// Which loaded module holds an address: lets a program that links the library find the library's own folder (where
// its producers live) without knowing how it was installed; and keeping such a module loaded for good.
#include <string>

namespace TALVIR::Platform {

// Full path of the module file that contains `address`; empty if the loader cannot tell.
std::string ModulePathOf(const void* address);

// Keeps the module that contains `address` loaded until the process ends, whatever FreeModule calls follow. For a
// module that starts threads of its own and is never told to stop them: on Windows a module cannot wait for its
// threads while it is being unloaded (the loader holds its lock, and a thread needs that lock to end), so such a
// module must not be unloaded at all. False when no module holds the address.
bool KeepModuleLoaded(const void* address);

}  // namespace TALVIR::Platform

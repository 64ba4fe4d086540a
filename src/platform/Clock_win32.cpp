#include "platform/Clock.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace TALVIR::Platform {

uint64_t MonotonicMilliseconds() {
  // Milliseconds since the system started; it does not follow changes of the wall-clock time.
  return static_cast<uint64_t>(GetTickCount64());
}

}  // namespace TALVIR::Platform

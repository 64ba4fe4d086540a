#include "platform/Clock.h"

#include <time.h>

namespace TALVIR::Platform {

uint64_t MonotonicMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000u + static_cast<uint64_t>(now.tv_nsec) / 1000000u;
}

}  // namespace TALVIR::Platform

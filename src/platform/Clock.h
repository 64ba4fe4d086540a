#pragma once
// A clock for time-outs and watchdogs: monotonic, unaffected by changes of the wall-clock time.
#include <cstdint>

namespace TALVIR::Platform {

// Milliseconds since an arbitrary fixed point (boot on Linux); only differences are meaningful.
uint64_t MonotonicMilliseconds();

}  // namespace TALVIR::Platform

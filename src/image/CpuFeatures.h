#pragma once
// Which instruction-set extensions the pixel routines may use on this CPU, decided once per process.

namespace TALVIR::Pixel {

// True when the CPU and the build support the AVX2 routines (x86-64 only) and they have not been turned off.
bool CpuHasAvx2();

// Turns the AVX2 routines off (false) or back on, so that tests can run the fallback routines through the
// same dispatchers the library uses. Never called by the library itself.
void SetAvx2AllowedForTesting(bool allowed);

}  // namespace TALVIR::Pixel

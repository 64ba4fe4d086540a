#pragma once
// Which instruction-set extensions the pixel routines may use on this CPU, decided once per process.

namespace TALVIR::Pixel {

// True when the CPU and the build support the AVX2 routines (x86-64 only).
bool CpuHasAvx2();

} // namespace TALVIR::Pixel

#include "image/CpuFeatures.h"

namespace TALVIR::Pixel {

bool CpuHasAvx2() {
#if defined(__x86_64__) || defined(_M_X64)
  static const bool hasAvx2 = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return hasAvx2;
#else
  return false;
#endif
}

} // namespace TALVIR::Pixel

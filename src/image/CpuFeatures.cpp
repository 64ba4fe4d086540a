#include "image/CpuFeatures.h"

#include <atomic>

namespace TALVIR::Pixel {
namespace {

std::atomic<bool> g_avx2Allowed{true};

bool HardwareHasAvx2() {
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

}  // namespace

bool CpuHasAvx2() { return HardwareHasAvx2() && g_avx2Allowed.load(std::memory_order_relaxed); }

void SetAvx2AllowedForTesting(bool allowed) { g_avx2Allowed.store(allowed, std::memory_order_relaxed); }

}  // namespace TALVIR::Pixel

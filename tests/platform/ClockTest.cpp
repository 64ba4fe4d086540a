#include "platform/Clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace TALVIR::Platform {
namespace {

TEST(MonotonicMilliseconds, NeverGoesBackAndFollowsASleep) {
  const uint64_t start = MonotonicMilliseconds();
  uint64_t previous = start;
  for (int i = 0; i < 1000; ++i) {
    const uint64_t now = MonotonicMilliseconds();
    ASSERT_GE(now, previous);
    previous = now;
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  // A lower bound only: a loaded machine may sleep longer, never shorter.
  EXPECT_GE(MonotonicMilliseconds() - start, 30u);
}

TEST(MonotonicMilliseconds, IsMilliseconds) {
  const auto steadyStart = std::chrono::steady_clock::now();
  const uint64_t start = MonotonicMilliseconds();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const uint64_t elapsed = MonotonicMilliseconds() - start;
  const auto steadyElapsed =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - steadyStart).count();
  // Both clocks measured the same interval; they agree to within the tick of one reading on each side.
  EXPECT_LE(elapsed, static_cast<uint64_t>(steadyElapsed) + 2);
  EXPECT_GE(elapsed + 2, static_cast<uint64_t>(steadyElapsed));
}

}  // namespace
}  // namespace TALVIR::Platform

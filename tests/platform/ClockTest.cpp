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
  using Steady = std::chrono::steady_clock;
  const auto milliseconds = [](Steady::duration span) {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(span).count());
  };
  // Each reading is bracketed by the standard clock, so that a pause of the thread between two readings (a loaded
  // machine) widens the bounds instead of failing the test.
  const Steady::time_point beforeStart = Steady::now();
  const uint64_t start = MonotonicMilliseconds();
  const Steady::time_point afterStart = Steady::now();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const Steady::time_point beforeEnd = Steady::now();
  const uint64_t elapsed = MonotonicMilliseconds() - start;
  const Steady::time_point afterEnd = Steady::now();
#ifdef _WIN32
  // The system's tick count advances with the system timer, every 15.6 ms unless a program asked for a finer one.
  constexpr uint64_t kTick = 16;
#else
  constexpr uint64_t kTick = 1;
#endif
  // The interval between the two readings lies between the inner and the outer bracket, give or take one tick.
  EXPECT_LE(elapsed, milliseconds(afterEnd - beforeStart) + kTick);
  EXPECT_GE(elapsed + kTick, milliseconds(beforeEnd - afterStart));
}

}  // namespace
}  // namespace TALVIR::Platform

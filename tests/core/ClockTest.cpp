#include <gtest/gtest.h>

#include <chrono>

#include "core/Clock.h"
#include "support/HeadlessEngine.h"

using namespace std::chrono;

// Once the clock reads past a whole second, the delta lies between that and the steady clock's span
// from just before the clock started, however slow the machine.
TEST(Clock, SplitAndDeltaMatchTheSteadyClockAcrossASecond) {
  const auto before_start = steady_clock::now();
  vt::Clock clock;
  ASSERT_TRUE(test::waitFor([&] { return clock.split() > 1020000; }, 10));
  const std::int64_t delta = clock.delta();
  const auto most = duration_cast<microseconds>(steady_clock::now() - before_start).count() + 1;
  EXPECT_TRUE(delta > 1020000 && delta <= most) << delta << " against at most " << most;
}

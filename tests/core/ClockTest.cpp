#include <gtest/gtest.h>

#include <chrono>

#include "core/Clock.h"
#include "support/HeadlessEngine.h"

using namespace std::chrono;

// Once the clock reads past a whole second, its spans still lie between the steady clock's from
// just after and from just before the mark, however slow the machine.
TEST(Clock, SplitAndDeltaMatchTheSteadyClockAcrossASecond) {
  const auto before_mark = steady_clock::now();
  vt::Clock clock;
  const auto after_mark = steady_clock::now();
  const auto expectSpan = [&](auto read) {
    const auto least = duration_cast<microseconds>(steady_clock::now() - after_mark).count();
    const std::int64_t span = read();
    EXPECT_GE(span + 1, least);
    EXPECT_LE(span, duration_cast<microseconds>(steady_clock::now() - before_mark).count() + 1);
  };
  ASSERT_TRUE(test::waitFor([&] { return clock.split() > 1020000; }, 10));
  expectSpan([&] { return clock.split(); });
  // The split left the mark.
  expectSpan([&] { return clock.delta(); });
}

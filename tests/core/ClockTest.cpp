#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "core/Clock.h"

using namespace std::chrono;

// Spans lie between the steady clock's from just after and from just before
// the mark, however slow the machine; the first crosses a whole second.
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
  std::this_thread::sleep_until(ceil<seconds>(after_mark) + milliseconds(20));
  expectSpan([&] { return clock.split(); });
  // The split left the mark.
  expectSpan([&] { return clock.delta(); });
}

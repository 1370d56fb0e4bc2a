#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "core/Clock.h"

using namespace std::chrono;

// A span of the clock lies between the steady clock's spans from just after
// and from just before its mark, however slow the machine is. The first
// span crosses a whole second of the monotonic clock.
TEST(Clock, SplitAndDeltaMatchTheSteadyClockAcrossASecond) {
  const auto micros = [](steady_clock::time_point from) {
    return duration_cast<microseconds>(steady_clock::now() - from).count();
  };
  auto before_mark = steady_clock::now();
  vt::Clock clock;
  auto after_mark = steady_clock::now();
  const auto expectSpan = [&](auto read) {
    const std::int64_t least = micros(after_mark);
    const std::int64_t span = read();
    EXPECT_GE(span + 1, least);
    EXPECT_LE(span, micros(before_mark) + 1);
  };
  std::this_thread::sleep_until(ceil<seconds>(after_mark) + milliseconds(20));
  expectSpan([&] { return clock.split(); });
  std::this_thread::sleep_for(milliseconds(5));
  // The split left the mark; the delta moves it.
  const auto before_delta = steady_clock::now();
  expectSpan([&] { return clock.delta(); });
  before_mark = before_delta;
  after_mark = steady_clock::now();
  std::this_thread::sleep_for(milliseconds(20));
  expectSpan([&] { return clock.split(); });
}

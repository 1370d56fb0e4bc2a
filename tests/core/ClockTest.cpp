#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "core/Clock.h"

// The clock is compared with the standard steady clock, never with a bound
// on how long the machine took.
TEST(Clock, SplitKeepsTheMarkAndDeltaMovesIt) {
  using std::chrono::steady_clock;
  const auto microsecondsSince = [](steady_clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - start)
        .count();
  };
  const auto created = steady_clock::now();
  vt::Clock clock;
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  const std::uint32_t first_split = clock.split();
  EXPECT_GE(first_split, 20000u);
  EXPECT_LE(first_split, microsecondsSince(created));
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_GE(clock.split(), first_split + 5000u);

  const std::uint32_t delta = clock.delta();
  const auto restarted = steady_clock::now();
  EXPECT_GE(delta, first_split + 5000u);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  // The mark moved to the delta: a split counts from there, not from the start.
  const std::uint32_t split_after = clock.split();
  EXPECT_LE(split_after, microsecondsSince(restarted) + 1000);
  EXPECT_GE(split_after, 5000u);
}

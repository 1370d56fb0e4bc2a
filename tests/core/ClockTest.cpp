#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "core/Clock.h"

TEST(Clock, SplitKeepsTheMarkAndDeltaMovesIt) {
  vt::Clock clock;
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  const std::uint32_t first_split = clock.split();
  EXPECT_GE(first_split, 20000u);
  EXPECT_LT(first_split, 2000000u);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  const std::uint32_t second_split = clock.split();
  EXPECT_GE(second_split, first_split + 5000u);

  const std::uint32_t delta = clock.delta();
  EXPECT_GE(delta, second_split);
  // The mark moved: a fresh split is far smaller than the delta.
  EXPECT_LT(clock.split(), delta);
}

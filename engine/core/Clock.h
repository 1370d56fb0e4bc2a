#pragma once

#include <cstdint>

namespace vt {

// Measures spans in microseconds on a monotonic clock. Readings are kept as
// wrapping 32-bit values: a span across one wrap still comes out right.
class Clock {
 public:
  Clock();

  // Time since the last mark; moves the mark to now.
  std::uint32_t delta();
  // Time since the last mark; leaves the mark.
  std::uint32_t split() const;

 private:
  static std::uint32_t now();

  std::uint32_t previous_time;
};

}  // namespace vt

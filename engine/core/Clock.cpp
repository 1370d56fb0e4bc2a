#include "core/Clock.h"

#include <ctime>

namespace vt {

Clock::Clock() : previous_time(now()) {}

std::uint32_t Clock::now() {
  timespec ts{};
  clock_gettime(CLOCK_MONOTONIC, &ts);
  const std::uint64_t micros = static_cast<std::uint64_t>(ts.tv_sec) * 1000000u +
                               static_cast<std::uint64_t>(ts.tv_nsec) / 1000u;
  return static_cast<std::uint32_t>(micros);
}

std::uint32_t Clock::delta() {
  const std::uint32_t current = now();
  const std::uint32_t elapsed = current - previous_time;
  previous_time = current;
  return elapsed;
}

std::uint32_t Clock::split() const {
  return now() - previous_time;
}

}  // namespace vt

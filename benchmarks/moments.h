#pragma once

#include <algorithm>
#include <ctime>
#include <vector>

namespace benchmarks {

/// Milliseconds of a clock of the system: CLOCK_MONOTONIC, or CLOCK_PROCESS_CPUTIME_ID for the
/// processor time of all threads.
[[nodiscard]] inline double Milliseconds(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

[[nodiscard]] inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace benchmarks

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

/// One way to do a job, once for each call, or Job::together times.
struct Way {
  std::string name;
  std::function<void()> run;
};

/// A job of the speech mathematics. Its ways are the product's first, then those it is measured
/// against. They are made when it is asked for, since some take long to prepare.
struct Job {
  std::string name;
  std::function<std::vector<Way>()> make;
  /// How many of the job a way does in one call. The table shows the share of one.
  std::size_t together = 1;
};

/// Every job with the product's way and the literal twin's.
[[nodiscard]] std::vector<Job> AllJobs();

/// Adds the ways of other libraries and methods to those of a job that has any.
void AddOtherWays(const std::string& job, std::vector<Way>& ways);

}  // namespace benchmarks

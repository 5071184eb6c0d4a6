#pragma once

#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

/// One way to do a job, once for each call.
struct Way {
  std::string name;
  std::function<void()> run;
};

/// A job of the speech mathematics: the product's way first, then those it is measured against.
struct Job {
  std::string name;
  std::vector<Way> ways;
};

/// Every job with the product's way and the literal twin's.
[[nodiscard]] std::vector<Job> MakeJobs();

/// Adds the ways of other libraries and methods to the jobs that have any.
void AddOtherWays(std::vector<Job>& jobs);

}  // namespace benchmarks

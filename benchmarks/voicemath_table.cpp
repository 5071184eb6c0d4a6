// The speech mathematics next to its baselines, in one run.
//
//   voicemath_table                    a table of medians and of their ratios
//   voicemath_table JOB WAY TIMES      runs the product or the literal twin so often and prints
//   nothing, for programs that
//                                      count instructions; WAY is the start of a name

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <vector>

#include "benchmarks/voicemath_jobs.h"

namespace {

using benchmarks::Job;
using benchmarks::Way;

constexpr int kRounds = 101;
constexpr double kSecondsPerRound = 0.002;

/// Processor time of this thread: what other programs take does not count.
double Now() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double Measure(const Way& way, int times) {
  const double begin = Now();
  for (int i = 0; i < times; ++i) {
    way.run();
  }
  return (Now() - begin) / times;
}

int TimesForARound(const Way& way) {
  way.run();
  const double once = std::max(Measure(way, 3), 1e-9);
  return std::max(1, static_cast<int>(kSecondsPerRound / once));
}

double Median(std::vector<double> values) {
  std::ranges::nth_element(values, values.begin() + kRounds / 2);
  return values[kRounds / 2];
}

std::vector<Way> WaysOf(const Job& job) {
  std::vector<Way> ways = job.make();
  benchmarks::AddOtherWays(job.name, ways);
  return ways;
}

/// The ways take turns, so that all of them meet the same moods of the machine.
void Print(const Job& job) {
  const std::vector<Way> ways = WaysOf(job);
  std::vector<int> times;
  for (const Way& way : ways) {
    times.push_back(TimesForARound(way));
  }
  std::vector<std::vector<double>> seconds(ways.size());
  std::vector<std::vector<double>> ratios(ways.size());
  for (int round = 0; round < kRounds; ++round) {
    for (std::size_t i = 0; i < ways.size(); ++i) {
      seconds[i].push_back(Measure(ways[i], times[i]));
      ratios[i].push_back(seconds[i].back() / seconds[0].back());
    }
  }
  for (std::size_t i = 0; i < ways.size(); ++i) {
    std::printf("%-26s %-34s %12.2f us %9.2f x\n", i == 0 ? job.name.c_str() : "",
                ways[i].name.c_str(), 1e6 * Median(seconds[i]) / static_cast<double>(job.together),
                Median(ratios[i]));
  }
}

int RunOne(std::string_view name, std::string_view way, int times) {
  for (const Job& job : benchmarks::AllJobs()) {
    if (job.name != name) {
      continue;
    }
    // Without the other libraries, since their planning never takes the same number of steps twice.
    for (const Way& candidate : job.make()) {
      if (candidate.name.starts_with(way)) {
        for (int i = 0; i < times; ++i) {
          candidate.run();
        }
        return 0;
      }
    }
  }
  std::fputs("no such job or way\n", stderr);
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  if (count == 4) {
    return RunOne(arguments[1], arguments[2], std::atoi(arguments[3]));
  }
  std::printf("%-26s %-34s %15s %11s\n", "job", "way", "median", "to product");
  for (const Job& job : benchmarks::AllJobs()) {
    Print(job);
  }
  return 0;
}

#include "benchmarks/voicemath_jobs.h"

namespace benchmarks {

void AddOtherWays(std::vector<Job>&) {}

}  // namespace benchmarks

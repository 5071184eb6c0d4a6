#include "benchmarks/voicemath_jobs.h"

namespace benchmarks {

void AddOtherWays(const std::string&, std::vector<Way>&) {}

}  // namespace benchmarks

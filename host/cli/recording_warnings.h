#pragma once

#include <string>
#include <vector>

#include "voicemath/recording_review.h"

namespace cli {

/// Returns one sentence for each thing that is odd about a recording. What makes a recording
/// useless is not among them.
[[nodiscard]] std::vector<std::string> DescribeOddities(const voicemath::RecordingReview& review);

}  // namespace cli

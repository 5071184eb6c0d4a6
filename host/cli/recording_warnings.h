#pragma once

#include <string>
#include <vector>

#include "voicemath/recording_review.h"

namespace cli {

/// What is odd about a recording, a sentence for each. What makes it useless is none of these.
[[nodiscard]] std::vector<std::string> DescribeOddities(const voicemath::RecordingReview& review);

}  // namespace cli

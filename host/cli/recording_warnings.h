#pragma once

#include <optional>
#include <string>
#include <vector>

#include "voicemath/recording_review.h"

namespace cli {

/// Says on standard error what is odd about a recording, one line for each thing; `name` is what
/// the recording is called there. Returns the sentences, for "warnings". What makes a recording
/// useless is not among them. A recording without a review has none.
[[nodiscard]] std::vector<std::string> WarnOfOddities(
    const std::optional<voicemath::RecordingReview>& review, const std::string& name);

}  // namespace cli

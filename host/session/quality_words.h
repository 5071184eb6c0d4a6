#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/session/session.h"
#include "maintenance/tag_quality.h"
#include "tags/tag_reader.h"

namespace session {

/// Returns the tags for maintenance::JudgeTags, in the same order.
[[nodiscard]] std::vector<maintenance::JudgedTag> ToJudged(std::span<const tags::ListedTag> tags);

/// Returns the judgement on a recording during which the microphone was lost. Nothing of it is
/// kept.
[[nodiscard]] inline platform::Result<voicemath::TakeQuality, voicemath::ReviewError>
InterruptedTake() {
  return voicemath::WithoutSamples(voicemath::Verdict::kInterrupted);
}

/// Reports that a file of the tag is there and cannot be read.
void ReportUnjudged(Session& session, const tags::ListedTag& tag);

/// Returns a verdict on a recording as a sentence without a full stop. That of kTooAlike does not
/// name the tag.
[[nodiscard]] std::string DescribeVerdict(voicemath::Verdict verdict,
                                          const voicemath::TakeQuality& quality);

/// Returns a sentence for each verdict, and for each tag that is too alike with its name.
[[nodiscard]] std::vector<std::string> DescribeAll(const maintenance::TagQuality& quality,
                                                   std::span<const tags::ListedTag> tags);

}  // namespace session

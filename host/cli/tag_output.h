#pragma once

#include <span>

#include "host/cli/output.h"
#include "host/cli/session.h"
#include "maintenance/tag_quality.h"
#include "tags/tag_reader.h"

namespace cli {

/// Returns a tag as {"name","contact","phoneType","text","wave","template","stale"}.
[[nodiscard]] Json ToJson(const Session& session, const tags::ListedTag& tag);

/// Returns {"verdicts","peakDb","snrDb","tooAlike"} of a recording by itself, or null if it could
/// not be read. A number that is not known is null.
[[nodiscard]] Json QualityToJson(
    const platform::Result<voicemath::TakeQuality, voicemath::ReviewError>& take);

/// Returns the same of a tag among `tags`, with the tags that are too alike.
[[nodiscard]] Json QualityToJson(const maintenance::TagQuality& quality,
                                 std::span<const maintenance::JudgedTag> tags);

}  // namespace cli

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "platform/result.h"
#include "voicemath/prepared_template.h"
#include "voicemath/template_distance.h"

namespace voicemath {

/// The most templates that are kept and compared: one for each tag that there can be.
inline constexpr std::size_t kMostTemplates = 100;

/// A search calls this now and then with the share of the work that is done. Returns whether to go
/// on. May be empty.
using SearchWatch = std::function<bool(double)>;

/// Why a search found nothing: its watch said stop.
struct SearchStopped {};

/// The template that is most easily confused with another one.
struct Neighbour {
  std::int32_t index = -1;        ///< -1 only if there is no other template.
  float distance = kMaxDistance;  ///< Also if no template is nearer.
};

/// Finds for each template the nearest other one. Of several at the same distance the one with the
/// lowest index counts. If all are kMaxDistance away, it is the first other one. The template whose
/// neighbour is looked for is the first argument of TemplateDistance. `nearest` is as long as
/// `templates`, at most kMostTemplates. After a failure `nearest` means nothing; there is none
/// without a `watch`.
[[nodiscard]] platform::Result<void, SearchStopped> FindNearest(
    std::span<const PreparedTemplate> templates, std::span<Neighbour> nearest,
    const SearchWatch& watch = {});

/// Returns how far an utterance may be from a template to be accepted as its name, if the nearest
/// other one of `count` templates is `nearest` away.
[[nodiscard]] inline float AcceptanceDistance(float nearest, std::int32_t count) {
  const float share = nearest / static_cast<float>(count);
  return nearest - share;
}

/// Of the repetitions of a name by one speaker seven in ten are nearer to its template than this
/// (docs/quality.md).
inline constexpr float kRepetitionDistance = 0.15F;

/// Returns whether two of `count` templates are so near to each other that the acceptance distance
/// between them leaves no room for a repetition: it is refused, or taken for the other name.
[[nodiscard]] inline bool AreTooAlike(float distance, std::int32_t count) {
  return AcceptanceDistance(distance, count) < kRepetitionDistance;
}

}  // namespace voicemath

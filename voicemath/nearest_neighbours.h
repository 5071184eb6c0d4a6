#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "voicemath/prepared_template.h"
#include "voicemath/template_distance.h"

namespace voicemath {

/// The most templates that are kept and compared: one for each tag that there can be.
inline constexpr std::size_t kMostTemplates = 100;

/// Asked now and then by a search, with the share of the work that is done: whether to go on. Empty
/// if nobody wants to know.
using SearchWatch = std::function<bool(double)>;

/// The template that is most easily confused with another one.
struct Neighbour {
  std::int32_t index = -1;        ///< -1 only where there is no other template.
  float distance = kMaxDistance;  ///< And so where no template is nearer.
};

/// Finds for each template the nearest other one; of several at the same distance the one with the
/// lowest index, which is the first other one where all are kMaxDistance away. The template in
/// whose place the search stands counts as the first of TemplateDistance. `nearest` is as long as
/// `templates`, at most kMostTemplates. Returns false if `watch` said stop; `nearest` then means
/// nothing.
bool FindNearest(std::span<const PreparedTemplate> templates, std::span<Neighbour> nearest,
                 const SearchWatch& watch = {});

}  // namespace voicemath

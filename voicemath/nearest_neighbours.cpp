#include "voicemath/nearest_neighbours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "voicemath/outline_distances.h"

namespace voicemath {
namespace {

/// The search for all templates at once.
///
/// A hundred templates are 4,950 pairs, and few of them decide anything. So the cheap outlines of
/// all pairs come first. Then each template is compared with its likeliest neighbour, which gives
/// it a reach: another template matters only if it is nearer than that. For nearly all pairs the
/// outline already proves that it is not. A pair of unequal lengths has the same distance both ways
/// and is compared once for both.
///
/// A template is named by its rank in the order of the lengths. So templates that are looked at
/// together are about as long as each other.
class NeighbourSearch {
 public:
  NeighbourSearch(std::span<const PreparedTemplate> templates, std::span<Neighbour> nearest,
                  const SearchWatch& watch)
      : m_templates(templates), m_nearest(nearest), m_watch(watch) {}

  [[nodiscard]] platform::Result<void, SearchStopped> Run() {
    for (std::size_t i = 0; i < m_templates.size(); ++i) {
      m_nearest[i] = {.index = m_templates.size() < 2 ? -1
                               : i == 0               ? 1
                                                      : 0,
                      .distance = kMaxDistance};
      m_ranked[i] = &m_templates[i];
    }
    std::ranges::sort(Ranked(m_templates.size()), {}, &PreparedTemplate::Frames);
    CompareOutlines();
    for (std::size_t i = 0; i < m_templates.size() && !m_isStopped; ++i) {
      const std::size_t j = m_likeliest[i];
      if (j != i) {
        Compare(std::min(i, j), std::max(i, j));
      }
    }
    for (std::size_t j = 1; j < m_templates.size(); ++j) {
      for (std::size_t i = 0; i < j && !m_isStopped; ++i) {
        Compare(i, j);
      }
    }
    if (m_isStopped) {
      return platform::Failure(SearchStopped{});
    }
    return {};
  }

 private:
  /// Marks a pair that was compared. It is above every limit.
  static constexpr std::uint32_t kCompared = std::numeric_limits<std::uint32_t>::max();

  [[nodiscard]] std::span<const PreparedTemplate*> Ranked(std::size_t count) {
    return std::span(m_ranked).first(count);
  }

  /// Which of two templates of the same length slides makes a difference.
  [[nodiscard]] bool IsSymmetric(std::size_t i, std::size_t j) const {
    return m_ranked[i]->Frames() != m_ranked[j]->Frames();
  }

  /// Returns how much work two templates can be, in shifts times frames.
  [[nodiscard]] double WeightOf(std::size_t i, std::size_t j) const {
    const double a = m_ranked[i]->Frames();
    const double b = m_ranked[j]->Frames();
    return (b - a + 1) * (a + 1) + b;
  }

  /// Asks the watch. Returns false after it said stop.
  [[nodiscard]] bool GoesOn() {
    if (!m_isStopped && m_watch && !m_watch(m_weight == 0 ? 0.0 : m_done / m_weight)) {
      m_isStopped = true;
    }
    return !m_isStopped;
  }

  void CompareOutlines() {
    FillOutlineDistances(Ranked(m_templates.size()), m_outlines, m_goesOn);
    for (std::size_t j = 0; j < m_templates.size() && GoesOn(); ++j) {
      m_likeliest[j] = j;
      for (std::size_t i = 0; i < j; ++i) {
        if (m_watch) {
          m_weight += WeightOf(i, j);
        }
        const std::uint32_t outline = m_outlines.Of(i, j);
        NoteOutline(i, j, outline);
        NoteOutline(j, i, outline);
      }
    }
  }

  void NoteOutline(std::size_t of, std::size_t other, std::uint32_t outline) {
    if (m_likeliest[of] == of || outline < m_least[of]) {
      m_likeliest[of] = other;
      m_least[of] = outline;
    }
  }

  /// Compares two templates if that can change anything. `i` is the lower rank.
  void Compare(std::size_t i, std::size_t j) {
    const std::uint32_t outline = std::exchange(m_outlines.Of(i, j), kCompared);
    if (outline == kCompared) {
      return;
    }
    if (m_watch) {
      m_done += WeightOf(i, j);
    }
    const std::size_t further = m_reach[i].Distance() < m_reach[j].Distance() ? j : i;
    if (outline >= GridLimit(*m_ranked[j], m_reach[further]) || !GoesOn()) {
      return;
    }
    if (IsSymmetric(i, j)) {
      const float both = DistanceOf(i, j, m_reach[further]);
      Consider(i, j, both);
      Consider(j, i, both);
    } else {
      Consider(i, j, DistanceOf(i, j, m_reach[i]));
      Consider(j, i, DistanceOf(j, i, m_reach[j]));
    }
  }

  [[nodiscard]] float DistanceOf(std::size_t i, std::size_t j, const DistanceBound& bound) {
    return TemplateDistance(*m_ranked[i], *m_ranked[j], bound, m_goesOn);
  }

  void Consider(std::size_t of, std::size_t candidate, float distance) {
    Neighbour& nearest = m_nearest[IndexOf(of)];
    const auto index = static_cast<std::int32_t>(IndexOf(candidate));
    if (distance < nearest.distance || (distance == nearest.distance && index < nearest.index)) {
      nearest = {.index = index, .distance = distance};
      // An equal distance still matters, since the lower index wins.
      m_reach[of] = DistanceBound(std::min(std::nextafter(distance, kMaxDistance), kMaxDistance));
    }
  }

  [[nodiscard]] std::size_t IndexOf(std::size_t rank) const {
    return static_cast<std::size_t>(m_ranked[rank] - m_templates.data());
  }

  std::span<const PreparedTemplate> m_templates;
  std::span<Neighbour> m_nearest;
  const SearchWatch& m_watch;
  const GoOn m_goesOn = m_watch ? GoOn([this] { return GoesOn(); }) : GoOn();
  bool m_isStopped = false;
  double m_weight = 0;  ///< Of all pairs.
  double m_done = 0;    ///< Of those that were compared or need not be.
  // By rank.
  std::array<const PreparedTemplate*, kMostTemplates> m_ranked;
  std::array<std::size_t, kMostTemplates> m_likeliest;
  std::array<std::uint32_t, kMostTemplates> m_least;
  std::array<DistanceBound, kMostTemplates>
      m_reach;  ///< What a comparison must be below to matter.
  PairTable m_outlines;
};

}  // namespace

platform::Result<void, SearchStopped> FindNearest(std::span<const PreparedTemplate> templates,
                                                  std::span<Neighbour> nearest,
                                                  const SearchWatch& watch) {
  return NeighbourSearch(templates, nearest, watch).Run();
}

}  // namespace voicemath

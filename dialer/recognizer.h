#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dialer/taught_tags.h"
#include "dialer/utterance.h"

namespace dialer {

/// How sure it is who was meant.
enum class Certainty : std::uint8_t {
  kSure,
  kOneOf,    ///< One of the candidates, which are to be offered.
  kUnknown,  ///< Nobody who was taught, or not understood. The candidates are guesses.
};

/// A number that may be meant, with the one of its tags that is nearest.
struct Candidate {
  std::u16string tag;
  std::optional<std::int32_t> oid;  ///< As in TaughtTag.
  std::u16string phoneKind;
  float distance = 0;  ///< From the tag. Its scale differs with the steps; 0 is the same.
  float score = 0;     ///< How much speaks for it, 0 to 1, compared with all others.
};

struct Answer {
  Certainty certainty = Certainty::kUnknown;
  /// The best first, at most kMostCandidates, each of another number. Empty if nothing is taught or
  /// nothing was said.
  std::vector<Candidate> candidates;
};

inline constexpr std::size_t kMostCandidates = 3;

/// A tag that can be meant.
struct KnownTag {
  Candidate candidate;  ///< Without distance and score. Contact and kind are its number.
  std::shared_ptr<const Utterance> utterance;
};

/// Knows who is meant. It does not change: several threads may use one.
///
/// To make one takes about 40 ms of processor time for a hundred tags (docs/accuracy.md), so it is
/// made before somebody speaks.
class Recognizer {
 public:
  explicit Recognizer(std::span<const TaughtTag> tags, Steps steps = Steps::kBoth);
  explicit Recognizer(std::vector<KnownTag> tags, Steps steps = Steps::kBoth);

  /// Returns who is meant by a take.
  [[nodiscard]] Answer Recognize(Take take) const;

  /// Returns who is meant by somebody who says a name several times. The takes count alike.
  [[nodiscard]] Answer Recognize(std::span<const Take> takes) const;
  [[nodiscard]] Answer Recognize(std::span<const Utterance> takes) const;

 private:
  [[nodiscard]] float MeasureUntaught() const;

  Steps m_steps;
  std::vector<KnownTag> m_tags;
  std::vector<std::size_t> m_numbers;  ///< For each tag the same as for all tags of its number.
  float m_untaught;                    ///< The evidence that a word has here that was not taught.
};

}  // namespace dialer

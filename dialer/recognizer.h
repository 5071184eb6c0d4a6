#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dialer/taught_tags.h"
#include "voicemath/prepared_template.h"

namespace dialer {

/// How much is known of who was meant.
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
  float distance = 0;  ///< From the tag. Its scale differs from step to step; 0 is the same.
  float score = 0;     ///< How much speaks for it, 0 to 1, compared with all others.
};

struct Answer {
  Certainty certainty = Certainty::kUnknown;
  /// The best first, at most kMostCandidates, each of another number. Empty if nothing is taught or
  /// nothing was said.
  std::vector<Candidate> candidates;
};

inline constexpr std::size_t kMostCandidates = 3;

/// How finely a take is compared.
enum class Steps : std::uint8_t {
  kBoth,           ///< Templates put the tags in order; the recordings decide.
  kTemplatesOnly,  ///< For slow processors.
};

/// A take of a spoken name: voicemath::kSamplesPerSecond. It may have silence at both ends.
using Take = std::span<const std::int16_t>;

/// Knows who is meant. It keeps what it needs of the tags and does not change: several threads may
/// use one.
class Recognizer {
 public:
  explicit Recognizer(std::span<const TaughtTag> tags);

  /// Returns who is meant by a take.
  [[nodiscard]] Answer Recognize(Take take, Steps steps = Steps::kBoth) const;

  /// Returns who is meant by somebody who says a name several times. The takes count alike.
  [[nodiscard]] Answer Recognize(std::span<const Take> takes, Steps steps = Steps::kBoth) const;

 private:
  struct Tag {
    Candidate candidate;     ///< Without distance and score.
    std::size_t number = 0;  ///< Alike for all tags of one number.
    voicemath::PreparedTemplate shape;
  };

  std::vector<Tag> m_tags;
};

}  // namespace dialer

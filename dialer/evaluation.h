#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialer/recognizer.h"
#include "dialer/utterance.h"

namespace dialer {

// How often the recognizer is right, measured on recordings of which it is known what is said.

/// What the name of a recording says: LABEL_SPEAKER_TAKE.wav, in the letters of its name.
struct TakeName {
  std::string label;
  std::string speaker;
  std::uint32_t take = 0;
};

/// Returns whether a file's name has the ending of wave files.
[[nodiscard]] bool IsWaveName(std::string_view file);

/// Returns what a file's name, without its folder, says. A label may have underscores. Returns
/// nothing if it is no such name.
[[nodiscard]] std::optional<TakeName> ParseTakeName(std::string_view file);

/// The takes of one speaker: those of each label by their numbers.
using SpokenLabels =
    std::map<std::string, std::map<std::uint32_t, std::shared_ptr<const Utterance>>>;

/// How many of how many.
struct Count {
  std::size_t part = 0;
  std::size_t whole = 0;

  Count& operator+=(const Count& other);
  friend bool operator==(const Count&, const Count&) = default;
};

/// A share with the limits between which it truly lies with a probability of 95 %.
struct Share {
  double rate = 0;  ///< No number if nothing was counted.
  double low = 0;
  double high = 1;
};

/// Returns the share and its score interval (Wilson 1927), which holds for small counts too.
[[nodiscard]] Share ToShare(const Count& count);

struct EvaluationFigures {
  Count forced;       ///< The best candidate is the right one, of all takes that were asked.
  Count sure;         ///< Answered kSure, of these.
  Count wrong;        ///< The wrong one, of those answered kSure.
  Count unknownSure;  ///< Answered kSure, of takes whose label was not taught.

  EvaluationFigures& operator+=(const EvaluationFigures& other);
};

/// One voice, with as many tags for each label as there are `taught`.
///
/// There are as many rounds as a label has takes at most. In a round, `taught` takes of each label
/// teach it, and one take is asked. Round by round all of them move on by one, so each take is
/// asked once and teaches as often as any other. The take that is asked is far from those that
/// teach, since takes that were made one after the other are more alike. Then the same takes are
/// asked while their own label and some others are not taught: three of ten labels, and of more or
/// fewer as many in proportion.
class Evaluation {
 public:
  /// Labels with no more takes than `taught`, which is at least 1, are left out.
  Evaluation(SpokenLabels labels, std::size_t taught, Steps steps = Steps::kBoth);

  [[nodiscard]] std::size_t CountRounds() const;
  /// Several threads may run rounds at once.
  [[nodiscard]] EvaluationFigures RunRound(std::size_t round) const;

 private:
  using Takes = std::vector<std::shared_ptr<const Utterance>>;

  [[nodiscard]] Recognizer Teach(std::size_t round, std::size_t firstLeftOut,
                                 std::size_t leftOut) const;
  [[nodiscard]] const Utterance& Asked(std::size_t label, std::size_t round) const;

  std::vector<Takes> m_labels;
  std::size_t m_taught;
  Steps m_steps;
};

}  // namespace dialer

#include "dialer/recognizer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "dialer/speech_features.h"
#include "voicemath/template_distance.h"

namespace dialer {
namespace {

/// So many tags are compared finely whatever it costs, and others while there is time, counted in
/// pairs of times. A hundred tags of usual names are about a million pairs.
constexpr std::size_t kLeastCompared = 10;
constexpr std::size_t kMostPairs = 3'000'000;

/// Evidence from which on somebody is sure, or is one of those who may be meant.
struct Limits {
  float sure;
  float some;
};

// How sure is sure. What counts is how much nearer the best number is than anything that it is not.
// No distance counts by itself, since voices, microphones and words differ too much for that.
//
// What it is not is, first, the next number. This says too little if a word is said that was never
// taught and sounds a little like one name. So there is, second, nonsense: the take played
// backwards, and the take with its halves swapped. Both are the same voice in the same room, and
// were never taught. Their distance from the best tags shows how far a word is that is not meant. A
// name such as Anna is nearly itself backwards, so the geometric mean of both counts.
//
// With `other` and `nonsense` as multiples of the best distance, the evidence is
// min(other, nonsense) * nonsense. It means the same for one tag as for many (docs/accuracy.md).
constexpr Limits kLimits{3.0F, 1.35F};
constexpr Limits kTemplateLimits{6.0F, 1.5F};

/// A tag that was compared.
struct Compared {
  std::size_t tag;
  float distance;
};

template <typename Form, typename Measure>
float MeanDistance(std::span<const Form> takes, const Measure& measure) {
  float sum = 0;
  for (const Form& take : takes) {
    sum += measure(take);
  }
  return sum / static_cast<float>(takes.size());
}

/// One comparison of takes with all tags.
class Comparison {
 public:
  Comparison(std::span<const KnownTag> tags, std::span<const std::size_t> numbers,
             std::span<const Utterance> takes)
      : m_tags(tags), m_numbers(numbers), m_takes(takes) {}

  [[nodiscard]] Answer Run(Steps steps) {
    CompareTemplates();
    if (steps == Steps::kBoth) {
      CompareSounds();
    }
    const std::vector<Compared> best = KeepNearestOfEachNumber();
    const float nonsense = std::sqrt(NonsenseDistance(Nonsense::kBackwards, steps, best.front()) *
                                     NonsenseDistance(Nonsense::kSwapped, steps, best.front()));
    return Decide(best, nonsense, steps == Steps::kBoth ? kLimits : kTemplateLimits);
  }

 private:
  void CompareTemplates() {
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      const auto& shape = m_tags[i].utterance->GetShape();
      m_compared.push_back({i, MeanDistance(m_takes, [&](const Utterance& take) {
                              return voicemath::TemplateDistance(take.GetShape(), shape);
                            })});
    }
    std::ranges::stable_sort(m_compared, {}, &Compared::distance);
  }

  /// Compares the best tags finely. Those for which there was no time are forgotten.
  void CompareSounds() {
    std::size_t pairs = 0;
    std::size_t done = 0;
    for (; done < m_compared.size() && (done < kLeastCompared || pairs < kMostPairs); ++done) {
      const SpeechFeatures& features = m_tags[m_compared[done].tag].utterance->GetFeatures();
      m_compared[done].distance = MeanDistance(m_takes, [&](const Utterance& take) {
        pairs += take.GetFeatures().Frames() * features.Frames();
        return WarpingDistance(take.GetFeatures(), features);
      });
    }
    m_compared.resize(done);
    std::ranges::stable_sort(m_compared, {}, &Compared::distance);
  }

  [[nodiscard]] std::vector<Compared> KeepNearestOfEachNumber() const {
    std::vector<Compared> best;
    for (const Compared& compared : m_compared) {
      const std::size_t number = m_numbers[compared.tag];
      if (std::ranges::none_of(
              best, [&](const Compared& other) { return m_numbers[other.tag] == number; })) {
        best.push_back(compared);
      }
    }
    return best;
  }

  /// Returns how far nonsense is from the nearest tag of the number of `best`.
  [[nodiscard]] float NonsenseDistance(Nonsense nonsense, Steps steps, const Compared& best) const {
    std::vector<SpeechFeatures> features;
    std::vector<voicemath::PreparedTemplate> shapes;
    for (const Utterance& take : m_takes) {
      if (steps == Steps::kBoth) {
        features.push_back(take.FeaturesOf(nonsense));
      } else {
        shapes.push_back(take.ShapeOf(nonsense));
      }
    }
    float nearest = std::numeric_limits<float>::max();
    for (const Compared& compared : m_compared) {
      if (m_numbers[compared.tag] != m_numbers[best.tag]) {
        continue;
      }
      const Utterance& tag = *m_tags[compared.tag].utterance;
      const float distance =
          steps == Steps::kBoth
              ? MeanDistance(std::span<const SpeechFeatures>(features),
                             [&](const auto& f) { return WarpingDistance(f, tag.GetFeatures()); })
              : MeanDistance(
                    std::span<const voicemath::PreparedTemplate>(shapes),
                    [&](const auto& s) { return voicemath::TemplateDistance(s, tag.GetShape()); });
      nearest = std::min(nearest, distance);
    }
    return nearest;
  }

  [[nodiscard]] Answer Decide(std::span<const Compared> best, float nonsense,
                              const Limits& limits) const {
    constexpr float kSame = 1e-6F;
    const float nearest = std::max(best.front().distance, kSame);
    const float other = best.size() > 1 ? best[1].distance : std::numeric_limits<float>::max();
    const float evidence = std::min(other, nonsense) / nearest * (nonsense / nearest);
    Answer answer;
    answer.certainty = evidence >= limits.sure   ? Certainty::kSure
                       : evidence >= limits.some ? Certainty::kOneOf
                                                 : Certainty::kUnknown;
    float sum = Weight(nonsense, nearest);
    for (const Compared& compared : best) {
      sum += Weight(compared.distance, nearest);
    }
    for (const Compared& compared : best.first(std::min(best.size(), kMostCandidates))) {
      Candidate candidate = m_tags[compared.tag].candidate;
      candidate.distance = compared.distance;
      candidate.score = Weight(compared.distance, nearest) / sum;
      answer.candidates.push_back(std::move(candidate));
    }
    return answer;
  }

  /// Returns how much speaks for what is `distance` away: 1 for the nearest one, and less and less
  /// for those further away. A score is a share of the sum of all, nonsense included.
  [[nodiscard]] static float Weight(float distance, float nearest) {
    const float square =
        nearest / std::max(distance, nearest) * (nearest / std::max(distance, nearest));
    return square * square;
  }

  const std::span<const KnownTag> m_tags;
  const std::span<const std::size_t> m_numbers;
  const std::span<const Utterance> m_takes;
  std::vector<Compared> m_compared;  ///< The nearest first.
};

std::vector<KnownTag> PrepareTags(std::span<const TaughtTag> tags) {
  std::vector<KnownTag> known;
  for (const TaughtTag& tag : tags) {
    known.push_back({{tag.name, tag.oid, tag.phoneKind}, std::make_shared<Utterance>(tag)});
  }
  return known;
}

}  // namespace

Recognizer::Recognizer(std::span<const TaughtTag> tags) : Recognizer(PrepareTags(tags)) {}

Recognizer::Recognizer(std::vector<KnownTag> tags) : m_tags(std::move(tags)) {
  for (const KnownTag& tag : m_tags) {
    const auto same = std::ranges::find_if(m_tags, [&tag](const KnownTag& other) {
      return &other == &tag || IsSameNumber(other.candidate, tag.candidate);
    });
    m_numbers.push_back(static_cast<std::size_t>(same - m_tags.begin()));
  }
}

Answer Recognizer::Recognize(Take take, Steps steps) const {
  return Recognize(std::span(&take, 1), steps);
}

Answer Recognizer::Recognize(std::span<const Take> takes, Steps steps) const {
  std::vector<Utterance> utterances;
  for (const Take take : takes) {
    if (take.empty()) {
      return {};
    }
    utterances.emplace_back(take);
  }
  return Recognize(utterances, steps);
}

Answer Recognizer::Recognize(std::span<const Utterance> takes, Steps steps) const {
  return m_tags.empty() || takes.empty() ? Answer()
                                         : Comparison(m_tags, m_numbers, takes).Run(steps);
}

}  // namespace dialer

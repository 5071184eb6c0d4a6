#include "dialer/recognizer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "dialer/speech_features.h"
#include "voicemath/template_distance.h"

// First every tag is compared by its template, which is quick and puts most names in the right
// order. Then the nearest ones are compared by their sound, which decides.
namespace dialer {
namespace {

/// So many tags are compared finely whatever it costs, and others while there is time, counted in
/// pairs of times. A hundred tags of usual names are about a million pairs.
constexpr std::size_t kLeastCompared = 10;
constexpr std::size_t kMostPairs = 3'000'000;

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
// min(other, nonsense) * nonsense. It means much the same for one tag as for many.
//
// How much of it untaught words have differs from one list of names to the next: if Kim and Tim are
// taught, Jim has a lot. So each tag is once heard as if its number had not been taught. Four in
// five of these tags have less evidence than `untaught`, and a take has to have more than this to
// the power of 3/4 times a constant: what few tags teach is partly chance, so it is not taken at
// its full word. docs/accuracy.md shows from which measurements the constants come.

/// What the evidence is multiplied with.
struct Limits {
  float sure;
  float some;
};
constexpr Limits kLimits{2.0F, 1.0F};
constexpr float kUntaughtPower = 0.75F;
/// A tie is never sure: if two numbers are this near to each other, the caller is asked which one
/// is meant, however unlike nonsense both are. So it is for two numbers that were taught with the
/// same word, and for two takes that speak for different numbers.
constexpr float kLeastLead = 1.1F;
// Templates alone are a weak measure, of which only the first step is left: min(other, nonsense).
constexpr Limits kTemplateLimits{6.0F, 1.1F};

/// What untaught words have usually. If few names are taught, little is learned from them, so this
/// counts as much as two of them.
constexpr float kUsualUntaught = 2.0F;
constexpr std::size_t kUsualCounts = 2;
constexpr double kUntaughtShare = 0.8;
/// No more is learned from one tag. Two numbers that were taught with the same recording would make
/// the evidence endless, and then nothing that is said would be known.
constexpr float kMostUntaughtEvidence = 10.0F;
/// So many tags are heard as if they were not taught, as long as there is time. What they are taken
/// for is among the tags that the templates put first, so fewer are compared than in earnest.
constexpr std::size_t kMostUntaught = 20;
constexpr std::size_t kMostUntaughtPairs = 25'000'000;
constexpr std::size_t kMostPairsOfUntaught = 200'000;

/// A tag that was compared.
struct Compared {
  std::size_t tag;
  float distance;
};

/// Returns the mean over all takes, each in the form that is measured.
template <typename Forms, typename Measure>
float MeanDistance(const Forms& takes, const Measure& measure) {
  float sum = 0;
  for (const auto& take : takes) {
    sum += measure(take);
  }
  return sum / static_cast<float>(takes.size());
}

/// One comparison of takes with all tags, of which there is at least one.
class Comparison {
 public:
  Comparison(std::span<const KnownTag> tags, std::span<const std::size_t> numbers,
             std::span<const Utterance> takes, Steps steps, std::size_t mostPairs)
      : m_tags(tags), m_numbers(numbers), m_takes(takes), m_steps(steps) {
    CompareTemplates();
    if (steps == Steps::kBoth) {
      CompareSounds(mostPairs);
    }
    KeepNearestOfEachNumber();
    m_nonsense =
        std::sqrt(NonsenseDistance(Nonsense::kBackwards) * NonsenseDistance(Nonsense::kSwapped));
  }

  [[nodiscard]] std::size_t CountPairs() const { return m_pairs; }

  /// Returns what speaks for the best number.
  [[nodiscard]] float Evidence() const {
    const float other = m_best.size() > 1 ? std::max(m_best[1].distance, Nearest()) : m_nonsense;
    const float lead = std::min(other, m_nonsense) / Nearest();
    return m_steps == Steps::kBoth ? lead * (m_nonsense / Nearest()) : lead;
  }

  /// Returns how much nearer the best number is than the next one: 1 if they are as near.
  [[nodiscard]] float Lead() const {
    return m_best.size() > 1 ? m_best[1].distance / Nearest() : std::numeric_limits<float>::max();
  }

  /// Returns the best numbers. A score is a number's share of what speaks for all, nonsense
  /// included.
  [[nodiscard]] std::vector<Candidate> BestCandidates() const {
    float sum = Weight(m_nonsense);
    for (const Compared& compared : m_best) {
      sum += Weight(compared.distance);
    }
    std::vector<Candidate> candidates;
    for (const Compared& compared :
         std::span(m_best).first(std::min(m_best.size(), kMostCandidates))) {
      Candidate candidate = m_tags[compared.tag].candidate;
      candidate.distance = compared.distance;
      candidate.score = Weight(compared.distance) / sum;
      candidates.push_back(std::move(candidate));
    }
    return candidates;
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

  /// Compares the best tags finely. Those for which there is no time are forgotten.
  void CompareSounds(std::size_t mostPairs) {
    std::size_t done = 0;
    for (; done < m_compared.size() && (done < kLeastCompared || m_pairs < mostPairs); ++done) {
      const SpeechFeatures& features = m_tags[m_compared[done].tag].utterance->GetFeatures();
      m_compared[done].distance = MeanDistance(m_takes, [&](const Utterance& take) {
        m_pairs += take.GetFeatures().Frames() * features.Frames();
        return WarpingDistance(take.GetFeatures(), features);
      });
    }
    m_compared.resize(done);
    std::ranges::stable_sort(m_compared, {}, &Compared::distance);
  }

  void KeepNearestOfEachNumber() {
    for (const Compared& compared : m_compared) {
      const std::size_t number = m_numbers[compared.tag];
      if (std::ranges::none_of(
              m_best, [&](const Compared& other) { return m_numbers[other.tag] == number; })) {
        m_best.push_back(compared);
      }
    }
  }

  /// Returns how far nonsense is from the nearest tag of the best number.
  [[nodiscard]] float NonsenseDistance(Nonsense nonsense) const {
    std::vector<SpeechFeatures> sounds;
    std::vector<voicemath::PreparedTemplate> shapes;
    for (const Utterance& take : m_takes) {
      if (m_steps == Steps::kBoth) {
        sounds.push_back(take.FeaturesOf(nonsense));
      } else {
        shapes.push_back(take.ShapeOf(nonsense));
      }
    }
    float nearest = std::numeric_limits<float>::max();
    for (const Compared& compared : m_compared) {
      if (m_numbers[compared.tag] == m_numbers[m_best.front().tag]) {
        const Utterance& tag = *m_tags[compared.tag].utterance;
        const auto warp = [&tag](const auto& s) { return WarpingDistance(s, tag.GetFeatures()); };
        const auto slide = [&tag](const auto& s) {
          return voicemath::TemplateDistance(s, tag.GetShape());
        };
        nearest = std::min(nearest, m_steps == Steps::kBoth ? MeanDistance(sounds, warp)
                                                            : MeanDistance(shapes, slide));
      }
    }
    return nearest;
  }

  [[nodiscard]] float Nearest() const {
    constexpr float kSame = 1e-6F;
    // The take may be the recording of the tag itself. Nothing is divided by zero then.
    return std::max(m_best.front().distance, kSame);
  }

  /// Returns how much speaks for what is `distance` away: 1 for the nearest one, and ever less for
  /// those further away. Of templates it is less, as they are often mistaken.
  [[nodiscard]] float Weight(float distance) const {
    const float ratio = Nearest() / std::max(distance, Nearest());
    return m_steps == Steps::kBoth ? ratio * ratio * ratio * ratio : ratio;
  }

  const std::span<const KnownTag> m_tags;
  const std::span<const std::size_t> m_numbers;
  const std::span<const Utterance> m_takes;
  const Steps m_steps;
  std::size_t m_pairs = 0;
  std::vector<Compared> m_compared;  ///< The nearest first.
  std::vector<Compared> m_best;      ///< Of each number the nearest one.
  float m_nonsense = 0;
};

std::vector<KnownTag> PrepareTags(std::span<const TaughtTag> tags, Steps steps) {
  std::vector<KnownTag> known;
  for (const TaughtTag& tag : tags) {
    // First what may fail: g++ 12 destroys an inner aggregate twice if what follows it throws.
    auto utterance = std::make_shared<Utterance>(tag, steps);
    known.push_back({{tag.name, tag.oid, tag.phoneKind}, std::move(utterance)});
  }
  return known;
}

}  // namespace

Recognizer::Recognizer(std::span<const TaughtTag> tags, Steps steps)
    : Recognizer(PrepareTags(tags, steps), steps) {}

Recognizer::Recognizer(std::vector<KnownTag> tags, Steps steps)
    : m_steps(steps), m_tags(std::move(tags)) {
  for (const KnownTag& tag : m_tags) {
    const auto same = std::ranges::find_if(m_tags, [&tag](const KnownTag& other) {
      return &other == &tag || IsSameNumber(other.candidate, tag.candidate);
    });
    m_numbers.push_back(static_cast<std::size_t>(same - m_tags.begin()));
  }
  m_untaught = steps == Steps::kBoth ? MeasureUntaught() : 1;
}

/// Hears some tags, one of each number, among those of other numbers.
float Recognizer::MeasureUntaught() const {
  std::vector<std::size_t> firsts;
  for (std::size_t i = 0; i < m_tags.size(); ++i) {
    if (m_numbers[i] == i) {
      firsts.push_back(i);
    }
  }
  std::vector<float> found(kUsualCounts, kUsualUntaught);
  const std::size_t count = std::min(firsts.size(), kMostUntaught);
  std::size_t pairs = 0;
  for (std::size_t k = 0; k < count && firsts.size() > 1 && pairs < kMostUntaughtPairs; ++k) {
    // Spread over all tags, which are in the order in which they were taught.
    const std::size_t heard = firsts[k * firsts.size() / count];
    std::vector<KnownTag> others;
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      if (m_numbers[i] != heard) {
        others.push_back(m_tags[i]);
        numbers.push_back(m_numbers[i]);
      }
    }
    const Comparison comparison(others, numbers, {m_tags[heard].utterance.get(), 1}, m_steps,
                                kMostPairsOfUntaught);
    found.push_back(std::min(comparison.Evidence(), kMostUntaughtEvidence));
    pairs += comparison.CountPairs();
  }
  const auto place =
      static_cast<std::ptrdiff_t>(kUntaughtShare * static_cast<double>(found.size()));
  std::ranges::nth_element(found, found.begin() + place);
  return found[static_cast<std::size_t>(place)];
}

Answer Recognizer::Recognize(Take take) const { return Recognize(std::span(&take, 1)); }

Answer Recognizer::Recognize(std::span<const Take> takes) const {
  std::vector<Utterance> utterances;
  for (const Take take : takes) {
    if (take.empty()) {
      return {};
    }
    utterances.emplace_back(take, m_steps);
  }
  return Recognize(utterances);
}

Answer Recognizer::Recognize(std::span<const Utterance> takes) const {
  if (m_tags.empty() || takes.empty()) {
    return {};
  }
  const Comparison comparison(m_tags, m_numbers, takes, m_steps, kMostPairs);
  const Limits& limits = m_steps == Steps::kBoth ? kLimits : kTemplateLimits;
  const float evidence = comparison.Evidence();
  // Names that sound alike make it harder to be sure, and no harder to ask.
  const bool isSure = evidence >= limits.sure * std::pow(m_untaught, kUntaughtPower) &&
                      comparison.Lead() >= kLeastLead;
  const bool isSome =
      evidence >= limits.some * std::pow(std::min(m_untaught, kUsualUntaught), kUntaughtPower);
  return {isSure   ? Certainty::kSure
          : isSome ? Certainty::kOneOf
                   : Certainty::kUnknown,
          comparison.BestCandidates()};
}

}  // namespace dialer

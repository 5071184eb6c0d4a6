#pragma once

#include <cstdint>
#include <span>

#include "dialer/speech_features.h"
#include "dialer/taught_tags.h"
#include "voicemath/prepared_template.h"

namespace dialer {

/// A take of a spoken name: voicemath::kSamplesPerSecond. It may have silence at both ends. What is
/// longer than kMostSeconds is cut off.
using Take = std::span<const std::int16_t>;

/// Another word that the same voice says in the same room, made of what it said. Nobody taught it.
enum class Nonsense : std::uint8_t {
  kBackwards,
  kSwapped,  ///< The second half comes before the first one.
};

/// How finely a take is compared.
enum class Steps : std::uint8_t {
  kBoth,           ///< Templates put the tags in order; the recordings decide.
  kTemplatesOnly,  ///< For slow processors.
};

/// A take or a tag in the forms in which it is compared. They are made once. For kTemplatesOnly
/// nothing is known of its sound.
class Utterance {
 public:
  explicit Utterance(Take take, Steps steps = Steps::kBoth);
  explicit Utterance(const TaughtTag& tag, Steps steps = Steps::kBoth);

  [[nodiscard]] const voicemath::PreparedTemplate& GetShape() const { return m_shape; }
  [[nodiscard]] const SpeechFeatures& GetFeatures() const { return m_features; }

  [[nodiscard]] SpeechFeatures FeaturesOf(Nonsense nonsense) const {
    return nonsense == Nonsense::kBackwards ? m_features.Backwards() : m_features.Swapped();
  }
  [[nodiscard]] voicemath::PreparedTemplate ShapeOf(Nonsense nonsense) const;

 private:
  explicit Utterance(std::span<const float> features, Take kept);

  voicemath::PreparedTemplate m_shape;
  SpeechFeatures m_features;
};

}  // namespace dialer

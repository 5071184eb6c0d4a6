#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace dialer {

/// How a recording sounds, for a finer comparison than that of templates.
///
/// Each 10 ms are described by mel cepstra: the logarithms of the powers in bands as the ear has
/// them, and of these the cosine transform, whose first coefficients are the shape of the mouth and
/// not the pitch (Davis and Mermelstein 1980). Their slopes over time follow, which say how the
/// mouth moves (Furui 1981). The mean of each coefficient is taken off, and with it what a
/// microphone or a room does to all of the recording (Atal 1974). Only the speech counts, with
/// 0.1 s before and after it for sounds that are too soft to be found.
class SpeechFeatures {
 public:
  static constexpr std::size_t kCepstra = 12;
  static constexpr std::size_t kCount = 2 * kCepstra;  ///< With the slopes.

  /// `samples` are voicemath::kSamplesPerSecond. There may be none: then nothing is heard.
  explicit SpeechFeatures(std::span<const std::int16_t> samples);

  /// Returns how many times there are, at least one.
  [[nodiscard]] std::size_t Frames() const { return m_frames; }
  /// Returns one feature at all times.
  [[nodiscard]] std::span<const float> Get(std::size_t feature) const {
    return std::span(m_values).subspan(feature * m_frames, m_frames);
  }

  /// Returns how it sounds if it is played backwards.
  [[nodiscard]] SpeechFeatures Backwards() const;
  /// Returns how it sounds if its second half comes before its first one.
  [[nodiscard]] SpeechFeatures Swapped() const;

 private:
  SpeechFeatures() = default;
  [[nodiscard]] std::span<float> At(std::size_t feature) {
    return std::span(m_values).subspan(feature * m_frames, m_frames);
  }
  void AddSlopes();

  std::size_t m_frames = 0;
  std::vector<float> m_values;  ///< Feature by feature, so that many frames are one vector.
};

/// Returns how unlike two recordings sound: 0 for the same one, and there is no largest value.
///
/// Both are laid over each other so that they fit best, as nobody says a name twice at the same
/// speed: dynamic time warping with the symmetric steps of Sakoe and Chiba (1978), without a bound
/// on the slope, divided by the sum of the lengths. A pair of times costs the mean of the squares
/// of all differences.
[[nodiscard]] float WarpingDistance(const SpeechFeatures& a, const SpeechFeatures& b);

}  // namespace dialer

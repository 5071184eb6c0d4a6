#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voicemath {

/// The bands in which a take is judged. Speech is loud in one or two of them at a time.
inline constexpr std::size_t kTakeBands = 4;

/// A hundredth of a second of a take.
struct TakeBlock {
  /// Mean square of the samples in each band. Offsets and most of a hum are below the bands.
  std::array<float, kTakeBands> bands{};
  float power = 0;  ///< Mean square of the samples without their offset.
  float peak = 0;   ///< Largest distance of a sample from the offset.
  /// Mean product of each sample with the one before. Together with `power` it gives the middle of
  /// the spectrum.
  float slope = 0;
};

/// How a sound repeats itself.
struct Voicing {
  float share = 0;   ///< How exactly: 0 not at all, about 1 for a steady vowel.
  float period = 0;  ///< After how long: in samples in which pitch is looked for; 0 if unknown.
};

/// A take in blocks. Samples after the last whole block belong to none.
class TakeBlocks {
 public:
  /// `rate` is in samples per second. It may be anything; a rate that no device has is taken for
  /// that of the recorder.
  TakeBlocks(std::span<const std::int16_t> samples, std::uint32_t rate);

  [[nodiscard]] const std::vector<TakeBlock>& Get() const { return m_blocks; }
  [[nodiscard]] std::size_t Count() const { return m_blocks.size(); }
  [[nodiscard]] std::size_t SamplesOfBlock() const { return m_length; }

  /// Returns how the sound around a block repeats itself after a period that a voice can have.
  [[nodiscard]] Voicing VoicingAt(std::size_t block) const;

 private:
  std::size_t m_length;
  std::vector<TakeBlock> m_blocks;
  std::size_t m_pitchStep;     ///< Samples of the take for each of `m_pitch`.
  std::vector<float> m_pitch;  ///< The sound in which pitch is looked for.
};

}  // namespace voicemath

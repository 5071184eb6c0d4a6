#pragma once

#include <cstddef>
#include <vector>

#include "voicemath/take_blocks.h"

namespace voicemath {

/// Power in decibels above a square of 1 in 16 bits. Even of nothing it is a number.
[[nodiscard]] float LevelDb(float power);

/// Returns the value below which a share of all `values` lies. There is at least one.
[[nodiscard]] float Quantile(std::vector<float> values, float share);

/// Where the speech of a take is.
///
/// Nothing is known of the microphone, the room and the speaker, so all limits are relative. The
/// quietest tenth of the take is the room: what rises above it in the bands of speech may be
/// speech. A voice repeats itself from one period of its pitch to the next and holds its level for
/// some blocks; noise does not do the first, and knocks and clicks do not do the second. Beeps do
/// both, but their spectrum stands still, and the pitch of a hum does. A whisper has no pitch; it
/// is known by a long sound whose spectrum moves as the mouth does, which that of breath and wind
/// does not.
class TakeSpeech {
 public:
  explicit TakeSpeech(const TakeBlocks& blocks);

  /// Returns whether somebody speaks.
  [[nodiscard]] bool IsThere() const { return m_isThere; }

  /// Returns whether a block belongs to the speech; if there is none, to what came nearest to it.
  [[nodiscard]] bool Has(std::size_t block) const { return m_isActive[block]; }

  /// Blocks as loud as speech is, without the quiet sounds at its ends.
  [[nodiscard]] std::size_t CountLoud() const;

  /// Returns whether some sound is there that is too short for a word, and voiced like one.
  [[nodiscard]] bool HasFragment() const;

  /// Returns whether the take begins, or if `fromEnd` ends, with speech.
  [[nodiscard]] bool IsCut(bool fromEnd) const;

  /// Level in the bands of speech that a quarter of the blocks exceed.
  [[nodiscard]] float UpperLevel() const { return Quantile(m_smooth.level, 0.75F); }

 private:
  /// How loud each block is: `level` of all bands together, `rise` above the room as the mean of
  /// the bands.
  struct Loudness {
    std::vector<float> level;
    std::vector<float> rise;
  };

  /// What speaks for a voice.
  struct Evidence {
    std::size_t voiced = 0;
    std::size_t active = 0;
    std::size_t longest = 0;  ///< Active blocks in a row.
    std::size_t steady = 0;   ///< Voiced blocks in a row whose level holds.
  };

  void MeasureLoudness();
  void AddBand(const std::vector<float>& powers, float room, Loudness& loudness) const;
  void FindVoiced();
  void MarkActive();
  void DropClicks();
  void FindEvidence();
  [[nodiscard]] bool IsVoice() const;
  [[nodiscard]] bool IsTone() const;
  [[nodiscard]] bool IsHum() const;
  [[nodiscard]] bool FindWhisper();
  [[nodiscard]] float Movement(std::size_t first, std::size_t last) const;
  [[nodiscard]] float Brightness(std::size_t block) const;

  const TakeBlocks& m_blocks;
  Loudness m_smooth;  ///< With the blocks next to each.
  Loudness m_single;  ///< Each by itself.
  std::vector<bool> m_isVoiced;
  std::vector<float> m_periods;  ///< Of each block, if it is voiced.
  std::vector<bool> m_isActive;
  float m_loudest = 0;  ///< Level of the loudest voiced block.
  Evidence m_found;
  bool m_isThere = false;
};

}  // namespace voicemath

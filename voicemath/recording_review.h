#pragma once

#include <cstdint>
#include "platform/result.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/take_quality.h"
#include "voicemath/voice_mathematics.h"

namespace voicemath {

/// A recording of more samples, a minute, is no spoken name.
inline constexpr std::uint32_t kLongSamples = 60 * kSamplesPerSecond;

/// What is odd about a recording of which a template is to be made. The mathematics processes each
/// of these all the same.
struct RecordingReview {
  std::uint32_t rate = 0;  ///< Samples per second, as the header says.
  std::uint32_t samples = 0;
  /// The template is made of these, counted in the file as it is.
  Segment segment;

  TakeQuality quality;  ///< Of the first kLongSamples.

  bool isEmpty = false;     ///< Less than a hop: the number of frames is a wrapped one.
  bool hasNoFrame = false;  ///< Less than a frame: the template holds nothing.
  bool isConstant = false;  ///< The first kLongSamples are all alike.
  bool isLong = false;      ///< More than kLongSamples.
  /// The speech ends too late for the 16-bit block numbers; what is taken is not the speech. See
  /// SpeechBlocks::HavePlace.
  bool isSpeechTooLate = false;
};

/// Why there is no review of a recording.
enum class ReviewError : std::uint8_t {
  kNotOpened,
  kHeaderRefused,  ///< CVoiceMathematics::OpenWaveData did not accept it.
  kNotRead,
};

/// Looks at the recording `mathematics.m_wavePath` as LearnFile does if `findsSpeech`, otherwise as
/// ProcessFile does. The recording is opened only for reading and closed again. Changes no file and
/// no slot.
[[nodiscard]] platform::Result<RecordingReview, ReviewError> ReviewRecording(
    CVoiceMathematics& mathematics, bool findsSpeech);

/// Judges the recording `mathematics.m_wavePath`, also one that LearnFile would refuse: a wave file
/// that is shorter than it says was interrupted, and any other file has the wrong form. Of such a
/// file there is neither peak nor distance from the room (NaN). Fails with kNotOpened if there is
/// no such file, and with kNotRead if there is one that cannot be opened or read.
[[nodiscard]] platform::Result<TakeQuality, ReviewError> JudgeRecording(
    CVoiceMathematics& mathematics);

}  // namespace voicemath

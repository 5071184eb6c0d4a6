#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/clock.h"
#include "platform/result.h"
#include "platform/wave_devices.h"
#include "voicemath/take_quality.h"

namespace dialer {

/// The devices that listening and playing use. All of them outlive their users.
struct Sound {
  platform::WaveIn& waveIn;
  platform::WaveOut& waveOut;
  platform::Clock& clock;
  /// A file stands for the microphone. Nobody waits for it, and no tone says when to speak.
  bool hearsFile = false;
};

/// How far listening has come.
struct ListeningProgress {
  enum class Stage : std::uint8_t {
    kTone,   ///< The microphone is open. A tone is about to be heard, if there is a loudspeaker.
    kSpeak,  ///< What is said now is heard.
  };
  Stage stage = Stage::kTone;
  std::uint32_t leftMilliseconds = 0;         ///< To speak in. Only of kSpeak.
  double levelDb = voicemath::kLowestPeakDb;  ///< The peak since the last report.
};

/// Waits while sound is recorded or played, for a user who can stop that. Called on the thread that
/// listens or plays.
class Waiter {
 public:
  Waiter() = default;
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;
  virtual ~Waiter() = default;

  /// Waits for that time, or until the user wants to stop. Returns whether to go on.
  [[nodiscard]] virtual bool Wait(std::uint32_t milliseconds) = 0;
};

/// A waiter that also gets the progress of listening, about 20 times a second.
class Listener : public Waiter {
 public:
  virtual void ShowProgress(const ListeningProgress& progress) = 0;
};

/// What was heard.
struct Heard {
  std::vector<std::int16_t> samples;  ///< 11,025 a second. At least one.
  voicemath::TakeQuality quality;
};

/// Why nothing was heard.
enum class NotHeard : std::uint8_t {
  kStopped,  ///< The user wanted to stop.
  kNoMicrophone,
  kWrongFormat,  ///< The file that stands for the microphone has another form of sound.
  kRefused,      ///< The microphone is there and gives nothing. Another program may have it.
  kLost,         ///< The microphone went away while it was listened to.
};

/// Milliseconds after which listening ends, whatever is heard.
inline constexpr std::uint32_t kLongestListening = 3000;
/// Milliseconds of quiet after which the speech counts as ended.
inline constexpr std::uint32_t kQuietEnd = 400;

/// Returns whether somebody has spoken in `samples`, 11,025 a second, and has been quiet for the
/// last kQuietEnd milliseconds. Both the voice and the end are found by the functions with which
/// the applet judges and cuts a recording.
[[nodiscard]] bool HasSpeechEnded(std::span<const std::int16_t> samples);

/// Plays a tone and listens, until the speech has ended, for at most kLongestListening. The same
/// sound ends at the same sample, be it heard live or from a file.
[[nodiscard]] platform::Result<Heard, NotHeard> Listen(const Sound& sound, Listener& listener);

/// How playing ended.
enum class Played : std::uint8_t {
  kToEnd,
  kStopped,   ///< The user wanted to stop.
  kNotHeard,  ///< There is no loudspeaker, or it went away.
};

/// Plays samples, 11,025 a second, and waits for their end.
[[nodiscard]] Played Play(const Sound& sound, std::span<const std::int16_t> samples,
                          Waiter& waiter);

}  // namespace dialer

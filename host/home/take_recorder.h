#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/clock.h"
#include "platform/threads.h"
#include "platform/wave_devices.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/take_quality.h"

namespace home {

/// What a recorder is made of. All of it outlives the recorder.
struct Sound {
  platform::WaveIn& waveIn;
  platform::WaveOut& waveOut;
  platform::Clock& clock;
  platform::Threads& threads;
};

/// How far a recording has come.
struct TakeProgress {
  enum class Stage : std::uint8_t {
    kNoMicrophone,  ///< There is none. It goes on as soon as there is one.
    kGetReady,      ///< The microphone is being opened.
    kCue,           ///< A tone is about to be heard, if there is a loudspeaker.
    kSpeak,
  };
  Stage stage = Stage::kGetReady;
  std::uint32_t leftMilliseconds = 0;  ///< To speak in. Only of kSpeak.
  double levelDb = 0;                  ///< The peak since the last report. Only of kSpeak.
};

/// What was heard, and what is known of it.
struct HeardTake {
  std::vector<std::int16_t> samples;
  voicemath::Segment kept;  ///< The part that becomes the tag. Nothing if there are no samples.
  voicemath::TakeQuality quality;
  /// The kept part begins or ends in the middle of what was said, although all of it was heard. The
  /// mathematics keeps no more of a long name.
  bool losesStart = false;
  bool losesEnd = false;
  bool isRefused = false;  ///< The microphone is there, and gave nothing: it may be in use.

  /// Returns whether a template can be made of it.
  [[nodiscard]] bool IsLearnable() const;
};

/// Records what the user says, into memory only: three seconds after a tone, 11,025 samples a
/// second, mono, 16 bits. Plays a recording that lies in memory. Does one of the two at a time,
/// each on a thread of its own.
///
/// Used by the thread that runs the event loop, which also calls what is handed over. Nothing is
/// called after Stop, after the next Record, Listen or Play, or after the destructor.
class TakeRecorder {
 public:
  using Watch = std::function<void(const TakeProgress& progress)>;
  using HeardAnswer = std::function<void(const HeardTake& take)>;
  /// Whether it was heard to its end.
  using PlayedAnswer = std::function<void(bool isPlayed)>;

  static constexpr std::uint32_t kTakeMilliseconds = 3000;

  explicit TakeRecorder(const Sound& sound);
  TakeRecorder(const TakeRecorder&) = delete;
  TakeRecorder& operator=(const TakeRecorder&) = delete;
  ~TakeRecorder();

  /// From now on so much time lies between the report of kCue and the tone: for a screen reader,
  /// which says then that it is time to speak.
  void SetCueTime(std::uint32_t milliseconds) { m_cueTime = milliseconds; }

  /// Reports how it goes on, about twenty times a second while somebody speaks, and then gives what
  /// was heard. Stops what is being done.
  void Record(Watch watch, HeardAnswer answer);

  /// Reports how loud the microphone hears, until Stop. Goes on by itself if the microphone goes
  /// and comes. Keeps nothing. Stops what is being done.
  void Listen(Watch watch);

  /// Stops what is being done.
  void Play(std::vector<std::int16_t> samples, PlayedAnswer answer);

  /// Stops at once. Nothing of a recording is kept. Does not wait for the device.
  void Stop();

 private:
  class Job;

  /// Starts a thread that calls `work`. If there is none, the event loop calls `refuse`.
  void Start(std::function<void(const std::shared_ptr<Job>& job)> work,
             std::function<void()> refuse);

  const Sound m_sound;
  std::uint32_t m_cueTime = 0;
  const std::unique_ptr<QObject> m_context;  ///< Receives what the thread reports.
  std::shared_ptr<Job> m_job;                ///< Null if nothing is being done.
  /// The latest thread. It first waits for the one before: there is one microphone.
  std::shared_ptr<platform::Thread> m_thread;
};

}  // namespace home

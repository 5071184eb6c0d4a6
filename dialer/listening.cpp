#include "dialer/listening.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include "audio/samples.h"
#include "audio/wave_header.h"
#include "voicemath/take_blocks.h"
#include "voicemath/take_speech.h"
#include "voicemath/take_template.h"

// How it is known that a name was said to its end. A voice that pauses and a voice that has ended
// look the same at first, so nothing but time separates them: after 0.4 s of quiet the name is
// over. Noise must not keep the microphone open, and a click must not count as a name. So both ends
// are judged by the functions that judge and cut a recording.
namespace dialer {
namespace {

using platform::WaveHeader;
using platform::WaveResult;
using Stage = ListeningProgress::Stage;

// Milliseconds from one look at the device to the next. A meter moves smoothly so.
constexpr std::uint32_t kLookInterval = 50;
constexpr std::uint32_t kEchoTime = 100;  ///< Until a room has swallowed the tone.
/// What a device may be late with the end of a sound, and with the end of a recording.
constexpr std::uint32_t kLateness = 1000;

/// The end is looked for whenever so many samples have come: a tenth of a second.
constexpr std::size_t kEndStep = 1102;

constexpr std::size_t kSampleBytes = audio::kRecordingBits / 8;

constexpr std::size_t ToSampleCount(std::uint32_t milliseconds) {
  return std::size_t{audio::kRecordingRate} * milliseconds / 1000;
}

/// Returns whether the part that would be kept of a recording ends early enough: it has 0.3 s of
/// the room after the speech. This is cheap, so it goes first.
bool HasQuietEnd(std::span<const std::int16_t> samples) {
  constexpr std::uint32_t kKeptRoom = 300;
  return !samples.empty() &&
         voicemath::FindKeptPart(samples).last + ToSampleCount(kQuietEnd - kKeptRoom) <
             samples.size();
}

/// Returns whether there is a voice, and nothing of it at the end. The endpoint detector takes
/// anything loud for speech, even a click before the first word.
bool HasVoiceThatEnded(std::span<const std::int16_t> samples) {
  const voicemath::TakeBlocks blocks(samples, audio::kRecordingRate);
  const voicemath::TakeSpeech speech(blocks);
  const std::size_t quiet = ToSampleCount(kQuietEnd) / blocks.SamplesOfBlock();
  if (!speech.IsThere() || speech.HasFragment() || blocks.Count() < quiet) {
    return false;
  }
  for (std::size_t block = blocks.Count() - quiet; block < blocks.Count(); ++block) {
    if (speech.Has(block)) {
      return false;
    }
  }
  return true;
}

/// One recording, as it comes in.
class Recording {
 public:
  Recording(const Sound& sound, platform::WaveInDevice& device, Listener& listener)
      : m_sound(sound),
        m_device(device),
        m_listener(listener),
        m_bytes(ToSampleCount(kLongestListening) * kSampleBytes) {}

  [[nodiscard]] platform::Result<Heard, NotHeard> Make();

 private:
  [[nodiscard]] WaveResult Start();
  [[nodiscard]] std::optional<NotHeard> Fill();
  void TakeArrived();
  [[nodiscard]] std::uint32_t LeftMilliseconds() const;

  const Sound& m_sound;
  platform::WaveInDevice& m_device;
  Listener& m_listener;
  std::vector<std::byte> m_bytes;
  WaveHeader m_header;
  std::vector<std::int16_t> m_samples;  ///< What has arrived, up to the end of the speech.
  std::size_t m_searched = 0;           ///< In so many of them the end was looked for.
  bool m_hasEnded = false;
  std::uint32_t m_startTick = 0;
};

WaveResult Recording::Start() {
  m_header = {.data = m_bytes.data(), .bufferLength = static_cast<std::uint32_t>(m_bytes.size())};
  WaveResult result = m_device.Prepare(m_header);
  if (result == WaveResult::kOk) {
    result = m_device.AddBuffer(m_header);
  }
  if (result == WaveResult::kOk) {
    result = m_device.Start();
  }
  return result;
}

std::uint32_t Recording::LeftMilliseconds() const {
  return kLongestListening -
         std::min(m_sound.clock.GetTickCount() - m_startTick, kLongestListening);
}

// A file gives all of its sound at once. The end is looked for step by step all the same, so that a
// file and a voice that sounds like it give the same recording.
void Recording::TakeArrived() {
  const std::size_t before = m_samples.size();
  const auto arrived = std::span(m_bytes).first(m_header.bytesRecorded);
  const auto fresh = audio::ToSamples(arrived.subspan(before * kSampleBytes));
  m_samples.insert(m_samples.end(), fresh.begin(), fresh.end());
  while (!m_hasEnded && m_searched + kEndStep <= m_samples.size()) {
    m_searched += kEndStep;
    m_hasEnded = HasSpeechEnded(std::span(m_samples).first(m_searched));
  }
  if (m_hasEnded) {
    m_samples.resize(m_searched);
  }
  m_listener.ShowProgress({.stage = Stage::kSpeak,
                           .leftMilliseconds = LeftMilliseconds(),
                           .levelDb = voicemath::PeakDb(
                               std::span(m_samples).subspan(std::min(before, m_samples.size())))});
}

/// Returns why nothing was heard, if so.
std::optional<NotHeard> Recording::Fill() {
  m_startTick = m_sound.clock.GetTickCount();
  for (;;) {
    // While the buffer is not full, this only copies what has come.
    const WaveResult result = m_device.Unprepare(m_header);
    if (result == WaveResult::kNoDevice) {
      return NotHeard::kLost;
    }
    TakeArrived();
    if (m_hasEnded || result == WaveResult::kOk) {
      return std::nullopt;
    }
    if (result != WaveResult::kStillPlaying) {
      return NotHeard::kRefused;
    }
    if (m_sound.clock.GetTickCount() - m_startTick >= kLongestListening + kLateness) {
      return std::nullopt;  // It is too slow for the buffer. What has come is what there is.
    }
    if (!m_listener.Wait(kLookInterval)) {
      return NotHeard::kStopped;
    }
  }
}

platform::Result<Heard, NotHeard> Recording::Make() {
  const WaveResult started = Start();
  auto failure = started == WaveResult::kOk         ? Fill()
                 : started == WaveResult::kNoDevice ? NotHeard::kLost
                                                    : NotHeard::kRefused;
  static_cast<void>(m_device.Reset());  // The memory goes before the device does.
  if (!failure && m_samples.empty()) {
    failure = NotHeard::kRefused;
  }
  if (failure) {
    return platform::Failure(*failure);
  }
  auto quality = voicemath::JudgeTake({.samples = m_samples});
  return Heard{.samples = std::move(m_samples), .quality = std::move(quality)};
}

NotHeard WhyNotOpened(WaveResult result, const Sound& sound) {
  if (result == WaveResult::kNoDevice) {
    return NotHeard::kNoMicrophone;
  }
  return result == WaveResult::kBadFormat && sound.hearsFile ? NotHeard::kWrongFormat
                                                             : NotHeard::kRefused;
}

/// Returns whether to go on.
bool GiveTone(const Sound& sound, Listener& listener) {
  if (sound.hearsFile) {
    return true;
  }
  listener.ShowProgress({.stage = Stage::kTone});
  const Played played = Play(sound, audio::MakeTone(), listener);
  // A user who hears no tone still sees when to speak.
  return played == Played::kToEnd ? listener.Wait(kEchoTime) : played == Played::kNotHeard;
}

}  // namespace

bool HasSpeechEnded(std::span<const std::int16_t> samples) {
  return HasQuietEnd(samples) && HasVoiceThatEnded(samples);
}

platform::Result<Heard, NotHeard> Listen(const Sound& sound, Listener& listener) {
  // The microphone is opened before the tone, since that may take a moment: whoever speaks right
  // after the tone must be heard.
  const auto device = sound.waveIn.Open(audio::RecordingFormat());
  if (!device) {
    return platform::Failure(WhyNotOpened(device.error(), sound));
  }
  if (!GiveTone(sound, listener)) {
    return platform::Failure(NotHeard::kStopped);
  }
  return Recording(sound, **device, listener).Make();
}

Played Play(const Sound& sound, std::span<const std::int16_t> samples, Waiter& waiter) {
  std::vector<std::byte> bytes = audio::ToBytes(samples);
  const auto device = sound.waveOut.Open(audio::RecordingFormat());
  WaveHeader header{.data = bytes.data(), .bufferLength = static_cast<std::uint32_t>(bytes.size())};
  if (!device || (*device)->Prepare(header) != WaveResult::kOk ||
      (*device)->Write(header) != WaveResult::kOk) {
    return Played::kNotHeard;
  }
  const auto limit =
      static_cast<std::uint32_t>(samples.size() * 1000 / audio::kRecordingRate) + kLateness;
  const std::uint32_t start = sound.clock.GetTickCount();
  WaveResult result = (*device)->Unprepare(header);
  while (result == WaveResult::kStillPlaying && sound.clock.GetTickCount() - start < limit) {
    if (!waiter.Wait(kLookInterval)) {
      return Played::kStopped;
    }
    result = (*device)->Unprepare(header);
  }
  return result == WaveResult::kOk ? Played::kToEnd : Played::kNotHeard;
}

}  // namespace dialer

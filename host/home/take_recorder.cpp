#include "host/home/take_recorder.h"

#include <QMetaObject>
#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "audio/samples.h"
#include "audio/wave_header.h"
#include "dialer/listening.h"
#include "voicemath/take_template.h"

namespace home {
namespace {

using audio::kRecordingRate;
using platform::WaveHeader;
using platform::WaveResult;

constexpr std::uint32_t kReportInterval = 50;
constexpr std::uint32_t kLookAgainInterval = 1000;  ///< For a microphone.
constexpr std::uint32_t kGetReadyTime = 500;
constexpr std::uint32_t kEchoTime = 100;  ///< Until a room has swallowed the tone.
/// What a device may be late with the end of a recording.
constexpr std::uint32_t kLateness = 1000;

constexpr std::uint32_t kSampleBytes = audio::kRecordingBits / 8;
constexpr std::size_t kTakeBytes =
    std::size_t{kRecordingRate} * TakeRecorder::kTakeMilliseconds / 1000 * kSampleBytes;

/// Finds what is cut off by keeping only a part.
void FindLosses(HeardTake& take) {
  const auto kept =
      std::span(take.samples).subspan(take.kept.first, take.kept.last - take.kept.first + 1);
  // The part is judged like a whole recording. If it begins or ends with speech and the recording
  // does not, the cut went through the speech.
  const auto ofPart = voicemath::JudgeTake({.samples = kept}).verdicts;
  const auto isLost = [&](voicemath::Verdict verdict) {
    return std::ranges::count(ofPart, verdict) > std::ranges::count(take.quality.verdicts, verdict);
  };
  take.losesStart = isLost(voicemath::Verdict::kCutStart);
  take.losesEnd = isLost(voicemath::Verdict::kCutEnd);
}

}  // namespace

/// What is being done, as its thread and the event loop share it.
class TakeRecorder::Job final : public dialer::Waiter {
 public:
  Job(const Sound& sound, std::uint32_t cueTime, QObject& context,
      std::unique_ptr<platform::Event> stop)
      : m_sound(sound), m_cueTime(cueTime), m_context(context), m_stop(std::move(stop)) {}

  /// On the thread of the event loop.
  void Stop() {
    m_isStopped = true;
    m_stop->Set();
  }

  // On the thread of the job. The event loop calls what is handed over.

  static void Record(const std::shared_ptr<Job>& self, const Watch& watch,
                     const HeardAnswer& answer);
  static void Listen(const std::shared_ptr<Job>& self, const Watch& watch);
  static void Play(const std::shared_ptr<Job>& self, std::span<const std::int16_t> samples,
                   const PlayedAnswer& answer);

 private:
  using Stage = TakeProgress::Stage;
  using Report = std::function<void(const TakeProgress& progress)>;
  using OpenedInput = platform::Result<std::unique_ptr<platform::WaveInDevice>, WaveResult>;

  [[nodiscard]] bool Wait(std::uint32_t milliseconds) override {
    return m_stop->Wait(milliseconds) == platform::WaitResult::kTimedOut;
  }

  /// Lets the event loop call `call`, unless the job has been stopped by then.
  static void Post(const std::shared_ptr<Job>& self, std::function<void()> call) {
    QMetaObject::invokeMethod(
        &self->m_context,
        [self, call = std::move(call)] {
          if (!self->m_isStopped) {
            call();
          }
        },
        Qt::QueuedConnection);
  }

  [[nodiscard]] OpenedInput AwaitMicrophone(const Report& report);
  [[nodiscard]] HeardTake Hear(platform::WaveInDevice& device, const Report& report);
  [[nodiscard]] WaveResult Fill(platform::WaveInDevice& device, WaveHeader& header,
                                const Report& report);
  [[nodiscard]] bool PlaySamples(std::span<const std::int16_t> samples);

  const Sound m_sound;
  const std::uint32_t m_cueTime;
  QObject& m_context;
  const std::unique_ptr<platform::Event> m_stop;
  bool m_isStopped = false;  ///< Of the thread of the event loop.
};

TakeRecorder::Job::OpenedInput TakeRecorder::Job::AwaitMicrophone(const Report& report) {
  for (;;) {
    report({.stage = Stage::kGetReady});
    auto opened = m_sound.waveIn.Open(audio::RecordingFormat());
    if (opened || opened.error() != WaveResult::kNoDevice) {
      return opened;
    }
    do {
      report({.stage = Stage::kNoMicrophone});
      if (!Wait(kLookAgainInterval)) {
        return opened;
      }
    } while (m_sound.waveIn.GetDeviceCount() == 0);
  }
}

void TakeRecorder::Job::Record(const std::shared_ptr<Job>& self, const Watch& watch,
                               const HeardAnswer& answer) {
  const Report report = [&self, &watch](const TakeProgress& progress) {
    Post(self, [watch, progress] { watch(progress); });
  };
  auto device = self->AwaitMicrophone(report);
  HeardTake take;
  take.isRefused = !device;
  if (device && self->Wait(kGetReadyTime)) {
    report({.stage = Stage::kCue});
    // A user who hears no tone still sees when to speak.
    const bool isHeard = self->Wait(self->m_cueTime) && self->PlaySamples(audio::MakeTone());
    if (self->Wait(isHeard ? kEchoTime : 0)) {
      take = self->Hear(**device, report);
    }
  }
  device = platform::Failure(WaveResult::kNoDevice);  // Closed before anybody plays the take.
  Post(self, [answer, take = std::move(take)] { answer(take); });
}

// A microphone that is there and gives nothing is tried again like one that is not there.
void TakeRecorder::Job::Listen(const std::shared_ptr<Job>& self, const Watch& watch) {
  const Report report = [&self, &watch](const TakeProgress& progress) {
    // The first report of each part comes before anything was heard.
    if (progress.leftMilliseconds != kTakeMilliseconds) {
      Post(self, [watch, progress] { watch(progress); });
    }
  };
  std::vector<std::byte> bytes(kTakeBytes);
  do {
    const auto device = self->AwaitMicrophone(report);
    WaveResult result = WaveResult::kOk;
    while (device && (result == WaveResult::kOk || result == WaveResult::kStillPlaying)) {
      WaveHeader header{.data = bytes.data(),
                        .bufferLength = static_cast<std::uint32_t>(bytes.size())};
      result = self->Fill(**device, header, report);
      static_cast<void>((*device)->Reset());
    }
  } while (self->Wait(kLookAgainInterval));
}

HeardTake TakeRecorder::Job::Hear(platform::WaveInDevice& device, const Report& report) {
  std::vector<std::byte> bytes(kTakeBytes);
  WaveHeader header{.data = bytes.data(), .bufferLength = static_cast<std::uint32_t>(bytes.size())};
  const WaveResult result = Fill(device, header, report);
  static_cast<void>(device.Reset());  // The memory goes before the device does.
  HeardTake take;
  take.samples = audio::ToSamples(std::span(bytes).first(header.bytesRecorded));
  const bool isInterrupted = result == WaveResult::kNoDevice;
  take.isRefused = take.samples.empty() && !isInterrupted;
  take.quality = voicemath::JudgeTake({.samples = take.samples, .isInterrupted = isInterrupted});
  if (!take.samples.empty()) {
    take.kept = voicemath::FindKeptPart(take.samples);
    FindLosses(take);
  }
  return take;
}

/// Records into the header, as far as the device gives anything. Returns kNoDevice if it was lost.
WaveResult TakeRecorder::Job::Fill(platform::WaveInDevice& device, WaveHeader& header,
                                   const Report& report) {
  WaveResult result = device.Prepare(header);
  if (result == WaveResult::kOk) {
    result = device.AddBuffer(header);
  }
  if (result == WaveResult::kOk) {
    result = device.Start();
  }
  if (result != WaveResult::kOk) {
    return result;
  }
  const std::uint32_t start = m_sound.clock.GetTickCount();
  std::uint32_t reported = 0;
  std::uint32_t passed = 0;
  report({.stage = Stage::kSpeak,
          .leftMilliseconds = kTakeMilliseconds,
          .levelDb = voicemath::kLowestPeakDb});
  do {
    if (!Wait(kReportInterval)) {
      return WaveResult::kFailed;
    }
    result = device.Unprepare(header);
    passed = m_sound.clock.GetTickCount() - start;
    const auto heard = std::span(header.data, header.bytesRecorded);
    report({.stage = Stage::kSpeak,
            .leftMilliseconds = kTakeMilliseconds - std::min(passed, kTakeMilliseconds),
            .levelDb = voicemath::PeakDb(audio::ToSamples(heard.subspan(reported)))});
    // Half a sample that has come belongs to the next report.
    reported = header.bytesRecorded - header.bytesRecorded % kSampleBytes;
  } while (result == WaveResult::kStillPlaying && passed < kTakeMilliseconds + kLateness);
  return result;
}

bool TakeRecorder::Job::PlaySamples(std::span<const std::int16_t> samples) {
  return dialer::Play({m_sound.waveIn, m_sound.waveOut, m_sound.clock}, samples, *this) ==
         dialer::Played::kToEnd;
}

void TakeRecorder::Job::Play(const std::shared_ptr<Job>& self,
                             std::span<const std::int16_t> samples, const PlayedAnswer& answer) {
  const bool isPlayed = self->PlaySamples(samples);
  Post(self, [answer, isPlayed] { answer(isPlayed); });
}

bool HeardTake::IsLearnable() const {
  return !samples.empty() && kept.last - kept.first + 1 >= voicemath::kFrameSamples;
}

TakeRecorder::TakeRecorder(const Sound& sound)
    : m_sound(sound), m_context(std::make_unique<QObject>()) {}

TakeRecorder::~TakeRecorder() { Stop(); }

void TakeRecorder::Start(std::function<void(const std::shared_ptr<Job>& job)> work,
                         std::function<void()> refuse) {
  Stop();
  auto stop = m_sound.threads.CreateManualResetEvent();
  if (stop) {
    auto job = std::make_shared<Job>(m_sound, m_cueTime, *m_context, std::move(*stop));
    auto started = m_sound.threads.Start(
        // Each thread waits for the one before it, since a device has one user at a time. The event
        // loop waits for none of them.
        [job, work = std::move(work), previous = m_thread]() mutable {
          if (previous) {
            static_cast<void>(previous->Wait(platform::kNoLimit));
            previous.reset();
          }
          work(job);
        },
        platform::ThreadStart::kRunning);
    if (started) {
      m_job = std::move(job);
      m_thread = std::move(*started);
      return;
    }
  }
  QMetaObject::invokeMethod(m_context.get(), std::move(refuse), Qt::QueuedConnection);
}

void TakeRecorder::Record(Watch watch, HeardAnswer answer) {
  Start([watch = std::move(watch),
         answer](const std::shared_ptr<Job>& job) { Job::Record(job, watch, answer); },
        [answer] {
          HeardTake take;
          take.isRefused = true;
          answer(take);
        });
}

void TakeRecorder::Listen(Watch watch) {
  Start([watch](const std::shared_ptr<Job>& job) { Job::Listen(job, watch); },
        [watch] { watch({.stage = TakeProgress::Stage::kNoMicrophone}); });
}

void TakeRecorder::Play(std::vector<std::int16_t> samples, PlayedAnswer answer) {
  Start([samples = std::move(samples),
         answer](const std::shared_ptr<Job>& job) { Job::Play(job, samples, answer); },
        [answer] { answer(false); });
}

void TakeRecorder::Stop() {
  if (m_job) {
    m_job->Stop();
    m_job.reset();
  }
}

}  // namespace home

#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "dialer/wave_reading.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "host/cli/tag_output.h"
#include "host/cli/waiting.h"
#include "host/cli/wave_bytes.h"
#include "host/session/explanations.h"
#include "host/session/quality_words.h"
#include "voicemath/voice_mathematics.h"

// The commands on wave files: the recorder, the player and the header check of the system, without
// tags.
namespace cli {
namespace {

constexpr std::uint32_t kUtteranceMilliseconds = 3000;
constexpr std::uint32_t kLongestMilliseconds = 180'000;

double BytesToSeconds(std::uint32_t bytes) {
  constexpr std::uint32_t kBytesPerSample = audio::kRecordingBits / 8;
  return static_cast<double>(bytes) / (audio::kRecordingRate * kBytesPerSample);
}

// The clock draws the progress line: the recorder sleeps on it for the length of the recording, and
// only once the microphone is open. So "Speak now" appears when somebody should speak.
void Record(Session& session, const std::string& name, std::uint32_t milliseconds) {
  RefuseStandardOutput(session, name, {"record", "a recording", "to record to"});
  const std::string& microphone = session.GetOptions().machine.microphone;
  if (Session::AreSameFile(microphone, name)) {
    throw CLI::ValidationError("record", name + " cannot be microphone and recording at once");
  }
  const auto file = FileArgument::ForWriting(name);
  if (!file) {
    session.Fail(file.error());
    return;
  }
  const session::QuickScope quick(session.GetClock(), session.HearsFile());
  ProgressClock clock(session.GetPlatform().clock, milliseconds,
                      session.HearsFile() ? "Reading" : "Speak now");
  audio::WaveDevice device(session.GetPlatform(clock));
  device.SetFormat(audio::kRecordingBits, audio::kRecordingRate);
  const int code = device.Record(file->GetPath(), milliseconds);

  if (session.GetOptions().json) {
    Json json{{"code", code}, {"bytes", device.GetRecordedBytes()}};
    if (code == audio::kDeviceLost) {
      json["quality"] = QualityToJson(session::InterruptedTake());
    }
    session.SetJson(json);
  } else if (code == audio::kRecorded && !file->IsStream()) {
    PrintLine(
        fmt::format("Recorded {:.1f} s to {}", BytesToSeconds(device.GetRecordedBytes()), name));
  }
  if (code == audio::kRecorded) {
    file->Send(session);
  } else {
    const auto error = device.GetFileError();
    const std::string reason =
        error ? session::ExplainFileError(*error) : session::ExplainRecordCode(session, code);
    session.Fail(fmt::format("{} was not recorded{}{}", file->GetName(), reason.empty() ? "" : ": ",
                             reason));
  }
}

void PlayWave(Session& session, const FileArgument& file) {
  const session::QuickScope quick(session.GetClock(), session.PlaysIntoFile());
  audio::WaveDevice device(session.GetPlatform());
  const int code = device.Play(file.GetPath());
  if (session.GetOptions().json) {
    session.SetJson({{"code", code}});
  } else if (code == audio::kPlayed) {
    PrintLine(fmt::format("Played {}", file.GetName()));
  }
  if (code != audio::kPlayed) {
    const std::string reason =
        code == audio::kSoundNotOpened
            ? fmt::format("{} (code {})",
                          session::ExplainUnread(session.GetFiles(), file.GetPath()), code)
            : session::ExplainPlayCode(session, code);
    session.Fail(fmt::format("{} was not played: {}", file.GetName(), reason));
  }
}

using Judgement = platform::Result<voicemath::TakeQuality, voicemath::ReviewError>;

/// Judges a file whose header the applet refuses, by its sound if there is any. For an unknown one
/// `without` is returned.
Judgement JudgeForeignWave(platform::FileSystem& files, std::u16string_view path,
                           Judgement without) {
  const auto bytes = ReadWaveBytes(files, path);
  if (!bytes) {
    return without;
  }
  const auto sound = dialer::ReadSound(*bytes, kLongestMilliseconds / 1000);
  if (!sound || sound->samples.empty()) {
    return without;
  }
  voicemath::TakeQuality quality =
      voicemath::JudgeTake({.samples = dialer::ToSamples(sound->samples),
                            .rate = sound->rate,
                            .isInterrupted = !sound->isWhole});
  if (!sound->isRecorders) {
    quality.Add(voicemath::Verdict::kRate);
  }
  return quality;
}

void PrintVerdicts(const std::string& file, const Judgement& take) {
  if (take) {
    for (const voicemath::Verdict verdict : take->verdicts) {
      PrintLine(fmt::format("{}: {}", file, session::DescribeVerdict(verdict, *take)));
    }
  }
}

void CheckWave(Session& session, const FileArgument& file) {
  const platform::Platform platform = session.GetPlatform();
  voicemath::CVoiceMathematics mathematics(platform.files, platform.ui);
  const int code = session::CheckHeader(mathematics, file.GetPath());
  mathematics.m_wavePath = file.GetPath();
  Judgement take = voicemath::JudgeRecording(mathematics);
  if (take && code != voicemath::kHeaderAccepted) {
    take = JudgeForeignWave(platform.files, file.GetPath(), std::move(take));
  }
  if (session.GetOptions().json) {
    session.SetJson({{"code", code},
                     {"dataOffset", mathematics.m_dataOffset},
                     {"dataBytes", mathematics.m_dataBytes},
                     {"quality", QualityToJson(take)}});
  } else if (code == voicemath::kHeaderAccepted) {
    PrintLine(fmt::format("{}: accepted, {} bytes of samples from byte {} on", file.GetName(),
                          mathematics.m_dataBytes, mathematics.m_dataOffset));
    PrintVerdicts(file.GetName(), take);
  }
  if (code != voicemath::kHeaderAccepted) {
    session.Fail(fmt::format("{}: {}", file.GetName(),
                             session::ExplainHeaderCode(platform.files, file.GetPath(), code)));
  }
}

/// Hands the wave file of that name to `use`. Reports it if standard input, which the name may
/// mean, cannot be read.
void WithWave(Session& session, const std::string& name,
              void (*use)(Session& session, const FileArgument& file)) {
  if (const auto file = FileArgument::ForReading(name)) {
    use(session, *file);
  } else {
    session.Fail(file.error());
  }
}

}  // namespace

void AddWaveCommands(CLI::App& app, Session& session) {
  CLI::App* wave = app.add_subcommand("wave", "Record, play and check wave files");
  wave->require_subcommand(1);

  struct Arguments {
    std::string file;
    std::uint32_t milliseconds = kUtteranceMilliseconds;
  };
  const auto arguments = std::make_shared<Arguments>();

  CLI::App* record = wave->add_subcommand("record", "Record from the microphone into a wave file");
  record->add_option("file", arguments->file, "The wave file to write; - for standard output")
      ->required();
  record->add_option("--milliseconds", arguments->milliseconds, "Length of the recording")
      ->check(CLI::Range(1U, kLongestMilliseconds))
      ->capture_default_str();
  record->callback(
      [&session, arguments] { Record(session, arguments->file, arguments->milliseconds); });

  CLI::App* play = wave->add_subcommand("play", "Play a wave file");
  play->add_option("file", arguments->file, "The wave file; - for standard input")->required();
  play->callback([&session, arguments] { WithWave(session, arguments->file, PlayWave); });

  CLI::App* check = wave->add_subcommand(
      "check", "Say whether a wave file can be learned, and what is wrong with the recording");
  check->add_option("file", arguments->file, "The wave file; - for standard input")->required();
  check->callback([&session, arguments] { WithWave(session, arguments->file, CheckWave); });
}

}  // namespace cli

#include "backends/text/host_path.h"
#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "host/cli/band_picture.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "host/session/explanations.h"
#include "voicemath/recording_review.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

// Learns or processes a wave file without any store: the commands for people who try the
// mathematics.
namespace cli {
namespace {

using platform::Failure;
using platform::FileError;
using platform::Result;
using voicemath::CVoiceMathematics;

constexpr std::size_t kTemplateHeaderBytes = 6;
constexpr std::size_t kCopyBytes = std::size_t{64} * 1024;

double SamplesToSeconds(std::uint32_t samples) {
  return static_cast<double>(samples) / voicemath::kSamplesPerSecond;
}

void PrintSummary(const CVoiceMathematics& mathematics) {
  const voicemath::Segment segment = mathematics.m_detected;
  PrintLine(fmt::format("Speech    {:.2f} s to {:.2f} s", SamplesToSeconds(segment.first),
                        SamplesToSeconds(segment.last + 1)));
  PrintLine(fmt::format("Template  {}, {:.2f} s", CountFrames(mathematics.m_frameCounts[0]),
                        mathematics.GetTemplateDuration(0)));
  PrintPicture(mathematics.GetTemplate(0));
}

/// Returns whether both names are, or would be, one file.
bool AreSameName(const std::string& a, const std::string& b) {
  std::error_code failedA;
  std::error_code failedB;
  const auto canonicalA = std::filesystem::weakly_canonical(text::ToHostPath(a), failedA);
  const auto canonicalB = std::filesystem::weakly_canonical(text::ToHostPath(b), failedB);
  // Files that are there are compared as files, whatever links lead to them. A file that is not
  // there yet is compared by its name.
  return Session::AreSameFile(a, b) ||
         (!a.empty() && !failedA && !failedB && canonicalA == canonicalB);
}

/// Returns whether `bytes` could be written to `path` now. Leaves nothing there.
Result<void, FileError> TryToWrite(platform::FileSystem& files, const std::u16string& path,
                                   std::size_t bytes) {
  const auto earlier = files.Open(path, {platform::FileAccess::kWrite, platform::FileShare::kNone,
                                         platform::FileCreation::kOpenExisting});
  if (!earlier && earlier.error() != FileError::kNotFound) {
    return Failure(earlier.error());
  }
  // Written and given up: it has no name, and goes with this object.
  const auto trial = files.OpenReplacement(path);
  return trial ? (*trial)->GetFile().Write(std::vector<std::byte>(bytes)) : Failure(trial.error());
}

Result<void, FileError> Copy(platform::File& from, platform::File& to) {
  std::vector<std::byte> buffer(kCopyBytes);
  for (;;) {
    const auto count = from.Read(buffer);
    if (!count) {
      return Failure(FileError::kOther);
    }
    const auto written = to.Write(std::span(buffer).first(*count));
    if (!written || *count < buffer.size()) {
      return written;
    }
  }
}

/// Copies a recording to a file that is not there yet: whole or not at all.
Result<void, FileError> CopyRecording(platform::FileSystem& files, const std::u16string& wave,
                                      const std::u16string& copy) {
  const auto there = files.Open(copy, {.access = platform::FileAccess::kNone});
  if (there) {
    return Failure(FileError::kAlreadyExists);
  }
  if (there.error() != FileError::kNotFound) {
    return Failure(there.error());
  }
  const auto original = files.Open(wave, {.share = platform::FileShare::kRead});
  if (!original) {
    return Failure(original.error());
  }
  const auto made = files.OpenReplacement(copy);
  if (!made) {
    return Failure(made.error());
  }
  const auto copied = Copy(**original, (*made)->GetFile());
  return copied ? (*made)->Publish(platform::Durability::kNow) : copied;
}

struct MakerArguments {
  std::string wave;
  std::string st;
  std::string keep;
};

/// The files of one run, as its arguments name them.
struct MakerFiles {
  FileArgument wave;
  FileArgument st;
  std::optional<FileArgument> keep;
};

/// One run of `template learn` or `template process`.
///
/// Learning cuts the user's own file, and that cannot be undone. So everything that can be known to
/// fail is tried before: is there enough speech, can the template be written, can the original be
/// kept? Only then is the recording touched.
class TemplateMaker {
 public:
  /// `files` outlive this.
  TemplateMaker(Session& session, const MakerFiles& files, bool learns)
      : m_session(session),
        m_files(files),
        m_learns(learns),
        m_platform(session.GetPlatform()),
        m_mathematics(m_platform.files, m_platform.ui) {
    m_mathematics.m_wavePath = files.wave.GetPath();
  }

  void Run() {
    const auto review = voicemath::ReviewRecording(m_mathematics, m_learns);
    m_warnings = review ? session::DescribeOddities(*review) : std::vector<std::string>();
    for (const std::string& warning : m_warnings) {
      m_session.Warn(fmt::format("warning: {}: {}", m_files.wave.GetName(), warning));
    }
    // All that can be known to fail is known before the recording is cut.
    if (review && (!HasEnough(*review) || (m_learns && !CanLearn(*review)))) {
      PrintResult(voicemath::kNotProcessed);
      return;
    }
    if (Process(review.has_value())) {
      WriteTemplate();
    }
  }

 private:
  [[nodiscard]] bool HasEnough(const voicemath::RecordingReview& review) {
    if (review.isEmpty) {
      m_session.Fail(fmt::format("{}: there are fewer than 512 samples to make a template of",
                                 m_files.wave.GetName()));
    }
    return !review.isEmpty;
  }

  /// Returns whether the template could be written now; keeps the original as well, if that is
  /// wanted.
  [[nodiscard]] bool CanLearn(const voicemath::RecordingReview& review) {
    const std::size_t samples = review.segment.last - review.segment.first + 1;
    // A frame is two hops, so there is one frame less than there are hops.
    const std::size_t frames = samples / voicemath::kFrameHop - 1;
    const std::size_t bytes = kTemplateHeaderBytes + frames * voicemath::kBandCount * sizeof(float);
    const std::string& wave = m_files.wave.GetName();
    const auto target = TryToWrite(m_platform.files, m_files.st.GetPath(), bytes);
    if (!target) {
      m_session.Fail(fmt::format("{}: it cannot be made: {}; {} was left as it is",
                                 m_files.st.GetName(), session::ExplainFileError(target.error()),
                                 wave));
      return false;
    }
    if (!m_files.keep) {
      return true;
    }
    const auto kept =
        CopyRecording(m_platform.files, m_mathematics.m_wavePath, m_files.keep->GetPath());
    if (!kept) {
      m_session.Fail(fmt::format("{}: the original cannot be kept there: {}; {} was left as it is",
                                 m_files.keep->GetName(), session::ExplainFileError(kept.error()),
                                 wave));
    }
    return kept.has_value();
  }

  /// Computes the template, also cuts the recording if it is to be learned. What has no review has
  /// none, and only the message that says why.
  [[nodiscard]] bool Process(bool hasReview) {
    int result = m_learns && hasReview ? m_mathematics.LearnFile(0) : m_mathematics.ReadFile(0);
    if (!hasReview) {
      result = voicemath::kNotProcessed;
    }
    PrintResult(result);
    if (result != voicemath::kLearned) {
      const std::string link =
          m_learns ? Session::ExplainLink(m_files.wave.GetHostPath()) : std::string();
      m_session.Fail(link.empty() ? fmt::format("{}: {}", m_files.wave.GetName(), ExplainFailure())
                                  : link);
    }
    return result == voicemath::kLearned;
  }

  [[nodiscard]] std::string ExplainFailure() {
    const std::optional<FileError> trimming = m_mathematics.m_trimError;
    const int code = session::CheckHeader(m_mathematics, m_mathematics.m_wavePath);
    if (code != voicemath::kHeaderAccepted) {
      return session::ExplainHeaderCode(m_platform.files, m_mathematics.m_wavePath, code);
    }
    const std::string words = "it cannot be read or rewritten";
    return trimming ? words + ": " + session::ExplainFileError(*trimming) : words;
  }

  void WriteTemplate() {
    const auto written =
        voicemath::ReplaceTemplateFile(m_platform.files, m_files.st.GetPath(), m_mathematics);
    if (!written) {
      m_session.Fail(fmt::format("{}: it cannot be made: {}", m_files.st.GetName(),
                                 session::ExplainFileError(written.error())));
      return;
    }
    m_files.st.Send(m_session);
    if (m_files.keep) {
      m_files.keep->Send(m_session);
    }
    // The summary must not stand in the middle of a file that goes to standard output.
    const bool isOutputFree = !m_files.st.IsStream() && !(m_files.keep && m_files.keep->IsStream());
    if (isOutputFree && !m_session.GetOptions().json) {
      PrintSummary(m_mathematics);
    }
  }

  void PrintResult(int result) {
    if (!m_session.GetOptions().json) {
      return;
    }
    const bool done = result == voicemath::kLearned;
    const voicemath::Segment segment = done ? m_mathematics.m_detected : voicemath::Segment{};
    Json json = {{"result", result},
                 {"segment", Json::array({segment.first, segment.last})},
                 {"frames", m_mathematics.m_frameCounts[0]},
                 {"seconds", m_mathematics.GetTemplateDuration(0)}};
    if (m_learns || !m_warnings.empty()) {
      json["warnings"] = m_warnings;
    }
    m_session.SetJson(json);
  }

  Session& m_session;
  const MakerFiles& m_files;
  const bool m_learns;
  const platform::Platform m_platform;
  CVoiceMathematics m_mathematics;
  std::vector<std::string> m_warnings;
};

void CheckNames(const Session& session, const MakerArguments& arguments) {
  const auto& [wave, st, keep] = arguments;
  const OutputKind ofTemplate{"st", "a template", "for the template"};
  const OutputKind ofOriginal{"--keep", "a recording", "for the original"};
  RefuseStandardOutput(session, st, ofTemplate);
  RefuseStandardOutput(session, keep, ofOriginal);
  // The name of both streams is "-", and these are two.
  if (AreSameName(wave, st) && st != kStream) {
    throw CLI::ValidationError("st", "the template would overwrite the recording " + wave);
  }
  if ((AreSameName(keep, wave) && wave != kStream) || AreSameName(keep, st)) {
    throw CLI::ValidationError("--keep", keep + " is the recording or the template itself");
  }
}

Result<MakerFiles, std::string> OpenFiles(const MakerArguments& arguments) {
  auto wave = FileArgument::ForReading(arguments.wave);
  if (!wave) {
    return Failure(wave.error());
  }
  auto st = FileArgument::ForWriting(arguments.st);
  if (!st) {
    return Failure(st.error());
  }
  MakerFiles files{std::move(*wave), std::move(*st), std::nullopt};
  if (!arguments.keep.empty()) {
    auto keep = FileArgument::ForWriting(arguments.keep);
    if (!keep) {
      return Failure(keep.error());
    }
    files.keep = std::move(*keep);
  }
  return files;
}

void MakeTemplate(Session& session, const MakerArguments& arguments, bool learns) {
  CheckNames(session, arguments);
  if (const auto files = OpenFiles(arguments)) {
    TemplateMaker(session, *files, learns).Run();
  } else {
    session.Fail(files.error());
  }
}

CLI::App* AddMaker(CLI::App& group, Session& session,
                   const std::shared_ptr<MakerArguments>& arguments, const char* name,
                   const char* description, bool learns) {
  CLI::App* command = group.add_subcommand(name, description);
  command->add_option("wave", arguments->wave, "The recording; - for standard input")->required();
  command->add_option("st", arguments->st, "The template file to write; - for standard output")
      ->required();
  command->callback([&session, arguments, learns] { MakeTemplate(session, *arguments, learns); });
  return command;
}

}  // namespace

void AddTemplateMakers(CLI::App& group, Session& session) {
  const auto arguments = std::make_shared<MakerArguments>();
  AddMaker(group, session, arguments, "learn",
           "Find the speech in a recording, trim the file to it, and make its template", true)
      ->add_option("--keep", arguments->keep,
                   "Keep the recording as it was in this file, which must not be there yet")
      ->type_name("FILE");
  AddMaker(group, session, arguments, "process", "Make the template of a whole recording", false);
}

}  // namespace cli

#include "host/session/explanations.h"

#include <fmt/format.h>

#include <algorithm>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "backends/text/say.h"
#include "resources/report_strings.h"
#include "voicemath/constants.h"

// Codes in words. The pages show a number or nothing; a user of the command line or the window of
// voice tags reads why.
namespace session {
namespace {

// The codes are the documented ones of the recorder, the player and the header check. Each has its
// own cause, and so its own words: "it failed" would send a user with a muted loudspeaker to the
// file.

const char* Explain(int code) {
  switch (code) {
    case voicemath::kTooShort:
      return "shorter than the header of a wave file";
    case voicemath::kNoRiff:
    case voicemath::kNoWave:
      return "not a wave file";
    case voicemath::kNotPcm:
      return "not in the PCM format";
    case voicemath::kNotMono:
      return "not mono";
    case voicemath::kNot16Bit:
      return "not 16 bits a sample";
    case voicemath::kNoData:
      return "its samples are not found near its beginning, or it is shorter than it says";
    default:
      return "accepted";
  }
}

std::string InWords(int code, bool isSpeakerFile) {
  switch (code) {
    case audio::kSoundNotOpened:
      return text::Say(resources::kSoundFileNotOpened);
    case audio::kSoundNotMapped:
      return text::Say(resources::kSoundFileTooLong);
    case audio::kSoundTooShort:
      return text::Say(resources::kSoundFileTooShort);
    case audio::kSoundNoRiff:
      return text::Say(resources::kSoundFileNoRiff);
    case audio::kSoundNoWave:
      return text::Say(resources::kSoundFileNoWave);
    case audio::kSoundNotPcm:
      return text::Say(resources::kSoundFileNotPcm);
    case audio::kSoundNoData:
      return text::Say(resources::kSoundFileNoData);
    case audio::kOutputNotOpened:
      return text::Say(isSpeakerFile ? resources::kSpeakerFileNotMade
                                     : resources::kSpeakerNotOpened);
    case audio::kNoPlayBuffer:
      return text::Say(resources::kNoMemoryToPlay);
    case audio::kNotWritten:
      return text::Say(isSpeakerFile ? resources::kSpeakerFileNotWritten
                                     : resources::kSpeakerRefused);
    case audio::kNotHeardToEnd:
      return text::Say(resources::kNotHeardToItsEnd);
    case audio::kNotPrepared:
      return text::Say(resources::kSoundNotReady);
    case audio::kSoundNotRead:
      return text::Say(resources::kSoundFileNotRead);
    default:
      return text::Say(resources::kUnknownReason);
  }
}

/// With a file in the microphone's place. The codes then mean something else than for a device.
std::string RecordCodeOfFile(Session& session, int code, const std::string& file) {
  switch (code) {
    case audio::kProcessEnded:
      return file + ": " + ExplainUnread(session.GetFiles(), Session::ToSystemPath(file));
    case audio::kDeviceNotOpened:
      return text::Say(resources::kMicrophoneFileOtherFormat, {file});
    case audio::kDeviceLost:
      return text::Say(resources::kMicrophoneFileNotRead, {file});
    default:
      return {};
  }
}

std::string RecordCodeInWords(int code) {
  switch (code) {
    case audio::kDeviceNotOpened:
      return text::Say(resources::kMicrophoneNotOpened);
    case audio::kNoBuffer:
      return text::Say(resources::kNoMemoryToRecord);
    case audio::kBufferNotQueued:
      return text::Say(resources::kMicrophoneTookNoBuffer);
    case audio::kNotStarted:
      return text::Say(resources::kMicrophoneNotStarted);
    case audio::kDeviceLost:
      return text::Say(resources::kMicrophoneLost);
    default:
      return {};
  }
}

}  // namespace

std::string ExplainFileError(platform::FileError error) {
  using platform::FileError;
  switch (error) {
    case FileError::kNotFound:
      return text::Say(resources::kFolderMissing);
    case FileError::kAlreadyExists:
      return text::Say(resources::kFileExists);
    case FileError::kAccessDenied:
      return text::Say(resources::kFileProtected);
    case FileError::kSharingViolation:
      return text::Say(resources::kFileOpenElsewhere);
    case FileError::kDiskFull:
      return text::Say(resources::kDiskFull);
    case FileError::kReadOnly:
      return text::Say(resources::kDiskReadOnly);
    case FileError::kLink:
      return text::Say(resources::kFileIsLink);
    default:
      return text::Say(resources::kFileFails);
  }
}

// A folder is refused like a file that this user may not read. Only a search knows the difference.
std::string ExplainUnread(platform::FileSystem& files, std::u16string_view path) {
  using platform::FileError;
  const auto file = files.Open(path, {});
  switch (file ? FileError::kOther : file.error()) {
    case FileError::kNotFound:
      return text::Say(resources::kFileMissing);
    case FileError::kAccessDenied: {
      const auto search = files.Find(path);
      const auto found = search ? (*search)->Next() : platform::Failure(search.error());
      const bool isFolder = found && *found && (*found)->isFolder;
      return text::Say(isFolder ? resources::kFileIsFolder : resources::kFileNotReadable);
    }
    default:
      return file ? text::Say(resources::kFileFails) : ExplainFileError(file.error());
  }
}

std::string ExplainRestoreError(storage::RestoreError error) {
  using storage::RestoreError;
  switch (error) {
    case RestoreError::kExists:
      return text::Say(resources::kTagOfThatName);
    case RestoreError::kTooMany:
      return text::Say(resources::kNoRoomForTag, {std::to_string(storage::kMaxTags)});
    case RestoreError::kFull:
      return text::Say(resources::kDiskFull);
    case RestoreError::kNoFolder:
      return text::Say(resources::kTagFoldersMissing);
    case RestoreError::kOther:
      break;
  }
  return text::Say(resources::kTagPartsNotWritten);
}

int CheckHeader(voicemath::CVoiceMathematics& mathematics, const std::u16string& path) {
  if (!mathematics.m_file.Open(path, framework::CFile::modeRead)) {
    return kFileNotOpened;
  }
  const int code = mathematics.OpenWaveData();
  mathematics.m_file.Close();
  return code;
}

std::string ExplainHeaderCode(platform::FileSystem& files, std::u16string_view path, int code) {
  return code == kFileNotOpened ? ExplainUnread(files, path)
                                : fmt::format("{} (code {})", Explain(code), code);
}

std::string ExplainPlayCode(const Session& session, int code) {
  const std::string& speaker = session.GetMachineOptions().speaker;
  // Only a file that is to be written is refused for being a link.
  const bool isUnwritten = code == audio::kOutputNotOpened || code == audio::kNotWritten;
  const std::string link = isUnwritten ? Session::ExplainLink(speaker) : std::string();
  return text::Say(resources::kWithCode,
                   {link.empty() ? InWords(code, !speaker.empty()) : link, std::to_string(code)});
}

std::string ExplainRecordCode(Session& session, int code) {
  const std::string& microphone = session.GetMachineOptions().microphone;
  // A file in the microphone's place has words of its own for some codes, and else those of a
  // device.
  std::string words =
      microphone.empty() ? std::string() : RecordCodeOfFile(session, code, microphone);
  if (words.empty()) {
    words = RecordCodeInWords(code);
  }
  return words.empty() || code < 0 ? words
                                   : text::Say(resources::kWithCode, {words, std::to_string(code)});
}

std::string ExplainNoTag(Session& session, const tags::Page_one& page) {
  // What the disk says is nearer to the cause than a code of the recorder.
  if (const auto error = page.GetLearnError()) {
    return ExplainFileError(*error);
  }
  const int code = page.GetRecordCode();
  return code == audio::kRecorded ? std::string() : ExplainRecordCode(session, code);
}

// Nothing forbids an odd recording: a user may want it.
std::vector<std::string> DescribeOddities(const voicemath::RecordingReview& review) {
  std::vector<std::string> sentences;
  if (review.rate != audio::kRecordingRate) {
    sentences.push_back(fmt::format(
        "it has {} samples a second, which are taken for 11025; its template fits no speech",
        review.rate));
  }
  if (std::ranges::find(review.quality.verdicts, voicemath::Verdict::kSilent) !=
          review.quality.verdicts.end() &&
      !review.isEmpty) {
    sentences.emplace_back("it is silent");
  }
  if (review.isLong) {
    sentences.push_back(
        fmt::format("it is longer than 60 s ({:.1f} s)",
                    static_cast<double>(review.samples) / voicemath::kSamplesPerSecond));
  }
  if (review.isSpeechTooLate) {
    sentences.emplace_back(
        "its speech ends after 163 s, which is too late to find it; another part is used");
  }
  if (review.hasNoFrame) {
    sentences.emplace_back(
        "the part that is used is shorter than a frame of 1024 samples, so its template is empty");
  }
  return sentences;
}

}  // namespace session

#include "host/session/explanations.h"

#include <fmt/format.h>

#include <algorithm>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "voicemath/constants.h"

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
      return "the file could not be opened: it is missing, in use or protected";
    case audio::kSoundNotMapped:
      return "the length of the file is not known, or is 4 GB or more";
    case audio::kSoundTooShort:
      return "the file is shorter than the 44 bytes of a wave header";
    case audio::kSoundNoRiff:
      return "the file does not begin with \"RIFF\", so it is no wave file";
    case audio::kSoundNoWave:
      return "there is no \"WAVE\" in the header, so it is no wave file";
    case audio::kSoundNotPcm:
      return "the samples are not PCM (format tag 1)";
    case audio::kSoundNoData:
      return "there are no samples that can be played: the file has no \"data\", or less of it "
             "than "
             "it says, or a header without rate, channels or block length";
    case audio::kOutputNotOpened:
      return isSpeakerFile
                 ? "the speaker file could not be made, or takes no such format"
                 : "the loudspeaker could not be opened: there is no sound server, it has "
                   "no output, or it takes no such format";
    case audio::kNoPlayBuffer:
      return "there is not enough memory to play it";
    case audio::kNotWritten:
      return isSpeakerFile ? "the speaker file could not be written"
                           : "the loudspeaker did not take the sound";
    case audio::kNotHeardToEnd:
      return "it was not heard to its end: the loudspeaker or the sound server went away or stands "
             "still";
    case audio::kNotPrepared:
      return "the buffer could not be prepared: the file has a header and no samples";
    case audio::kSoundNotRead:
      return "the file could not be read to its end";
    default:
      return "an unknown reason";
  }
}

/// With a file in the microphone's place. The codes then mean something else than for a device.
std::string RecordCodeOfFile(int code, const std::string& file) {
  switch (code) {
    case audio::kProcessEnded:
      return file + ": it cannot be opened";
    case audio::kDeviceNotOpened:
      return file + " is no wave file of 11,025 Hz, mono, 16 bit";
    case audio::kDeviceLost:
      return file + " could not be read";
    default:
      return {};
  }
}

std::string RecordCodeInWords(int code) {
  switch (code) {
    case audio::kDeviceNotOpened:
      return "the microphone could not be opened for 11,025 Hz, mono, 16 bit";
    case audio::kNoBuffer:
      return "there is not enough memory for the recording";
    case audio::kBufferNotQueued:
      return "the microphone did not take the buffer";
    case audio::kNotStarted:
      return "the microphone could not be started";
    case audio::kDeviceLost:
      return "the microphone was lost before the recording was whole: it was unplugged, or the "
             "sound server ended";
    default:
      return {};
  }
}

}  // namespace

std::string ExplainFileError(platform::FileError error) {
  using platform::FileError;
  switch (error) {
    case FileError::kNotFound:
      return "there is no such folder";
    case FileError::kAlreadyExists:
      return "there is a file already";
    case FileError::kAccessDenied:
      return "it is protected, or is no file";
    case FileError::kSharingViolation:
      return "another program has it open";
    case FileError::kDiskFull:
      return "the disk is full";
    case FileError::kReadOnly:
      return "the disk takes no writes";
    case FileError::kLink:
      return "it is a symbolic link, and nothing is written through one";
    default:
      return "it cannot be read or written";
  }
}

std::string ExplainRestoreError(storage::RestoreError error) {
  using storage::RestoreError;
  switch (error) {
    case RestoreError::kExists:
      return "there is a tag or a file of that name";
    case RestoreError::kTooMany:
      return fmt::format("there are {} tags already, which is the most there can be",
                         storage::kMaxTags);
    case RestoreError::kFull:
      return "the disk is full";
    case RestoreError::kNoFolder:
      return "a folder for recordings or templates is missing and cannot be made";
    case RestoreError::kOther:
      break;
  }
  return "its files or its entry cannot be written";
}

int CheckHeader(voicemath::CVoiceMathematics& mathematics, const std::u16string& path) {
  if (!mathematics.m_file.Open(path, framework::CFile::modeRead)) {
    return kFileNotOpened;
  }
  const int code = mathematics.OpenWaveData();
  mathematics.m_file.Close();
  return code;
}

std::string ExplainHeaderCode(int code) {
  return code == kFileNotOpened ? "it cannot be opened"
                                : fmt::format("{} (code {})", Explain(code), code);
}

std::string ExplainPlayCode(const Session& session, int code) {
  const std::string& speaker = session.GetMachineOptions().speaker;
  const bool isUnwritten = code == audio::kOutputNotOpened || code == audio::kNotWritten;
  const std::string link = isUnwritten ? Session::ExplainLink(speaker) : std::string();
  return fmt::format("{} (code {})", link.empty() ? InWords(code, !speaker.empty()) : link, code);
}

std::string ExplainRecordCode(const Session& session, int code) {
  const std::string& microphone = session.GetMachineOptions().microphone;
  std::string words = microphone.empty() ? std::string() : RecordCodeOfFile(code, microphone);
  if (words.empty()) {
    words = RecordCodeInWords(code);
  }
  return words.empty() || code < 0 ? words : fmt::format("{} (code {})", words, code);
}

std::string ExplainNoTag(const Session& session, const tags::Page_one& page) {
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

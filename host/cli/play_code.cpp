#include "host/cli/play_code.h"

#include <fmt/format.h>

#include "audio/wave_device.h"

namespace cli {
namespace {

std::string InWords(int code, bool isSpeakerFile) {
  switch (code) {
    case audio::kSoundNotOpened:
      return "the file could not be opened: it is missing, in use or not to be read";
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
      return "there are no samples that can be played: no \"data\" in the file, more of it claimed "
             "than the file has, or a header without rate, channels or block length";
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

}  // namespace

std::string ExplainPlayCode(const Session& session, int code) {
  const std::string& speaker = session.GetOptions().machine.speaker;
  const bool isUnwritten = code == audio::kOutputNotOpened || code == audio::kNotWritten;
  const std::string link = isUnwritten ? Session::ExplainLink(speaker) : std::string();
  return fmt::format("{} (code {})", link.empty() ? InWords(code, !speaker.empty()) : link, code);
}

}  // namespace cli

#include "host/cli/record_code.h"

#include <fmt/format.h>

#include "audio/wave_device.h"

namespace cli {
namespace {

/// With a file in the microphone's place.
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

std::string ExplainRecordCode(const Session& session, int code) {
  const std::string& microphone = session.GetOptions().machine.microphone;
  std::string words = microphone.empty() ? std::string() : RecordCodeOfFile(code, microphone);
  if (words.empty()) {
    words = RecordCodeInWords(code);
  }
  return words.empty() || code < 0 ? words : fmt::format("{} (code {})", words, code);
}

}  // namespace cli

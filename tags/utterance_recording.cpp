#include "tags/utterance_recording.h"

#include <cstdint>
#include <exception>

#include "audio/wave_header.h"
#include "language/texts.h"

namespace tags {
namespace {

constexpr std::uint32_t kUtteranceMilliseconds = 3000;

}  // namespace

void UtteranceRecording::Run() noexcept {
  m_device->SetFormat(audio::kRecordingBits, audio::kRecordingRate);
  // The mathematics trims the recording, or flushes it as it is, before anything names it.
  const int code = m_device->Record(m_path, kUtteranceMilliseconds, platform::Durability::kLater);
  // Set before the message, which waits for the user: the page reads it when it stops waiting.
  m_code = code;
  if (code == audio::kRecorded || code == audio::kProcessEnded) {
    return;
  }
  try {
    ShowCode();
  } catch (const std::exception&) {
    // There is no memory for the message. The process ends all the same.
  }
  m_platform.process.End(0);
}

void UtteranceRecording::ShowCode() const {
  m_platform.ui.ShowMessage({language::Decimal(m_code), platform::MessageCaption::kText,
                             u"Error Code", platform::MessageStyle::kTopmost});
}

}  // namespace tags

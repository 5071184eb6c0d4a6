#include "tags/utterance_recording.h"

#include <cstdint>

#include "audio/wave_header.h"
#include "language/formatting.h"

namespace tags {
namespace {

constexpr std::uint32_t kUtteranceMilliseconds = 3000;

}  // namespace

void UtteranceRecording::Run() {
  m_device->SetFormat(audio::kRecordingBits, audio::kRecordingRate);
  const int code = m_device->Record(m_path, kUtteranceMilliseconds);
  if (code == audio::kRecorded) {
    return;
  }
  m_hasEndedProcess = true;
  if (code != audio::kProcessEnded) {
    m_platform.ui.ShowMessage({language::Decimal(code), platform::MessageCaption::kText,
                               u"Error Code", platform::MessageStyle::kTopmost});
    m_platform.process.End(0);
  }
}

}  // namespace tags

#include "backends/pulse/record_stream.h"

#include <pulse/timeval.h>

#include <limits>
#include <span>

namespace pulse {
namespace {

constexpr StreamLabel kRecordLabel{"Recording of a name", "audio-input-microphone"};

// Length of the pieces in which the server hands on what it records. It bounds how much of a
// recording can still be on its way when the recording time is over.
constexpr pa_usec_t kFragment = 20 * PA_USEC_PER_SEC / 1000;

constexpr std::uint32_t kLengthOfServersChoice = std::numeric_limits<std::uint32_t>::max();

}  // namespace

RecordStream::RecordStream(Connection& connection, CaptureBuffer& buffer)
    : m_buffer(buffer), m_stream(connection, [this] {
        m_buffer.Lose();
        m_delivered.Give(false);
      }) {}

std::unique_ptr<RecordStream> RecordStream::Open(Connection& connection, const std::string& source,
                                                 CaptureBuffer& buffer,
                                                 const pa_sample_spec& sampleSpec,
                                                 Deadline deadline) {
  std::unique_ptr<RecordStream> me(new RecordStream(connection, buffer));
  const auto connect = [&](pa_stream* stream) {
    pa_stream_set_read_callback(stream, OnReadable, me.get());
    pa_buffer_attr attributes{};
    attributes.maxlength = kLengthOfServersChoice;
    attributes.fragsize = static_cast<std::uint32_t>(pa_usec_to_bytes(kFragment, &sampleSpec));
    return pa_stream_connect_record(stream, source.empty() ? nullptr : source.c_str(), &attributes,
                                    PA_STREAM_ADJUST_LATENCY);
  };
  if (!me->m_stream.Start(kRecordLabel, sampleSpec, connect, deadline)) return nullptr;
  return me;
}

void RecordStream::WaitForFirstData(Deadline deadline) {
  // In time or not makes no difference to a recording that then starts: a silent source gives
  // silence.
  static_cast<void>(m_delivered.WaitUntil(deadline));
}

void RecordStream::OnReadable(pa_stream* stream, std::size_t, void* self) {
  auto& me = *static_cast<RecordStream*>(self);
  const void* data = nullptr;
  std::size_t count = 0;
  while (pa_stream_peek(stream, &data, &count) == 0 && count > 0) {
    if (data != nullptr) {
      me.m_buffer.Append({static_cast<const std::byte*>(data), count});
    } else {
      // A hole that the server could not fill; its time has passed all the same.
      me.m_buffer.AppendSilence(count);
    }
    pa_stream_drop(stream);
    me.m_delivered.Give(true);
  }
}

}  // namespace pulse

#include "platform/pulse/record_stream.h"

#include <pulse/timeval.h>

#include <limits>
#include <span>

namespace pulse {
namespace {

// What the user's mixer shows while a name is recorded.
constexpr char kStreamName[] = "Recording of a name";

// Length of the pieces in which the server hands on what it records. It bounds how much of a
// recording can still be on its way when the recording time is over.
constexpr pa_usec_t kFragment = 20 * PA_USEC_PER_SEC / 1000;

constexpr std::uint32_t kServersChoice = std::numeric_limits<std::uint32_t>::max();

}  // namespace

RecordStream::RecordStream(Connection& connection, CaptureBuffer& buffer)
    : m_connection(connection), m_buffer(buffer) {}

std::unique_ptr<RecordStream> RecordStream::Open(Connection& connection, const std::string& source,
                                                 CaptureBuffer& buffer,
                                                 const pa_sample_spec& sampleSpec,
                                                 Deadline deadline) {
  std::unique_ptr<RecordStream> stream(new RecordStream(connection, buffer));
  if (!stream->Start(source, sampleSpec)) return nullptr;
  if (!stream->m_ready.WaitUntil(deadline).value_or(false)) return nullptr;
  return stream;
}

bool RecordStream::Start(const std::string& source, const pa_sample_spec& sampleSpec) {
  const LoopLock lock(m_connection.Loop());
  m_stream.reset(pa_stream_new(m_connection.Context(), kStreamName, &sampleSpec, nullptr));
  if (!m_stream) return false;
  pa_stream_set_state_callback(m_stream.get(), OnState, this);
  pa_stream_set_read_callback(m_stream.get(), OnReadable, this);
  pa_buffer_attr attributes{};
  attributes.maxlength = kServersChoice;
  attributes.fragsize = static_cast<std::uint32_t>(pa_usec_to_bytes(kFragment, &sampleSpec));
  return pa_stream_connect_record(m_stream.get(), source.empty() ? nullptr : source.c_str(),
                                  &attributes, PA_STREAM_ADJUST_LATENCY) == 0;
}

RecordStream::~RecordStream() {
  if (!m_stream) return;
  const LoopLock lock(m_connection.Loop());
  pa_stream_set_state_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_set_read_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_disconnect(m_stream.get());
  m_stream.reset();
}

void RecordStream::WaitForFirstData(Deadline deadline) {
  // In time or not makes no difference to a recording that then starts: a silent source gives
  // silence.
  static_cast<void>(m_delivered.WaitUntil(deadline));
}

void RecordStream::OnState(pa_stream* stream, void* self) {
  auto& me = *static_cast<RecordStream*>(self);
  const pa_stream_state_t state = pa_stream_get_state(stream);
  if (state == PA_STREAM_READY) {
    me.m_ready.Give(true);
  } else if (!PA_STREAM_IS_GOOD(state)) {
    me.m_buffer.Lose();
    me.m_ready.Give(false);
    me.m_delivered.Give(false);
  }
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

#include "backends/pulse/server_stream.h"

#include <pulse/channelmap.h>

#include <utility>

namespace pulse {

ServerStream::ServerStream(Connection& connection, std::function<void()> onLost)
    : m_connection(connection), m_onLost(std::move(onLost)) {}

bool ServerStream::Start(const StreamLabel& label, const pa_sample_spec& sampleSpec,
                         const std::function<int(pa_stream*)>& connect, Deadline deadline) {
  const ProplistHandle properties(pa_proplist_new());
  pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ICON_NAME, label.icon);
  // Not every number of channels has an order that the library would choose by itself.
  pa_channel_map channels{};
  pa_channel_map_init_extend(&channels, sampleSpec.channels, PA_CHANNEL_MAP_WAVEEX);
  {
    const LoopLock lock(m_connection.Loop());
    m_stream.reset(pa_stream_new_with_proplist(m_connection.Context(), label.name, &sampleSpec,
                                               &channels, properties.get()));
    if (!m_stream) return false;
    pa_stream_set_state_callback(m_stream.get(), OnState, this);
    if (connect(m_stream.get()) != 0) return false;
  }
  return m_ready.WaitUntil(deadline).value_or(false);
}

ServerStream::~ServerStream() {
  if (!m_stream) return;
  const LoopLock lock(m_connection.Loop());
  pa_stream_set_state_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_set_read_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_set_write_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_disconnect(m_stream.get());
  m_stream.reset();
}

void ServerStream::OnState(pa_stream* stream, void* self) {
  auto& me = *static_cast<ServerStream*>(self);
  const pa_stream_state_t state = pa_stream_get_state(stream);
  if (state == PA_STREAM_READY) {
    me.m_ready.Give(true);
  } else if (!PA_STREAM_IS_GOOD(state)) {
    me.m_onLost();
    me.m_ready.Give(false);
  }
}

}  // namespace pulse

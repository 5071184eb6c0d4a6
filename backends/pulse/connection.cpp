#include "backends/pulse/connection.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <utility>

// A connection to the sound server lives on a thread of the library's own, the loop. It calls back
// on that thread, with the loop's lock held. Everybody else takes the lock for a moment to ask,
// lets it go, and waits for the answer with a limit. So a server that hangs keeps nobody longer
// than that.
namespace pulse {
namespace {

using platform::WaveResult;

/// What the server reports of its sources. The loop's thread fills it, and then says that it is
/// complete.
struct SourceList {
  Inputs inputs;
  Answer complete;
};

void OnContextState(pa_context* context, void* ready) {
  auto& answer = *static_cast<Answer*>(ready);
  const pa_context_state_t state = pa_context_get_state(context);
  if (state == PA_CONTEXT_READY) {
    answer.Give(true);
  } else if (!PA_CONTEXT_IS_GOOD(state)) {
    answer.Give(false);
  }
}

void OnServer(pa_context*, const pa_server_info* server, void* data) {
  // The list of sources follows and says how it went, so no failure is reported here.
  if (server == nullptr || server->default_source_name == nullptr) return;
  auto& list = *static_cast<SourceList*>(data);
  try {
    list.inputs.serversDefault = server->default_source_name;
  } catch (const std::exception&) {
    list.complete.Give(false);  // No memory; nothing may pass through the library.
  }
}

void OnSource(pa_context*, const pa_source_info* source, int end, void* data) {
  auto& list = *static_cast<SourceList*>(data);
  if (end != 0) {
    list.complete.Give(end > 0);
    return;
  }
  // A monitor hears what a loudspeaker plays and is no microphone.
  if (source->monitor_of_sink != PA_INVALID_INDEX) return;
  try {
    list.inputs.all.push_back(
        {source->name, source->description == nullptr ? source->name : source->description});
  } catch (const std::exception&) {
    list.complete.Give(false);
  }
}

ProplistHandle MakeProperties(const char* name, const char* value) {
  ProplistHandle properties(pa_proplist_new());
  pa_proplist_sets(properties.get(), name, value);
  return properties;
}

}  // namespace

// The library has no call for this: it reads the variable at its first message.
void KeepLibraryQuiet() {
  constexpr const char* kVariable = "PULSE_LOG_SYSLOG";
  if (std::getenv("PULSE_LOG") == nullptr && std::getenv(kVariable) == nullptr) {
    setenv(kVariable, "1", 0);
  }
}

Result<std::unique_ptr<Connection>> Connection::Open(Deadline deadline) {
  std::unique_ptr<Connection> connection(new Connection);
  if (!connection->Start() || !connection->m_ready.WaitUntil(deadline).value_or(false)) {
    return platform::Failure(WaveResult::kNoDevice);
  }
  return connection;
}

bool Connection::Start() {
  if (!LoadLibrary()) return false;
  m_loop.reset(pa_threaded_mainloop_new());
  if (!m_loop) return false;
  const ProplistHandle properties = MakeProperties(PA_PROP_APPLICATION_NAME, "Voxtrel");
  m_context.reset(pa_context_new_with_proplist(pa_threaded_mainloop_get_api(m_loop.get()), nullptr,
                                               properties.get()));
  if (!m_context) return false;
  pa_context_set_state_callback(m_context.get(), OnContextState, &m_ready);
  // No server is started for this: if none runs, the user has chosen another one, or none.
  if (pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
    return false;
  }
  return pa_threaded_mainloop_start(m_loop.get()) == 0;
}

Connection::~Connection() {
  if (!m_context) return;
  const LoopLock lock(m_loop.get());
  // The callbacks go first: the disconnection itself would call them, and what they use is about to
  // go.
  pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
  pa_context_disconnect(m_context.get());
  m_context.reset();
}

Result<Inputs> Connection::FindInputs(Deadline deadline) {
  SourceList list;
  OperationHandle server;
  OperationHandle sources;
  {
    const LoopLock lock(m_loop.get());
    // The server answers in the order in which it was asked.
    server.reset(pa_context_get_server_info(m_context.get(), OnServer, &list));
    sources.reset(pa_context_get_source_info_list(m_context.get(), OnSource, &list));
  }
  const bool isComplete = sources && list.complete.WaitUntil(deadline).value_or(false);
  {
    const LoopLock lock(m_loop.get());
    server.reset();
    sources.reset();
  }
  if (!isComplete) return platform::Failure(WaveResult::kNoDevice);
  return std::move(list.inputs);
}

std::string Inputs::Choose(const std::string& chosen) const {
  // The user's choice, if it is plugged in; else what the desktop has chosen; else any.
  for (const std::string& wanted : {chosen, serversDefault}) {
    if (std::ranges::find(all, wanted, &Input::name) != all.end()) {
      return wanted;
    }
  }
  return all.empty() ? std::string() : all.front().name;
}

Stream::Stream(Connection& connection, std::function<void()> onLost)
    : m_connection(connection), m_onLost(std::move(onLost)) {}

Result<void> Stream::Start(const StreamLabel& label, const pa_sample_spec& sampleSpec,
                           const std::function<int(pa_stream*)>& connect, Deadline deadline) {
  const ProplistHandle properties = MakeProperties(PA_PROP_MEDIA_ICON_NAME, label.icon);
  // Not every number of channels has an order that the library would choose by itself.
  pa_channel_map channels{};
  pa_channel_map_init_extend(&channels, sampleSpec.channels, PA_CHANNEL_MAP_WAVEEX);
  bool isAsked = false;
  {
    const LoopLock lock(m_connection.Loop());
    m_stream.reset(pa_stream_new_with_proplist(m_connection.Context(), label.name, &sampleSpec,
                                               &channels, properties.get()));
    if (m_stream) {
      pa_stream_set_state_callback(m_stream.get(), OnState, this);
      // This only sends the request. The answer comes to OnState, on the loop's thread.
      isAsked = connect(m_stream.get()) == 0;
    }
  }
  if (!isAsked || !m_ready.WaitUntil(deadline).value_or(false)) {
    return platform::Failure(WaveResult::kNoDevice);
  }
  return {};
}

Stream::~Stream() {
  if (!m_stream) return;
  const LoopLock lock(m_connection.Loop());
  pa_stream_set_state_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_set_read_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_set_write_callback(m_stream.get(), nullptr, nullptr);
  pa_stream_disconnect(m_stream.get());
  m_stream.reset();
}

void Stream::OnState(pa_stream* stream, void* self) {
  auto& me = *static_cast<Stream*>(self);
  const pa_stream_state_t state = pa_stream_get_state(stream);
  if (state == PA_STREAM_READY) {
    me.m_ready.Give(true);
  } else if (!PA_STREAM_IS_GOOD(state)) {
    // Before the answer: who is woken by it asks at once whether the stream is lost.
    me.m_onLost();
    me.m_ready.Give(false);
  }
}

}  // namespace pulse

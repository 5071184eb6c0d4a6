#include "backends/pulse/connection.h"

#include <pulse/introspect.h>

#include <algorithm>
#include <exception>
#include <vector>

namespace pulse {
namespace {

/// What the server tells about its sources. The loop's thread fills it and then says that it is
/// done.
struct SourceList {
  std::vector<std::string> inputs;
  std::string defaultSource;
  Answer<bool> complete;
};

void OnContextState(pa_context* context, void* ready) {
  auto& answer = *static_cast<Answer<bool>*>(ready);
  const pa_context_state_t state = pa_context_get_state(context);
  if (state == PA_CONTEXT_READY) {
    answer.Give(true);
  } else if (!PA_CONTEXT_IS_GOOD(state)) {
    answer.Give(false);
  }
}

void OnServer(pa_context*, const pa_server_info* server, void* data) {
  if (server == nullptr || server->default_source_name == nullptr) return;
  auto& list = *static_cast<SourceList*>(data);
  try {
    list.defaultSource = server->default_source_name;
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
  if (source->monitor_of_sink != PA_INVALID_INDEX) return;
  try {
    list.inputs.emplace_back(source->name);
  } catch (const std::exception&) {
    list.complete.Give(false);
  }
}

ProplistHandle MakeProperties() {
  ProplistHandle properties(pa_proplist_new());
  pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Voxtrel");
  return properties;
}

}  // namespace

std::unique_ptr<Connection> Connection::Open(Deadline deadline) {
  std::unique_ptr<Connection> connection(new Connection);
  if (!connection->Start()) return nullptr;
  if (!connection->m_ready.WaitUntil(deadline).value_or(false)) return nullptr;
  return connection;
}

bool Connection::Start() {
  m_loop.reset(pa_threaded_mainloop_new());
  if (!m_loop) return false;
  const ProplistHandle properties = MakeProperties();
  m_context.reset(pa_context_new_with_proplist(pa_threaded_mainloop_get_api(m_loop.get()), nullptr,
                                               properties.get()));
  if (!m_context) return false;
  pa_context_set_state_callback(m_context.get(), OnContextState, &m_ready);
  if (pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
    return false;
  }
  return pa_threaded_mainloop_start(m_loop.get()) == 0;
}

Connection::~Connection() {
  if (!m_context) return;
  const LoopLock lock(m_loop.get());
  pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
  pa_context_disconnect(m_context.get());
  m_context.reset();
}

std::optional<Inputs> Connection::FindInputs(Deadline deadline) {
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
  if (!isComplete) return std::nullopt;
  Inputs inputs{static_cast<std::uint32_t>(list.inputs.size()), {}};
  if (!list.inputs.empty() &&
      std::ranges::find(list.inputs, list.defaultSource) == list.inputs.end()) {
    inputs.preferred = list.inputs.front();
  }
  return inputs;
}

}  // namespace pulse

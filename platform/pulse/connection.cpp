#include "platform/pulse/connection.h"

#include <pulse/introspect.h>

namespace pulse {
namespace {

struct InputCount {
  std::uint32_t count = 0;  ///< The loop's thread only.
  Answer<std::optional<std::uint32_t>> answer;
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

void OnSource(pa_context*, const pa_source_info* source, int end, void* data) {
  auto& inputs = *static_cast<InputCount*>(data);
  if (end < 0) {
    inputs.answer.Give(std::nullopt);
  } else if (end > 0) {
    inputs.answer.Give(inputs.count);
  } else if (source->monitor_of_sink == PA_INVALID_INDEX) {
    ++inputs.count;
  }
}

ProplistHandle MakeProperties() {
  ProplistHandle properties(pa_proplist_new());
  pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Voxtrel");
  pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "audio-input-microphone");
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

std::optional<std::uint32_t> Connection::CountInputs(Deadline deadline) {
  InputCount inputs;
  OperationHandle operation;
  {
    const LoopLock lock(m_loop.get());
    operation.reset(pa_context_get_source_info_list(m_context.get(), OnSource, &inputs));
  }
  if (!operation) return std::nullopt;
  const auto count = inputs.answer.WaitUntil(deadline);
  const LoopLock lock(m_loop.get());
  operation.reset();
  return count.value_or(std::nullopt);
}

}  // namespace pulse

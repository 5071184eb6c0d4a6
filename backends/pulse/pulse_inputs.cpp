#include "backends/pulse/pulse_inputs.h"

#include <chrono>
#include <utility>

#include "backends/pulse/connection.h"
#include "backends/text/utf.h"

namespace pulse {
namespace {

using platform::WaveInput;
using platform::WaveResult;

/// How long the watch waits before it looks again for a server that is not there.
constexpr pa_usec_t kRetry = 2 * PA_USEC_PER_SEC;

/// A connection that listens for changes, and is made again each time it is lost. Everything but
/// construction and destruction happens on the loop's thread.
class InputWatch final : public platform::WaveInputs::Watch {
 public:
  explicit InputWatch(std::function<void()> changed) : m_changed(std::move(changed)) {
    if (!LoadLibrary()) return;
    m_loop.reset(pa_threaded_mainloop_new());
    if (!m_loop) return;
    Connect();
    static_cast<void>(pa_threaded_mainloop_start(m_loop.get()));
  }
  InputWatch(const InputWatch&) = delete;
  InputWatch& operator=(const InputWatch&) = delete;

  ~InputWatch() override {
    if (!m_loop) return;
    {
      const LoopLock lock(m_loop.get());
      Disconnect();
    }
    // Without the lock, since this waits for the loop's thread, which may need it for its last
    // step.
    pa_threaded_mainloop_stop(m_loop.get());
  }

 private:
  void Connect() {
    m_context.reset(pa_context_new(pa_threaded_mainloop_get_api(m_loop.get()), "Voxtrel"));
    if (!m_context) return;
    pa_context_set_state_callback(m_context.get(), OnState, this);
    pa_context_set_subscribe_callback(m_context.get(), OnEvent, this);
    if (pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
      TryAgainLater();
    }
  }

  void TryAgainLater() {
    // A lost connection can be reported twice, as failed and as ended. One timer is enough.
    if (m_retry == nullptr) {
      m_retry = pa_context_rttime_new(m_context.get(), pa_rtclock_now() + kRetry, OnRetry, this);
    }
  }

  void Disconnect() {
    if (m_retry != nullptr) {
      pa_threaded_mainloop_get_api(m_loop.get())->time_free(m_retry);
      m_retry = nullptr;
    }
    if (m_context) {
      pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
      pa_context_set_subscribe_callback(m_context.get(), nullptr, nullptr);
      pa_context_disconnect(m_context.get());
      m_context.reset();
    }
  }

  static void OnState(pa_context* context, void* self) {
    auto& me = *static_cast<InputWatch*>(self);
    const pa_context_state_t state = pa_context_get_state(context);
    if (state == PA_CONTEXT_READY) {
      constexpr auto kChanges = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE |
                                                                    PA_SUBSCRIPTION_MASK_SERVER);
      // The server's own events are among them: they say that its default input has changed.
      const OperationHandle ignored(pa_context_subscribe(context, kChanges, nullptr, nullptr));
      me.m_isReady = true;
      me.m_changed();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
      me.TryAgainLater();
      if (std::exchange(me.m_isReady, false)) {
        me.m_changed();
      }
    }
  }

  static void OnEvent(pa_context* /*context*/, pa_subscription_event_type_t /*type*/,
                      std::uint32_t /*index*/, void* self) {
    static_cast<InputWatch*>(self)->m_changed();
  }

  // Here and not in the state callback, in which the library still uses the lost connection.
  static void OnRetry(pa_mainloop_api* /*api*/, pa_time_event* /*event*/, const timeval* /*now*/,
                      void* self) {
    auto& me = *static_cast<InputWatch*>(self);
    me.Disconnect();
    me.Connect();
  }

  const std::function<void()> m_changed;
  LoopHandle m_loop;
  ContextHandle m_context;
  pa_time_event* m_retry = nullptr;  ///< Null while a connection is there or being made.
  bool m_isReady = false;
};

}  // namespace

PulseWaveInputs::PulseWaveInputs(ChosenInput getChosen) : m_getChosen(std::move(getChosen)) {
  KeepLibraryQuiet();
}

platform::Result<std::vector<WaveInput>, WaveResult> PulseWaveInputs::List() {
  const Deadline deadline = std::chrono::steady_clock::now() + kCallLimit;
  const auto connection = Connection::Open(deadline);
  if (!connection) return platform::Failure(connection.error());
  const auto found = (*connection)->FindInputs(deadline);
  if (!found) return platform::Failure(found.error());
  const std::string used = found->Choose(m_getChosen ? text::ToUtf8(m_getChosen()) : std::string());
  std::vector<WaveInput> inputs;
  for (const Input& input : found->all) {
    inputs.push_back(
        {text::FromUtf8(input.name), text::FromUtf8(input.description), input.name == used});
  }
  return inputs;
}

std::unique_ptr<platform::WaveInputs::Watch> PulseWaveInputs::StartWatch(
    std::function<void()> changed) {
  return std::make_unique<InputWatch>(std::move(changed));
}

}  // namespace pulse

#include "tests/backends/pulse/fake_library.h"

#include <pulse/pulseaudio.h>

#include <array>
#include <cstdint>
#include <cstdlib>

// The library's handles, which are opaque to the program.

struct pa_threaded_mainloop {};

struct pa_proplist {};

struct pa_operation {};

struct pa_context {
  pa_context_state_t state = PA_CONTEXT_UNCONNECTED;
  pa_context_notify_cb_t onState = nullptr;
  void* data = nullptr;
};

struct pa_stream {
  pa_stream_state_t state = PA_STREAM_UNCONNECTED;
  pa_stream_notify_cb_t onState = nullptr;
  void* stateData = nullptr;
  pa_stream_request_cb_t onReadable = nullptr;
  void* readData = nullptr;
  pa_sample_spec sampleSpec{};
  bool hasFragment = false;
};

namespace {

struct FakeState {
  int untilFailure = 0;  ///< 0 if nothing is to fail.
  const char* failed = "";
  int held = 0;
  void (*begin)() = nullptr;
  void (*end)() = nullptr;
};
FakeState fake;

template <typename T>
T* Make(const char* function) {
  if (fake.untilFailure > 0 && --fake.untilFailure == 0) {
    fake.failed = function;
    return nullptr;
  }
  ++fake.held;
  return new T;
}

/// Ends the process if there is nothing to give back, as the library does.
template <typename T>
void GiveBack(T* thing) {
  if (thing == nullptr) std::abort();
  --fake.held;
  delete thing;
}

template <typename Function>
void Answer(Function give) {
  if (fake.begin != nullptr) fake.begin();
  give();
  if (fake.end != nullptr) fake.end();
}

int Connect(pa_stream* stream) {
  stream->state = PA_STREAM_READY;
  stream->onState(stream, stream->stateData);
  return 0;
}

}  // namespace

namespace fake_library {

void Reset() { fake = {}; }
void FailAt(int number) { fake.untilFailure = number; }
std::string GetFailed() { return fake.failed; }
int CountHeld() { return fake.held; }
void SetAroundAnswers(void (*begin)(), void (*end)()) {
  fake.begin = begin;
  fake.end = end;
}

}  // namespace fake_library

extern "C" {

pa_threaded_mainloop* pa_threaded_mainloop_new() { return Make<pa_threaded_mainloop>(__func__); }
void pa_threaded_mainloop_free(pa_threaded_mainloop* loop) { GiveBack(loop); }
int pa_threaded_mainloop_start(pa_threaded_mainloop*) { return 0; }
void pa_threaded_mainloop_lock(pa_threaded_mainloop*) { ++fake.held; }
void pa_threaded_mainloop_unlock(pa_threaded_mainloop*) { --fake.held; }
pa_mainloop_api* pa_threaded_mainloop_get_api(pa_threaded_mainloop*) { return nullptr; }

pa_proplist* pa_proplist_new() {
  ++fake.held;
  return new pa_proplist;
}
int pa_proplist_sets(pa_proplist*, const char*, const char*) { return 0; }
void pa_proplist_free(pa_proplist* properties) { GiveBack(properties); }

void pa_operation_cancel(pa_operation*) {}
void pa_operation_unref(pa_operation* operation) { GiveBack(operation); }

pa_context* pa_context_new_with_proplist(pa_mainloop_api*, const char*, const pa_proplist*) {
  return Make<pa_context>(__func__);
}
void pa_context_unref(pa_context* context) { GiveBack(context); }
void pa_context_set_state_callback(pa_context* context, pa_context_notify_cb_t onState,
                                   void* data) {
  context->onState = onState;
  context->data = data;
}
pa_context_state_t pa_context_get_state(const pa_context* context) { return context->state; }
int pa_context_connect(pa_context* context, const char*, pa_context_flags_t, const pa_spawn_api*) {
  context->state = PA_CONTEXT_READY;
  context->onState(context, context->data);
  return 0;
}
void pa_context_disconnect(pa_context* context) { context->state = PA_CONTEXT_TERMINATED; }

pa_operation* pa_context_get_server_info(pa_context* context, pa_server_info_cb_t give,
                                         void* data) {
  auto* const operation = Make<pa_operation>(__func__);
  if (operation != nullptr) {
    pa_server_info server{};
    server.default_source_name = "a microphone with a long name";
    Answer([&] { give(context, &server, data); });
  }
  return operation;
}

pa_operation* pa_context_get_source_info_list(pa_context* context, pa_source_info_cb_t give,
                                              void* data) {
  auto* const operation = Make<pa_operation>(__func__);
  if (operation != nullptr) {
    pa_source_info source{};
    source.name = "a microphone with a long name";
    source.monitor_of_sink = PA_INVALID_INDEX;
    Answer([&] {
      give(context, &source, 0, data);
      give(context, nullptr, 1, data);
    });
  }
  return operation;
}

pa_stream* pa_stream_new_with_proplist(pa_context*, const char*, const pa_sample_spec* sampleSpec,
                                       const pa_channel_map*, pa_proplist*) {
  auto* const stream = Make<pa_stream>(__func__);
  if (stream != nullptr) {
    stream->sampleSpec = *sampleSpec;
  }
  return stream;
}
void pa_stream_unref(pa_stream* stream) { GiveBack(stream); }
pa_stream_state_t pa_stream_get_state(const pa_stream* stream) { return stream->state; }
const pa_sample_spec* pa_stream_get_sample_spec(pa_stream* stream) { return &stream->sampleSpec; }
void pa_stream_set_state_callback(pa_stream* stream, pa_stream_notify_cb_t onState, void* data) {
  stream->onState = onState;
  stream->stateData = data;
}
void pa_stream_set_read_callback(pa_stream* stream, pa_stream_request_cb_t onReadable, void* data) {
  stream->onReadable = onReadable;
  stream->readData = data;
}
void pa_stream_set_write_callback(pa_stream*, pa_stream_request_cb_t, void*) {}

int pa_stream_connect_record(pa_stream* stream, const char*, const pa_buffer_attr*,
                             pa_stream_flags_t) {
  Connect(stream);
  stream->hasFragment = true;
  stream->onReadable(stream, 2, stream->readData);
  return 0;
}
int pa_stream_peek(pa_stream* stream, const void** data, size_t* count) {
  static constexpr std::array<std::uint8_t, 2> kFragment{};
  *data = stream->hasFragment ? kFragment.data() : nullptr;
  *count = stream->hasFragment ? kFragment.size() : 0;
  return 0;
}
int pa_stream_drop(pa_stream* stream) {
  stream->hasFragment = false;
  return 0;
}

int pa_stream_connect_playback(pa_stream* stream, const char*, const pa_buffer_attr*,
                               pa_stream_flags_t, const pa_cvolume*, pa_stream*) {
  return Connect(stream);
}
size_t pa_stream_writable_size(const pa_stream*) { return 1000; }
int pa_stream_write(pa_stream*, const void*, size_t, pa_free_cb_t, int64_t, pa_seek_mode_t) {
  return 0;
}
pa_operation* pa_stream_drain(pa_stream* stream, pa_stream_success_cb_t give, void* data) {
  auto* const operation = Make<pa_operation>(__func__);
  if (operation != nullptr) {
    give(stream, 1, data);
  }
  return operation;
}
pa_operation* pa_stream_flush(pa_stream*, pa_stream_success_cb_t, void*) {
  return Make<pa_operation>(__func__);
}
int pa_stream_disconnect(pa_stream* stream) {
  stream->state = PA_STREAM_TERMINATED;
  return 0;
}

}  // extern "C"

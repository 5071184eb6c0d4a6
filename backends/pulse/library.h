#pragma once

#include <pulse/pulseaudio.h>

// The sound library is loaded when a device is first asked for, since it brings two dozen other
// libraries with it, and most commands need no sound. Its functions are pointers of the same names
// here, which hide those of its headers in this namespace.

#define VOXTREL_EACH_PULSE_FUNCTION(DO) \
  DO(pa_bytes_to_usec)                  \
  DO(pa_channel_map_init_extend)        \
  DO(pa_context_connect)                \
  DO(pa_context_disconnect)             \
  DO(pa_context_get_server_info)        \
  DO(pa_context_get_source_info_list)   \
  DO(pa_context_get_state)              \
  DO(pa_context_new)                    \
  DO(pa_context_new_with_proplist)      \
  DO(pa_context_rttime_new)             \
  DO(pa_context_set_state_callback)     \
  DO(pa_context_set_subscribe_callback) \
  DO(pa_context_subscribe)              \
  DO(pa_context_unref)                  \
  DO(pa_frame_size)                     \
  DO(pa_operation_cancel)               \
  DO(pa_operation_unref)                \
  DO(pa_proplist_free)                  \
  DO(pa_proplist_new)                   \
  DO(pa_proplist_sets)                  \
  DO(pa_rtclock_now)                    \
  DO(pa_sample_spec_valid)              \
  DO(pa_stream_connect_playback)        \
  DO(pa_stream_connect_record)          \
  DO(pa_stream_disconnect)              \
  DO(pa_stream_drain)                   \
  DO(pa_stream_drop)                    \
  DO(pa_stream_flush)                   \
  DO(pa_stream_get_state)               \
  DO(pa_stream_new_with_proplist)       \
  DO(pa_stream_peek)                    \
  DO(pa_stream_set_read_callback)       \
  DO(pa_stream_set_state_callback)      \
  DO(pa_stream_set_write_callback)      \
  DO(pa_stream_unref)                   \
  DO(pa_stream_writable_size)           \
  DO(pa_stream_write)                   \
  DO(pa_threaded_mainloop_free)         \
  DO(pa_threaded_mainloop_get_api)      \
  DO(pa_threaded_mainloop_lock)         \
  DO(pa_threaded_mainloop_new)          \
  DO(pa_threaded_mainloop_start)        \
  DO(pa_threaded_mainloop_stop)         \
  DO(pa_threaded_mainloop_unlock)       \
  DO(pa_usec_to_bytes)

namespace pulse {

// Names of another library. NOLINTBEGIN(readability-identifier-naming)
// A name in a declaration takes no parentheses. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define VOXTREL_DECLARE(function) extern decltype(&::function) function;
VOXTREL_EACH_PULSE_FUNCTION(VOXTREL_DECLARE)
#undef VOXTREL_DECLARE
// NOLINTEND(readability-identifier-naming)

/// Loads the library if it is not loaded yet, for good. Returns whether it is: only then may one of
/// the functions above be called. May be called on any thread.
[[nodiscard]] bool LoadLibrary();

}  // namespace pulse

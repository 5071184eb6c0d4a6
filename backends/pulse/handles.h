#pragma once

#include <pulse/context.h>
#include <pulse/operation.h>
#include <pulse/proplist.h>
#include <pulse/stream.h>
#include <pulse/thread-mainloop.h>

#include <memory>

namespace pulse {

struct Release {
  void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
  void operator()(pa_context* context) const { pa_context_unref(context); }
  void operator()(pa_stream* stream) const { pa_stream_unref(stream); }
  void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }

  /// An operation given up early is cancelled, so that its callback never comes. Needs the lock.
  void operator()(pa_operation* operation) const {
    pa_operation_cancel(operation);
    pa_operation_unref(operation);
  }
};

using LoopHandle = std::unique_ptr<pa_threaded_mainloop, Release>;
using ContextHandle = std::unique_ptr<pa_context, Release>;
using StreamHandle = std::unique_ptr<pa_stream, Release>;
using ProplistHandle = std::unique_ptr<pa_proplist, Release>;
using OperationHandle = std::unique_ptr<pa_operation, Release>;

/// Holds the loop's lock, without which nothing of a context or stream may be touched outside the
/// loop's thread.
class LoopLock {
 public:
  explicit LoopLock(pa_threaded_mainloop* loop) : m_loop(loop) { pa_threaded_mainloop_lock(loop); }
  LoopLock(const LoopLock&) = delete;
  LoopLock& operator=(const LoopLock&) = delete;
  ~LoopLock() { pa_threaded_mainloop_unlock(m_loop); }

 private:
  pa_threaded_mainloop* m_loop;
};

}  // namespace pulse

#pragma once

#include <pulse/sample.h>

#include <functional>

#include "backends/pulse/answer.h"
#include "backends/pulse/connection.h"
#include "backends/pulse/handles.h"

namespace pulse {

/// What the user's mixer shows of a stream.
struct StreamLabel {
  const char* name;
  const char* icon;
};

/// A stream of either direction from its connecting to its end. Does not outlive the connection.
/// Once it is destroyed no callback of the stream comes any more; so it is the last member of its
/// user.
class ServerStream {
 public:
  /// `onLost` is called on the loop's thread when the stream is no longer there.
  ServerStream(Connection& connection, std::function<void()> onLost);
  ServerStream(const ServerStream&) = delete;
  ServerStream& operator=(const ServerStream&) = delete;
  ~ServerStream();

  /// Makes the stream, lets `connect` set its callbacks and connect it (0: done), and waits until
  /// the server has agreed. False where it does not do so before the deadline.
  [[nodiscard]] bool Start(const StreamLabel& label, const pa_sample_spec& sampleSpec,
                           const std::function<int(pa_stream*)>& connect, Deadline deadline);

  /// Null before Start. Needs the loop's lock.
  [[nodiscard]] pa_stream* Get() const { return m_stream.get(); }

 private:
  static void OnState(pa_stream* stream, void* self);

  Connection& m_connection;
  const std::function<void()> m_onLost;
  Answer<bool> m_ready;
  StreamHandle m_stream;
};

}  // namespace pulse

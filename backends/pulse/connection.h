#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "backends/pulse/handles.h"
#include "platform/result.h"
#include "platform/wave_devices.h"

namespace pulse {

/// A server that has not answered all that one call asks of it within this time counts as not
/// there.
inline constexpr std::chrono::milliseconds kCallLimit(3000);

/// What fails here fails with WaveResult::kNoDevice: there is no server, it does not answer before
/// the deadline, or it went away.
template <typename T>
using Result = platform::Result<T, platform::WaveResult>;

/// Sends messages of the sound library to the system log, unless the user asked for them. Changes
/// the environment of the process.
void KeepLibraryQuiet();

/// A source that is no monitor of an output.
struct Input {
  std::string name;
  std::string description;  ///< For people.
};

struct Inputs {
  std::vector<Input> all;
  /// It may well be a monitor although there is a microphone.
  std::string serversDefault;

  /// Returns the source to record from: the chosen one if it is there, else the server's default,
  /// else the first one. Returns an empty text if there is none.
  [[nodiscard]] std::string Choose(const std::string& chosen) const;
};

/// A connection to the user's sound server, with the thread that serves it.
class Connection {
 public:
  /// Never starts a server: that is the business of the user's session, and could not be given a
  /// deadline.
  [[nodiscard]] static Result<std::unique_ptr<Connection>> Open(Deadline deadline);

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  [[nodiscard]] Result<Inputs> FindInputs(Deadline deadline);

  [[nodiscard]] pa_threaded_mainloop* Loop() const { return m_loop.get(); }
  [[nodiscard]] pa_context* Context() const { return m_context.get(); }

 private:
  Connection() = default;

  [[nodiscard]] bool Start();

  // The answer stands before the handles: the loop's thread uses it until they are gone.
  Answer m_ready;
  LoopHandle m_loop;
  ContextHandle m_context;
};

/// What the user's mixer shows of a stream.
struct StreamLabel {
  const char* name;
  const char* icon;
};

/// A stream of either direction from its connecting to its end. Does not outlive the connection.
/// After it is destroyed no callback of the stream comes any more, so it is the last member of its
/// user.
class Stream {
 public:
  /// `onLost` is called on the loop's thread when the stream is no longer there.
  Stream(Connection& connection, std::function<void()> onLost);
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream();

  /// Makes the stream, lets `connect` set its callbacks and connect it (0: done), and waits until
  /// the server has agreed.
  [[nodiscard]] Result<void> Start(const StreamLabel& label, const pa_sample_spec& sampleSpec,
                                   const std::function<int(pa_stream*)>& connect,
                                   Deadline deadline);

  /// Returns null before Start. Needs the loop's lock.
  [[nodiscard]] pa_stream* Get() const { return m_stream.get(); }

 private:
  static void OnState(pa_stream* stream, void* self);

  Connection& m_connection;
  const std::function<void()> m_onLost;
  Answer m_ready;
  StreamHandle m_stream;
};

}  // namespace pulse

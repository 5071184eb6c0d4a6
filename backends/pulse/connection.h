#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "backends/pulse/answer.h"
#include "backends/pulse/handles.h"

namespace pulse {

/// Within this the server has answered all that one call asks of it, or counts as not there.
inline constexpr std::chrono::milliseconds kCallLimit(3000);

/// The sources that are no monitors of outputs.
struct Inputs {
  std::uint32_t count = 0;
  /// The one to record from where that is not the server's default, which may well be a monitor
  /// although there is a microphone. Empty stands for the default.
  std::string preferred;
};

/// A connection to the user's sound server, with the thread that serves it.
class Connection {
 public:
  /// Null where there is no server, or none that answers before the deadline. Never starts a
  /// server: that is the business of the user's session, and could not be given a deadline.
  [[nodiscard]] static std::unique_ptr<Connection> Open(Deadline deadline);

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  /// Nothing where the server went away or did not answer in time.
  [[nodiscard]] std::optional<Inputs> FindInputs(Deadline deadline);

  [[nodiscard]] pa_threaded_mainloop* Loop() const { return m_loop.get(); }
  [[nodiscard]] pa_context* Context() const { return m_context.get(); }

 private:
  Connection() = default;

  [[nodiscard]] bool Start();

  // Before the handles: the loop's thread uses it until they are gone.
  Answer<bool> m_ready;
  LoopHandle m_loop;
  ContextHandle m_context;
};

}  // namespace pulse

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/e2e/background_program.h"
#include "tests/e2e/sound_session.h"

namespace e2e {

enum class PulseInput : std::uint8_t {
  kNone,         ///< No source at all.
  kMonitorOnly,  ///< An output and the source that listens to it.
  kPipe,         ///< A microphone that hears what is written to a pipe.
  kPipeBesideMonitor,
  kEcho,  ///< An output "speaker", and a microphone "ear" that hears what it plays.
};

struct PulseServerOptions {
  PulseInput input = PulseInput::kPipe;
  /// Of the pipe or the echo, whose samples are signed 16 bit little-endian.
  std::uint32_t rate = 11025;
  std::uint16_t channels = 1;
};

/// A PulseAudio server of a session's own. It ends with this object, and with the test program
/// whatever becomes of that.
class PulseServer {
 public:
  /// Returns when clients can connect. Null, and a failure of the test, if it does not come up.
  [[nodiscard]] static std::unique_ptr<PulseServer> Start(const SoundSession& session,
                                                          const PulseServerOptions& options = {});

  PulseServer(const PulseServer&) = delete;
  PulseServer& operator=(const PulseServer&) = delete;
  ~PulseServer() = default;

  /// The pipe that the microphone hears. Nothing comes from it while nobody writes.
  [[nodiscard]] const std::filesystem::path& Pipe() const { return m_pipe; }

  /// Ends the server without any farewell to its clients.
  void Kill() { m_program.Kill(); }

  /// Stops the server for good: its connections stay, and nobody answers.
  void Freeze() { m_program.Freeze(); }

 private:
  PulseServer(std::vector<std::string> arguments, const std::filesystem::path& log,
              std::filesystem::path pipe);

  BackgroundProgram m_program;
  std::filesystem::path m_pipe;
};

}  // namespace e2e

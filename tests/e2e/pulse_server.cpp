#include "tests/e2e/pulse_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "tests/e2e/text_file.h"
#include "tests/e2e/unix_socket.h"

namespace e2e {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kStartLimit(20);
constexpr std::chrono::milliseconds kServerPollInterval(5);

bool HasPipe(const PulseServerOptions& options) {
  return options.input == PulseInput::kPipe || options.input == PulseInput::kPipeBesideMonitor;
}

std::vector<std::string> MakeArguments(const PulseServerOptions& options,
                                       const std::filesystem::path& pipe) {
  std::vector<std::string> arguments{"pulseaudio",         "-n",
                                     "--daemonize=no",     "--use-pid-file=no",
                                     "--realtime=no",      "--high-priority=no",
                                     "--disable-shm=yes",  "--log-target=stderr",
                                     "--exit-idle-time=-1"};
  if (options.input == PulseInput::kMonitorOnly ||
      options.input == PulseInput::kPipeBesideMonitor) {
    arguments.emplace_back("--load=module-null-sink sink_name=speaker");
  }
  const std::string form = " format=s16le rate=" + std::to_string(options.rate) +
                           " channels=" + std::to_string(options.channels);
  if (options.input == PulseInput::kEcho) {
    // With rewinds the ear would hear what was taken back too.
    arguments.push_back("--load=module-null-sink sink_name=speaker norewinds=1" + form);
    arguments.emplace_back("--load=module-remap-source source_name=ear master=speaker.monitor");
  }
  if (HasPipe(options)) {
    arguments.push_back("--load=module-pipe-source file=" + pipe.string() + form);
  }
  // The last one: who can connect finds the others loaded.
  arguments.emplace_back("--load=module-native-protocol-unix");
  return arguments;
}

bool AwaitConnection(const std::filesystem::path& socket, const BackgroundProgram& server) {
  const auto deadline = steady_clock::now() + kStartLimit;
  while (steady_clock::now() < deadline && !server.HasEnded()) {
    if (CanConnect(socket)) return true;
    std::this_thread::sleep_for(kServerPollInterval);
  }
  return false;
}

}  // namespace

std::unique_ptr<PulseServer> PulseServer::Start(const SoundSession& session,
                                                const PulseServerOptions& options) {
  const auto log = session.Folder() / "server.log";
  const auto pipe = session.Folder() / "microphone";
  std::unique_ptr<PulseServer> server(new PulseServer(MakeArguments(options, pipe), log, pipe));
  const bool isUp = AwaitConnection(session.ServerSocket(), server->m_program);
  if (!isUp || (HasPipe(options) && !std::filesystem::is_fifo(pipe))) {
    ADD_FAILURE() << "The sound server does not come up:\n" << ReadText(log);
    return nullptr;
  }
  return server;
}

PulseServer::PulseServer(std::vector<std::string> arguments, const std::filesystem::path& log,
                         std::filesystem::path pipe)
    : m_program(std::move(arguments), log), m_pipe(std::move(pipe)) {}

}  // namespace e2e

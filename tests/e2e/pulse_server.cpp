#include "tests/e2e/pulse_server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

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
constexpr std::chrono::milliseconds kPollInterval(5);

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

/// In the child, between fork and exec, where only the simplest calls are allowed.
[[noreturn]] void BecomeServer(char* const* arguments, const char* log, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);
  const int output = open(log, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execvp(arguments[0], arguments);
  _exit(127);
}

pid_t Launch(std::vector<std::string> arguments, const std::filesystem::path& log) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) BecomeServer(pointers.data(), log.c_str(), parent);
  return child;
}

bool HasEnded(pid_t process) {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
         info.si_pid != 0;
}

bool AwaitConnection(const std::filesystem::path& socket, pid_t process) {
  const auto deadline = steady_clock::now() + kStartLimit;
  while (steady_clock::now() < deadline && !HasEnded(process)) {
    if (CanConnect(socket)) return true;
    std::this_thread::sleep_for(kPollInterval);
  }
  return false;
}

}  // namespace

std::unique_ptr<PulseServer> PulseServer::Start(const SoundSession& session,
                                                const PulseServerOptions& options) {
  const auto log = session.Folder() / "server.log";
  const auto pipe = session.Folder() / "microphone";
  const pid_t process = Launch(MakeArguments(options, pipe), log);
  if (process < 0) {
    ADD_FAILURE() << "There is no process for the sound server.";
    return nullptr;
  }
  std::unique_ptr<PulseServer> server(new PulseServer(process, pipe));
  const bool isUp = AwaitConnection(session.ServerSocket(), process);
  if (!isUp || (HasPipe(options) && !std::filesystem::is_fifo(pipe))) {
    ADD_FAILURE() << "The sound server does not come up:\n" << ReadText(log);
    return nullptr;
  }
  return server;
}

PulseServer::PulseServer(pid_t process, std::filesystem::path pipe)
    : m_process(process), m_pipe(std::move(pipe)) {}

PulseServer::~PulseServer() { Kill(); }

void PulseServer::Kill() {
  if (m_process == 0) return;
  kill(m_process, SIGKILL);
  waitpid(m_process, nullptr, 0);
  m_process = 0;
}

void PulseServer::Freeze() {
  if (m_process != 0) kill(m_process, SIGSTOP);
}

}  // namespace e2e

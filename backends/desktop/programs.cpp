#include "backends/desktop/programs.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>

#include "backends/desktop/pipe.h"

namespace xdg {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Pointers to the texts of a command, as exec takes them.
std::vector<char*> PointersOf(Command& command) {
  std::vector<char*> pointers;
  pointers.reserve(command.size() + 1);
  for (std::string& argument : command) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

// From here on, what runs between fork and exec: only calls that are safe there, and no memory
// taken, since another thread may have held the lock of the heap.

/// Where the descriptor is kept that the new process reports by.
constexpr int kReport = 3;

[[noreturn]] void Exec(const char* program, char* const* arguments, int output) {
  // What is given up here goes with the process where something fails.
  const int nothing = ::open("/dev/null", O_RDWR);
  ::dup2(nothing, STDIN_FILENO);
  ::dup2(output >= 0 ? output : nothing, STDOUT_FILENO);
  ::dup2(nothing, STDERR_FILENO);
  ::close_range(kReport, ~0U, 0);
  sigset_t none{};
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::execv(program, arguments);
  ::_exit(127);
}

/// The process between this one and the program: waits for the program, says by one byte how it
/// ended, and goes.
[[noreturn]] void Watch(const char* program, char* const* arguments, int report) {
  ::setsid();
  const pid_t child = ::fork();
  if (child == 0) {
    Exec(program, arguments, -1);
  }
  ::dup2(report, kReport);
  ::close_range(kReport + 1, ~0U, 0);
  // The standard streams as well: whoever reads them from us must not wait for the program.
  const int nothing = ::open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    ::dup2(nothing, stream);
  }
  int status = 0;
  bool isWell = child > 0;
  if (isWell) {
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    isWell = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  const char byte = isWell ? '1' : '0';
  static_cast<void>(::write(kReport, &byte, 1));
  ::_exit(0);
}

// To here.

/// Waits until something can be read, or `end`.
bool AwaitInput(int descriptor, steady_clock::time_point end) {
  while (true) {
    const auto left = std::chrono::duration_cast<milliseconds>(end - steady_clock::now()).count();
    pollfd waited{descriptor, POLLIN, 0};
    const int ready = ::poll(&waited, 1, static_cast<int>(std::max<decltype(left)>(left, 0)));
    if (ready >= 0 || errno != EINTR) {
      return ready > 0;
    }
  }
}

/// One read, without a word of interruptions.
ssize_t ReadSome(int descriptor, std::span<char> into) {
  ssize_t length = -1;
  do {
    length = ::read(descriptor, into.data(), into.size());
  } while (length < 0 && errno == EINTR);
  return length;
}

/// The end of a process of ours; whether it did what it was to.
bool Reap(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return false;
    }
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Everything up to the end of the output or `end`; whether that end was seen.
bool ReadAll(int descriptor, steady_clock::time_point end, std::string& output) {
  constexpr std::size_t kMaxLength = 4096;
  std::array<char, 512> buffer{};
  while (output.size() < kMaxLength && AwaitInput(descriptor, end)) {
    const ssize_t length = ReadSome(descriptor, buffer);
    if (length <= 0) {
      return length == 0;
    }
    output.append(buffer.data(), static_cast<std::size_t>(length));
  }
  return false;
}

}  // namespace

std::string FindProgram(const Environment& environment, const std::string& name) {
  const auto canRun = [](const std::string& path) {
    struct stat found {};
    return ::stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
  };
  if (name.find('/') != std::string::npos) {
    return canRun(name) ? name : std::string();
  }
  for (const std::string& folder : environment.programFolders) {
    std::string path = folder + "/" + name;
    if (!name.empty() && canRun(path)) {
      return path;
    }
  }
  return {};
}

bool StartDetached(const Environment& environment, const Command& command, milliseconds patience) {
  const std::string program =
      command.empty() ? std::string() : FindProgram(environment, command.front());
  std::optional<Pipe> pipe = program.empty() ? std::nullopt : Pipe::Make();
  if (!pipe) {
    return false;
  }
  Command copy = command;
  const std::vector<char*> arguments = PointersOf(copy);
  const pid_t between = ::fork();
  if (between < 0) {
    return false;
  }
  if (between == 0) {
    // This process ends at once, so that the next one, and with it the program, is not ours to
    // wait for.
    if (::fork() == 0) {
      Watch(program.c_str(), arguments.data(), pipe->write.Get());
    }
    ::_exit(0);
  }
  pipe->write.Close();
  Reap(between);
  std::array<char, 1> report{'1'};
  if (!AwaitInput(pipe->read.Get(), steady_clock::now() + patience)) {
    return true;
  }
  return ReadSome(pipe->read.Get(), report) == 1 && report.front() == '1';
}

std::optional<std::string> ReadLine(const Environment& environment, const Command& command,
                                    milliseconds patience) {
  const std::string program =
      command.empty() ? std::string() : FindProgram(environment, command.front());
  std::optional<Pipe> pipe = program.empty() ? std::nullopt : Pipe::Make();
  if (!pipe) {
    return std::nullopt;
  }
  Command copy = command;
  const std::vector<char*> arguments = PointersOf(copy);
  const pid_t child = ::fork();
  if (child < 0) {
    return std::nullopt;
  }
  if (child == 0) {
    ::setsid();
    Exec(program.c_str(), arguments.data(), pipe->write.Get());
  }
  pipe->write.Close();
  std::string output;
  const bool isComplete = ReadAll(pipe->read.Get(), steady_clock::now() + patience, output);
  if (!isComplete) {
    ::kill(-child, SIGKILL);
    ::kill(child, SIGKILL);
  }
  const bool isWell = Reap(child) && isComplete;
  output.resize(std::min(output.find('\n'), output.size()));
  return isWell && !output.empty() ? std::optional(output) : std::nullopt;
}

}  // namespace xdg

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
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/result.h"

// Starting a program that outlives this one, and noticing all the same whether it could be started.
namespace desktop {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::string GetVariable(const char* name) {
  // Read before there is a second thread.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

/// Returns the parts between colons that are absolute folders.
std::vector<std::string> SplitFolders(std::string_view list) {
  std::vector<std::string> folders;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (list.front() == '/') {
      folders.emplace_back(list.substr(0, end));
    }
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return folders;
}

std::vector<std::string> FindDataFolders() {
  std::vector<std::string> folders = SplitFolders(GetVariable("XDG_DATA_HOME"));
  if (folders.empty()) {
    if (const std::string home = GetVariable("HOME"); home.starts_with('/')) {
      folders.push_back(home + "/.local/share");
    }
  }
  std::string shared = GetVariable("XDG_DATA_DIRS");
  if (shared.empty()) {
    shared = "/usr/local/share:/usr/share";
  }
  for (std::string& folder : SplitFolders(shared)) {
    folders.push_back(std::move(folder));
  }
  return folders;
}

/// "de_AT.UTF-8" gives "de_AT" and "de"; the languages "C" and "POSIX" are none.
std::vector<std::string> FindLanguages() {
  std::string locale;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    locale = GetVariable(name);
    if (!locale.empty()) {
      break;
    }
  }
  locale = locale.substr(0, locale.find_first_of(".@"));
  if (locale.empty() || locale == "C" || locale == "POSIX" ||
      locale.find('/') != std::string::npos) {
    return {};
  }
  std::vector<std::string> languages{locale};
  if (const std::size_t country = locale.find('_'); country != std::string::npos) {
    languages.push_back(locale.substr(0, country));
  }
  return languages;
}

/// One end of a pipe, closed when it goes out of scope.
class PipeEnd {
 public:
  explicit PipeEnd(int descriptor) : m_descriptor(descriptor) {}
  PipeEnd(PipeEnd&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, kNone)) {}
  PipeEnd(const PipeEnd&) = delete;
  PipeEnd& operator=(const PipeEnd&) = delete;
  PipeEnd& operator=(PipeEnd&&) = delete;
  ~PipeEnd() { Close(); }

  [[nodiscard]] int Get() const { return m_descriptor; }

  void Close() {
    const int descriptor = std::exchange(m_descriptor, kNone);
    if (descriptor != kNone) {
      ::close(descriptor);
    }
  }

 private:
  static constexpr int kNone = -1;

  int m_descriptor;
};

struct Pipe {
  PipeEnd read;
  PipeEnd write;

  /// Makes a pipe that no other program inherits. Fails with the system's error number.
  [[nodiscard]] static platform::Result<Pipe, int> Make() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
      return platform::Failure(errno);
    }
    return Pipe{PipeEnd(ends[0]), PipeEnd(ends[1])};
  }
};

/// Returns pointers to the texts of a command, as exec takes them.
std::vector<char*> PointersOf(Command& command) {
  std::vector<char*> pointers;
  pointers.reserve(command.size() + 1);
  for (std::string& argument : command) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

// A program is started by two forks. This process waits for the first child, which ends at once; so
// the second child belongs to nobody here, and neither does the program. The second child stays and
// watches the program. It writes one byte into a pipe when the program ends: that is how a failure
// shows although the program is not our child.
//
// What follows runs between fork and exec. It makes only calls that are safe there and takes no
// memory, since another thread may have held the lock of the heap.

/// The descriptor by which the watching process reports.
constexpr int kReport = 3;

void GiveUpStandardStreams() {
  const int nothing = ::open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    ::dup2(nothing, stream);
  }
}

[[noreturn]] void Exec(const char* program, char* const* arguments) {
  GiveUpStandardStreams();
  ::close_range(kReport, ~0U, 0);
  sigset_t none{};
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::execv(program, arguments);
  ::_exit(127);
}

/// The watching process: starts the program, waits for its end and reports how it ended.
[[noreturn]] void Watch(const char* program, char* const* arguments, int report) {
  ::setsid();
  const pid_t child = ::fork();
  if (child == 0) {
    Exec(program, arguments);
  }
  ::dup2(report, kReport);
  ::close_range(kReport + 1, ~0U, 0);
  // A program that reads the standard streams from us must not wait for this process.
  GiveUpStandardStreams();
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

// Here it ends.

/// Waits until something can be read, but no longer than to `end`. Returns whether it can.
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

void AwaitEnd(pid_t child) {
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

/// Reads the report of the watching process. Returns whether it says that all is well.
bool ReadReport(int descriptor) {
  char report = '0';
  ssize_t length = -1;
  do {
    length = ::read(descriptor, &report, 1);
  } while (length < 0 && errno == EINTR);
  return length == 1 && report == '1';
}

}  // namespace

Environment ReadEnvironment() {
  std::string path = GetVariable("PATH");
  if (path.empty()) {
    path = "/usr/local/bin:/usr/bin:/bin";
  }
  return {SplitFolders(path), FindDataFolders(), FindLanguages(), GetVariable("BROWSER")};
}

std::optional<std::string> FindProgram(const Environment& environment, const std::string& name) {
  const auto canRun = [](const std::string& path) {
    struct stat found {};
    return ::stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
  };
  if (name.find('/') != std::string::npos) {
    return canRun(name) ? std::optional(name) : std::nullopt;
  }
  for (const std::string& folder : environment.programFolders) {
    std::string path = folder + "/" + name;
    if (!name.empty() && canRun(path)) {
      return path;
    }
  }
  return std::nullopt;
}

platform::Result<void, StartError> StartDetached(const Environment& environment,
                                                 const Command& command, milliseconds patience) {
  const auto program = command.empty() ? std::nullopt : FindProgram(environment, command.front());
  if (!program) {
    return platform::Failure(StartError::kNoProgram);
  }
  auto pipe = Pipe::Make();
  if (!pipe) {
    return platform::Failure(StartError::kFailed);
  }
  Command copy = command;  // exec takes texts that it may change.
  const std::vector<char*> arguments = PointersOf(copy);
  const pid_t between = ::fork();
  if (between < 0) {
    return platform::Failure(StartError::kFailed);
  }
  if (between == 0) {
    if (::fork() == 0) {
      Watch(program->c_str(), arguments.data(), pipe->write.Get());
    }
    ::_exit(0);
  }
  pipe->write.Close();
  AwaitEnd(between);
  if (AwaitInput(pipe->read.Get(), steady_clock::now() + patience) &&
      !ReadReport(pipe->read.Get())) {
    return platform::Failure(StartError::kFailed);
  }
  return {};
}

}  // namespace desktop

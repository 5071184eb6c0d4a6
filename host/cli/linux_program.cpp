#include "host/cli/linux_program.h"

#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>

namespace cli {
namespace {

/// Called if memory runs out and nothing can catch it: in a thread, in a destructor, or before
/// `main`. What was written until then is as after a kill, which every command allows for.
[[noreturn]] void EndWithoutMemory() {
  try {
    // Thrown again only to see what it is. Anything but a lack of memory is a fault of the program
    // and ends as such.
    if (std::current_exception()) {
      throw;
    }
  } catch (const std::bad_alloc&) {
    PrintOutOfMemory();
    ::_exit(kFailed);
  } catch (...) {
  }
  std::abort();
}

/// The sound server's library writes a message and raises SIGQUIT if memory runs out. A SIGQUIT
/// from anywhere else, as from a terminal, ends the process as it always does.
void EndByLibrary(int signal, siginfo_t* info, void* /*context*/) {
  if (info->si_code == SI_TKILL && info->si_pid == ::getpid()) {
    ::_exit(kFailed);
  }
  static_cast<void>(std::signal(signal, SIG_DFL));
  static_cast<void>(std::raise(signal));
}

void WatchForEndByLibrary() {
  struct sigaction action {};
  action.sa_sigaction = EndByLibrary;
  action.sa_flags = SA_SIGINFO;
  ::sigaction(SIGQUIT, &action, nullptr);
}

struct TerminateHandler {
  TerminateHandler() noexcept { std::set_terminate(EndWithoutMemory); }
};

/// Made before the texts of libraries.
constexpr int kFirstPriority = 101;
[[gnu::init_priority(kFirstPriority)]] const TerminateHandler kHandler;

}  // namespace

int RunProgram(int argc, const char* const* argv, CommandLine run) {
  // Before anything opens a file.
  ReserveStandardStreams();
  WatchForEndByLibrary();
  // Only the character set, so that pictures fit the terminal; numbers keep their decimal point.
  std::setlocale(LC_CTYPE, "");
  return RunGuarded(argc, argv, run);
}

}  // namespace cli

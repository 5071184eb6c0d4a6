#include "tests/host/dial/terminal_job.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace {

constexpr char kStopped = 'S';
constexpr char kEnded = 'E';
constexpr int kOrders = 100;  ///< Descriptors of the shell.
constexpr int kReports = 101;

void Report(char what, int value) {
  static_cast<void>(::write(kReports, &what, 1));
  static_cast<void>(::write(kReports, &value, sizeof value));
}

/// Runs in the child that has the terminal.
[[noreturn]] void BeShell(std::vector<char*>& arguments) {
  static_cast<void>(std::signal(SIGTTOU, SIG_IGN));
  const pid_t program = ::fork();
  if (program == 0) {
    ::setpgid(0, 0);
    ::tcsetpgrp(STDIN_FILENO, ::getpid());
    static_cast<void>(std::signal(SIGTTOU, SIG_DFL));
    // Tests that a script began in the background ignore Ctrl+C, and a program inherits that.
    static_cast<void>(std::signal(SIGINT, SIG_DFL));
    ::close(kOrders);
    ::close(kReports);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  ::setpgid(program, program);
  ::tcsetpgrp(STDIN_FILENO, program);
  static_cast<void>(::write(kReports, &program, sizeof program));
  int status = 0;
  while (::waitpid(program, &status, WUNTRACED) == program && WIFSTOPPED(status)) {
    ::tcsetpgrp(STDIN_FILENO, ::getpid());
    Report(kStopped, WSTOPSIG(status));
    char order = 0;
    static_cast<void>(::read(kOrders, &order, 1));
    ::tcsetpgrp(STDIN_FILENO, program);
    ::kill(program, SIGCONT);
  }
  Report(kEnded, WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
  // The modes can be looked at until the test is done.
  char order = 0;
  static_cast<void>(::read(kOrders, &order, 1));
  ::_exit(0);
}

bool HasInput(int descriptor, int milliseconds) {
  pollfd input{.fd = descriptor, .events = POLLIN, .revents = 0};
  return ::poll(&input, 1, milliseconds) > 0 && (input.revents & POLLIN) != 0;
}

}  // namespace

TerminalJob::TerminalJob(const std::vector<std::string>& arguments,
                         const std::vector<std::string>& environment) {
  std::vector<std::string> words{"/usr/bin/env"};
  words.insert(words.end(), environment.begin(), environment.end());
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  std::array<int, 2> orders{};
  std::array<int, 2> reports{};
  if (::pipe2(orders.data(), O_CLOEXEC) != 0 || ::pipe2(reports.data(), O_CLOEXEC) != 0) {
    return;
  }
  m_shell = ::forkpty(&m_terminal, nullptr, nullptr, nullptr);
  if (m_shell == 0) {
    ::dup2(orders[0], kOrders);
    ::dup2(reports[1], kReports);
    ::close(orders[1]);
    BeShell(pointers);
  }
  ::close(orders[0]);
  ::close(reports[1]);
  m_orders = orders[1];
  m_reports = reports[0];
  if (HasInput(m_reports, kLimit)) {
    static_cast<void>(::read(m_reports, &m_program, sizeof m_program));
  }
}

TerminalJob::~TerminalJob() {
  if (m_program > 0) {
    ::kill(m_program, SIGKILL);
  }
  ::close(m_orders);
  ::close(m_reports);
  if (m_shell > 0) {
    ::kill(m_shell, SIGKILL);
    ::waitpid(m_shell, nullptr, 0);
  }
  ::close(m_terminal);
}

bool TerminalJob::ReadMore(int limit) {
  std::array<char, 4096> buffer{};
  if (!HasInput(m_terminal, limit)) {
    return false;
  }
  const ssize_t count = ::read(m_terminal, buffer.data(), buffer.size());
  if (count > 0) {
    m_shown.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return count > 0;
}

bool TerminalJob::Shows(std::string_view text, int limit) {
  for (;;) {
    const std::size_t place = m_shown.find(text, m_found);
    if (place != std::string::npos) {
      m_found = place + text.size();
      return true;
    }
    if (!ReadMore(limit)) {
      return false;
    }
  }
}

void TerminalJob::Type(std::string_view keys) const {
  static_cast<void>(::write(m_terminal, keys.data(), keys.size()));
}

void TerminalJob::Signal(int signal) const { ::kill(m_program, signal); }

bool TerminalJob::Reports(char report) {
  char what = 0;
  return HasInput(m_reports, kLimit) && ::read(m_reports, &what, 1) == 1 && what == report;
}

bool TerminalJob::Stops() {
  int signal = 0;
  return Reports(kStopped) && ::read(m_reports, &signal, sizeof signal) == sizeof signal;
}

void TerminalJob::BringBack() const { static_cast<void>(::write(m_orders, "c", 1)); }

int TerminalJob::End() {
  int exitCode = -1;
  if (!Reports(kEnded) || ::read(m_reports, &exitCode, sizeof exitCode) != sizeof exitCode) {
    return -1;
  }
  m_program = -1;
  while (HasInput(m_terminal, 0) && ReadMore(0)) {
  }
  return exitCode;
}

termios TerminalJob::GetModes() const {
  termios modes{};
  ::tcgetattr(m_terminal, &modes);
  return modes;
}

bool TerminalJob::AwaitsKeys() const {
  constexpr int kLook = 10;
  for (int waited = 0; waited < kLimit; waited += kLook) {
    if ((GetModes().c_lflag & (ICANON | ECHO)) == 0) {
      return true;
    }
    ::poll(nullptr, 0, kLook);
  }
  return false;
}

bool TerminalJob::IsUsual() const {
  return (GetModes().c_lflag & (ICANON | ECHO)) == (ICANON | ECHO);
}

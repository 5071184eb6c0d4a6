#pragma once

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <string_view>
#include <vector>

/// A program in the foreground of a terminal of its own, under a shell that does as shells do: it
/// notices when the job stops and brings it back when it is asked to. No wait is without a limit.
class TerminalJob {
 public:
  /// `environment` ("NAME=value") is added to that of the test.
  TerminalJob(const std::vector<std::string>& arguments,
              const std::vector<std::string>& environment);
  TerminalJob(const TerminalJob&) = delete;
  TerminalJob& operator=(const TerminalJob&) = delete;
  ~TerminalJob();

  static constexpr int kLimit = 60'000;  ///< Milliseconds. Far more than a busy machine needs.

  /// Returns whether the terminal shows `text`, after what was found before, and does not stand
  /// still for `limit` milliseconds until then.
  [[nodiscard]] bool Shows(std::string_view text, int limit = kLimit);
  void Type(std::string_view keys) const;
  /// Sends a signal to the program.
  void Signal(int signal) const;
  /// Returns whether the program stops. The shell then has the terminal.
  [[nodiscard]] bool Stops();
  /// Brings the program back to the foreground.
  void BringBack() const;
  /// Returns the exit code of the program, or 128 and the number of the signal that ended it.
  /// Returns -1 if it does not end.
  [[nodiscard]] int End();

  /// Returns whether keys come one by one and are not shown, now or soon.
  [[nodiscard]] bool AwaitsKeys() const;
  /// Returns whether keys come in lines and are shown.
  [[nodiscard]] bool IsUsual() const;
  /// Returns all that the terminal has shown.
  [[nodiscard]] const std::string& GetShown() const { return m_shown; }

 private:
  [[nodiscard]] termios GetModes() const;
  /// Returns whether the shell reports `report`.
  [[nodiscard]] bool Reports(char report);
  /// Reads what the terminal shows. Returns false if nothing comes in all that time.
  bool ReadMore(int limit);

  int m_terminal = -1;
  int m_orders = -1;   ///< To the shell.
  int m_reports = -1;  ///< From it: the program's number first.
  pid_t m_shell = -1;
  pid_t m_program = -1;
  std::string m_shown;
  std::size_t m_found = 0;  ///< What comes before this was found.
};

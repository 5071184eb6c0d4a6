#pragma once

#include <string_view>

namespace platform {

/// Starts other programs for the user: the help viewer and the browser. The command lines are those
/// of the device. The back end knows which programs this machine has for them.
///
/// Both calls return at once. If a program cannot be started, the back end reports that to the
/// user. The caller does not learn of it and adds nothing.
class Shell {
 public:
  Shell() = default;
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;
  virtual ~Shell() = default;

  /// Starts `program` with `commandLine`.
  virtual void StartProgram(std::u16string_view program, std::u16string_view commandLine) = 0;

  /// Does `verb`, such as "open", with `file` and gives it `parameters`. Its window is shown in its
  /// normal size.
  virtual void Execute(std::u16string_view verb, std::u16string_view file,
                       std::u16string_view parameters) = 0;
};

}  // namespace platform

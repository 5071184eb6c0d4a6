#pragma once

#include <string_view>

namespace platform {

/// Starts other programs for the user: the help viewer and the browser. Which programs those are on
/// this machine is for the back end to know; the command lines are those of the device.
///
/// Both return at once. A back end that cannot do what is asked reports that to the user. The
/// caller has nothing to add and learns nothing.
class Shell {
 public:
  Shell() = default;
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;
  virtual ~Shell() = default;

  /// Starts `program` with `commandLine`.
  virtual void StartProgram(std::u16string_view program, std::u16string_view commandLine) = 0;

  /// Has `file` do `verb` with `parameters`, shown normally.
  virtual void Execute(std::u16string_view verb, std::u16string_view file,
                       std::u16string_view parameters) = 0;
};

}  // namespace platform

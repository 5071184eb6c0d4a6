#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "backends/desktop/environment.h"
#include "backends/desktop/programs.h"

namespace xdg {

/// What a desktop entry has to say about starting its program.
struct DesktopEntry {
  std::string exec;
  bool needsTerminal = false;
};

/// The main group of a desktop file; nothing where it has no command.
[[nodiscard]] std::optional<DesktopEntry> ParseDesktopEntry(std::string_view file);

/// The desktop file of that name among the applications of the data folders; also one whose name's
/// dashes are folders.
[[nodiscard]] std::optional<DesktopEntry> FindDesktopEntry(const Environment& environment,
                                                           const std::string& name);

/// The command that opens `url`, by the rules for quotes and field codes of the Exec key. The URL
/// is one argument whatever it holds; it comes last where the entry has no place for it. Empty
/// where the key breaks the rules.
[[nodiscard]] Command MakeCommand(const DesktopEntry& entry, const std::string& url);

}  // namespace xdg

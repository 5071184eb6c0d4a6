#pragma once

#include <CLI/App.hpp>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host/cli/session.h"

namespace cli {

// Each adds its commands to the command line. They run after the line was parsed, with the options
// that `session` has by then. What a command throws is a wrong usage (CLI::ParseError).

void AddBackupCommands(CLI::App& app, Session& session);
void AddConnectionCommands(CLI::App& app, Session& session);
void AddContactsCommands(CLI::App& app, Session& session);
void AddDialCommand(CLI::App& app, Session& session);
void AddLanguageCommands(CLI::App& app, Session& session);
void AddMaintenanceCommands(CLI::App& app, Session& session);
void AddMicrophoneCommands(CLI::App& app, Session& session);
void AddRegistryCommands(CLI::App& app, Session& session);
void AddStatusCommands(CLI::App& app, Session& session);
void AddTagsCommands(CLI::App& app, Session& session);
void AddTemplateCommands(CLI::App& app, Session& session);
void AddWaveCommands(CLI::App& app, Session& session);
void AddWindowCommands(CLI::App& app, Session& session);

/// Commands that are added together.
struct CommandGroup {
  std::vector<std::string_view> names;
  void (*add)(CLI::App& app, Session& session);
};

/// All of them, in the order of the help.
extern const std::array<CommandGroup, 13> kCommandGroups;

// Parts of a group of commands that have files of their own.

/// language list. With --json: {"languages":["en",...],"used"}, which is null if it is a file of
/// the user's own. language use. With --json: {"used","kept"}. "kept" is the copy of a file of the
/// user's own.
void AddLanguageChoice(CLI::App& group, Session& session);
/// template learn|process
void AddTemplateMakers(CLI::App& group, Session& session);
/// tags test. With --json: {"lines":[TEXT,...],"pairs":[{"tag","neighbour","score","distance",
/// "confusions"},...]}. "beyond" is there if a test leaves tags out, since it takes 100, and says
/// how many.
void AddTagsTestCommand(CLI::App& group, Session& session);
/// tags trash|restore
void AddTrashCommands(CLI::App& tags, Session& session);

/// check. Prints what is wrong with the voice tags. The exit code is 1 if anything is. The settings
/// stay as they are, even if it reads another address book than the last one. With `isRepair`,
/// templates are computed again from the kept recordings if that helps.
void CheckTags(Session& session, bool isRepair);

/// Runs the window of the connection settings, and returns when it is closed. Reports it if there
/// is no screen or the window cannot be shown. Calls `prepare` before the window opens, and opens
/// none if that returns false.
void RunConnectionWindow(Session& session, bool (*prepare)(Session& session));

/// Returns the options in front of the command in the form in which other programs of the system
/// take them.
[[nodiscard]] std::vector<std::string> VariablesOf(const Session& session);

/// Finishes or undoes what a killed command left, and empties the trash of what is too old, as the
/// page does when it opens. For commands that need no page: if a window has the tags, it has done
/// so, and nothing happens.
void TidyTrash(Session& session);

}  // namespace cli

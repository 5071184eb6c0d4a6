#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/session/session.h"
#include "storage/backup.h"
#include "storage/restore.h"

namespace session {

/// A file of this machine, and what messages call it.
struct NamedFile {
  std::string path;
  std::string name;
};

/// Writes everything that was taught into one file. Asks the outlet before it replaces a file that
/// is no backup. Reports why there is no backup, and then returns nothing.
[[nodiscard]] std::optional<storage::BackupMade> MakeBackup(Session& session,
                                                            const NamedFile& file);

/// What a restoration brought.
struct RestoredBackup {
  std::vector<std::u16string> tags;  ///< Names, in the order of `outcome.tags`.
  storage::RestoreOutcome outcome;
  bool hasContacts = false;  ///< The choice of the address book and the contacts' numbers came too.

  /// Returns whether all of the backup is here now.
  [[nodiscard]] bool IsComplete() const;
};

/// What is here in another form than in a backup.
struct Differences {
  std::vector<std::u16string> tags;  ///< As the list shows them, or their names.
  bool connection = false;
  bool languageFile = false;
};

/// Decides whether what is here in another form is replaced. Called only if there is any, with the
/// tags held, before anything is changed.
using AgreeToReplace = std::function<bool(const Differences& differences)>;

/// Puts what a backup holds into the store. What is here already stays, unless `agree` lets it be
/// replaced; then it goes to the trash first. A file that is no whole backup changes nothing.
///
/// Reports why nothing was restored, and then returns nothing. What became of each part is reported
/// by the caller.
[[nodiscard]] std::optional<RestoredBackup> RestoreBackup(Session& session, const NamedFile& file,
                                                          const AgreeToReplace& agree);

}  // namespace session

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/result.h"
#include "storage/backup_archive.h"
#include "storage/store_contents.h"
#include "storage/tag_trash.h"

namespace storage {

/// How a part of a backup compares with what is here.
enum class RestoreState : std::uint8_t {
  kNew,
  kSame,
  kDifferent,         ///< Something else is here under the same name.
  kContactElsewhere,  ///< Of tags: the contact is in no address book that is used here.
};

struct PlannedTag {
  std::size_t index = 0;  ///< Of the tag in the backup.
  RestoreState state = RestoreState::kNew;
  std::vector<RegistryChange> entry;  ///< With the contact's number as it is here.
  TagParts here;
};

/// What a restoration would do. Nothing for a part that the backup does not have.
struct RestorePlan {
  std::vector<PlannedTag> tags;
  std::optional<RestoreState> connection;
  std::optional<RestoreState> languageFile;
};

/// Returns the number that a contact of the backup has here. Returns nothing if it has none.
using ContactHere = std::function<std::optional<std::int32_t>(std::int32_t)>;

/// Compares a backup with the store, and changes nothing. The error is the name of the tag that
/// cannot be read now. It is empty if something else cannot be read.
[[nodiscard]] platform::Result<RestorePlan, std::u16string> PlanRestore(
    platform::FileSystem& files, platform::Registry& registry, platform::File& archive,
    const BackupContents& backup, const ContactHere& contactHere);

/// What became of a part of a backup.
enum class RestoreFate : std::uint8_t {
  kSame,      ///< It was here already.
  kRestored,  ///< It was missing.
  kReplaced,  ///< Something else was here, and is in the trash now.
  kKept,      ///< Something else is here, and stays.
  kContactElsewhere,
  kTooMany,  ///< There are as many tags as there may be.
  kInUse,    ///< Another program has a file open.
  kFull,     ///< The disk is full.
  kFailed,
};

struct RestoreOutcome {
  std::vector<RestoreFate> tags;  ///< One for each tag of the backup.
  std::optional<RestoreFate> connection;
  std::optional<RestoreFate> languageFile;
  /// The file in the trash that holds what was replaced of settings and texts: a backup without
  /// tags. Empty if nothing was.
  std::u16string saved;
};

/// Whether what is here in another form gives way.
enum class Replacing : std::uint8_t { kNo, kYes };

/// Puts what a backup holds into the store. What is the same stays. With Replacing::kYes, whatever
/// is replaced goes to the trash first. Each tag comes whole or not at all: its files, then its
/// entry, each on the medium before the next. If a tag cannot be replaced, it comes back out of the
/// trash.
///
/// A caller holds the mutex of the Learning page. `getText` returns what the list shows for a tag
/// that goes to the trash.
[[nodiscard]] RestoreOutcome Restore(
    platform::FileSystem& files, platform::Registry& registry, platform::Clock& clock,
    platform::File& archive, const BackupContents& backup, const RestorePlan& plan,
    Replacing replacing, const std::function<std::u16string(std::u16string_view)>& getText);

}  // namespace storage

#include "storage/restore.h"

#include <algorithm>
#include <utility>

#include "storage/backup.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/restore_tags.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"

// Restores by a plan. The order is: folders, version of the mathematics, tags, settings. Each step
// leaves a store that is whole, so a kill between two of them costs at most the steps that follow.
namespace storage {

using platform::AcceptMissing;
using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

using Version = std::optional<std::int32_t>;

/// Returns the number of the version of the mathematics. It is nothing if there is none.
Result<Version, RegistryError> VersionHere(platform::Registry& registry) {
  const platform::OpenedKey key = registry.OpenKey(kSetupKey);
  const auto value = key ? (*key)->Query(kMathVersionValue) : Failure(key.error());
  if (!value && value.error() != RegistryError::kNotFound) {
    return Failure(value.error());
  }
  return value ? ParseOid(TextOfValue(*value)) : Version();
}

Version VersionIn(const BackupContents& backup) {
  const auto settings = backup.settings.find(BackupSettings::kMathematics);
  if (settings == backup.settings.end()) {
    return std::nullopt;
  }
  const auto value = std::ranges::find_if(settings->second, [](const RegistryChange& change) {
    return change.valueName == kMathVersionValue && change.key == kSetupKey;
  });
  return value == settings->second.end() ? std::nullopt : ParseOid(TextOfValue(value->value));
}

// Templates of other mathematics must be computed again, which the page does if the version here is
// another one or missing. The version changes before the first template comes: after a kill the
// page then does too much, and never too little.
[[nodiscard]] bool AdoptMathematics(const RestoreParts& parts) {
  const bool bringsTags = std::ranges::any_of(parts.plan.tags, [](const PlannedTag& tag) {
    return tag.state == RestoreState::kNew || tag.state == RestoreState::kDifferent;
  });
  const auto here = VersionHere(parts.registry);
  const auto names = TagStore(parts.files, parts.registry).ListNames();
  if (!here || !names) {
    return false;
  }
  if (!bringsTags || *here == VersionIn(parts.backup)) {
    return true;
  }
  // An empty store simply takes the version of the backup. A store with tags, some of which have
  // another version's templates now, forgets its version, so that all are computed again.
  const bool isNewStore = !*here && names->names.empty();
  if (isNewStore) {
    return PutSettings(parts.registry, parts.backup.settings.at(BackupSettings::kMathematics))
        .has_value();
  }
  const platform::OpenedKey key = parts.registry.CreateKey(kSetupKey);
  return key && AcceptMissing((*key)->DeleteValue(kMathVersionValue));
}

/// Copies the settings and the language file into the trash. Returns the copy's path.
Result<std::u16string, RestoreFate> SaveSettings(const RestoreParts& parts,
                                                 platform::Clock& clock) {
  const auto stamp = parts.trash.MakeStamp(clock.GetUnixTime());
  if (!stamp) {
    return Failure(FateOf(stamp.error()));
  }
  std::u16string path = InTrash(*stamp + std::u16string(kSavedEnd));
  const auto made = WriteBackup(parts.files, parts.registry, clock, path, BackupScope::kSettings);
  if (!made) {
    return Failure(FateOf(made.error().file));
  }
  return path;
}

/// Puts the settings of the connection and the language file in their places.
void RestoreOthers(const RestoreParts& parts, platform::Clock& clock, Replacing replacing,
                   RestoreOutcome& outcome) {
  const bool replaces = replacing == Replacing::kYes;
  const bool isAnyDifferent = parts.plan.connection == RestoreState::kDifferent ||
                              parts.plan.languageFile == RestoreState::kDifferent;
  const auto saved = replaces && isAnyDifferent ? SaveSettings(parts, clock) : std::u16string();
  // What is about to be replaced is saved first, and nothing is replaced if that fails.
  outcome.saved = saved.value_or(std::u16string());
  const auto put = [&](const std::optional<RestoreState>& state,
                       auto putIt) -> std::optional<RestoreFate> {
    if (!state || *state == RestoreState::kSame) {
      return state ? std::optional(RestoreFate::kSame) : std::nullopt;
    }
    const bool isDifferent = *state == RestoreState::kDifferent;
    if (isDifferent && !replaces) {
      return RestoreFate::kKept;
    }
    if (const Put done = isDifferent && !saved ? Failure(saved.error()) : putIt(); !done) {
      return done.error();
    }
    return isDifferent ? RestoreFate::kReplaced : RestoreFate::kRestored;
  };
  outcome.connection = put(parts.plan.connection, [&parts] {
    return PutSettings(parts.registry, parts.backup.settings.at(BackupSettings::kConnection));
  });
  outcome.languageFile = put(parts.plan.languageFile, [&parts] {
    return PutFile(parts, kLanguageFile, parts.backup.languageFile);
  });
}

}  // namespace

RestoreOutcome Restore(platform::FileSystem& files, platform::Registry& registry,
                       platform::Clock& clock, platform::File& archive,
                       const BackupContents& backup, const RestorePlan& plan, Replacing replacing,
                       const std::function<std::u16string(std::u16string_view)>& getText) {
  const RestoreParts parts{files,  registry, archive,
                           backup, plan,     TagTrash(files, registry, clock)};
  RestoreOutcome outcome;
  // Neither changes a tag, so after a failure the store is what it was.
  if (!CreateStoreFolders(files) || !AdoptMathematics(parts)) {
    outcome.tags.resize(plan.tags.size(), RestoreFate::kFailed);
    if (plan.connection) {
      outcome.connection = RestoreFate::kFailed;
    }
    if (plan.languageFile) {
      outcome.languageFile = RestoreFate::kFailed;
    }
    return outcome;
  }
  // The tags come first: they are what the user wants back, and the disk may be nearly full.
  outcome.tags = RestoreTags(parts, replacing, getText);
  RestoreOthers(parts, clock, replacing, outcome);
  return outcome;
}

}  // namespace storage

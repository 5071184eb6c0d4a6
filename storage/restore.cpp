#include "storage/restore.h"

#include <algorithm>
#include <utility>

#include "storage/backup.h"
#include "storage/deletion.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"

namespace storage {

using platform::AcceptMissing;
using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

namespace {

using Put = Result<void, RestoreFate>;

RestoreFate FateOf(FileError error) {
  switch (error) {
    case FileError::kDiskFull:
      return RestoreFate::kFull;
    case FileError::kSharingViolation:
      return RestoreFate::kInUse;
    default:
      return RestoreFate::kFailed;
  }
}

RestoreFate FateOf(ItemError error) {
  switch (error) {
    case ItemError::kRecordingInUse:
    case ItemError::kTemplateInUse:
      return RestoreFate::kInUse;
    case ItemError::kFull:
      return RestoreFate::kFull;
    case ItemError::kStoreUnread:
    case ItemError::kOther:
      break;
  }
  return RestoreFate::kFailed;
}

Put PutSettings(platform::Registry& registry, std::span<const RegistryChange> changes) {
  return ApplyRegistryChanges(registry, changes).map_error([](const RegistryFileError& error) {
    return error.store == RegistryError::kFull ? RestoreFate::kFull : RestoreFate::kFailed;
  });
}

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

class Restoration {
 public:
  Restoration(platform::FileSystem& files, platform::Registry& registry, platform::Clock& clock,
              platform::File& archive, const BackupContents& backup, const RestorePlan& plan)
      : m_files(files),
        m_registry(registry),
        m_clock(clock),
        m_archive(archive),
        m_backup(backup),
        m_plan(plan),
        m_trash(files, registry, clock) {}

  RestoreOutcome Run(Replacing replacing,
                     const std::function<std::u16string(std::u16string_view)>& getText) {
    m_outcome.tags.resize(m_plan.tags.size(), RestoreFate::kFailed);
    if (!CreateStoreFolders(m_files) || !AdoptMathematics()) {
      FailAll();
      return std::move(m_outcome);
    }
    const bool replaces = replacing == Replacing::kYes;
    const std::vector<bool> isCleared =
        replaces ? ClearTags(getText) : std::vector<bool>(m_plan.tags.size());
    const auto note = NoteTags(isCleared);
    for (std::size_t i = 0; i < m_plan.tags.size(); ++i) {
      PutTag(i, isCleared[i], replaces, note);
    }
    if (note && !note->empty()) {
      m_trash.EndRestoring(*note);
    }
    PutOthers(replaces);
    return std::move(m_outcome);
  }

 private:
  void FailAll() {
    const auto fail = [](auto& fate, const auto& state) {
      fate = state ? std::optional(RestoreFate::kFailed) : std::nullopt;
    };
    fail(m_outcome.connection, m_plan.connection);
    fail(m_outcome.languageFile, m_plan.languageFile);
  }

  // Templates of other mathematics must be computed again, which the page does if the version here
  // is another one or missing. The version changes before the first template comes: after a kill
  // the page then does too much, and never too little.
  [[nodiscard]] bool AdoptMathematics() {
    const bool bringsTags = std::ranges::any_of(m_plan.tags, [](const PlannedTag& tag) {
      return tag.state == RestoreState::kNew || tag.state == RestoreState::kDifferent;
    });
    const auto here = VersionHere(m_registry);
    const auto names = TagStore(m_files, m_registry).ListNames();
    if (!here || !names) {
      return false;
    }
    if (!bringsTags || *here == VersionIn(m_backup)) {
      return true;
    }
    const bool isNewStore = !*here && names->names.empty();
    if (isNewStore) {
      return PutSettings(m_registry, m_backup.settings.at(BackupSettings::kMathematics))
          .has_value();
    }
    const platform::OpenedKey key = m_registry.CreateKey(kSetupKey);
    return key && AcceptMissing((*key)->DeleteValue(kMathVersionValue));
  }

  /// Moves the tags that are to be replaced into the trash, in one deletion. Returns for each tag
  /// whether it is out of the way. The deletion ends before a new tag comes: it must not take the
  /// new one for the old.
  std::vector<bool> ClearTags(const std::function<std::u16string(std::u16string_view)>& getText) {
    std::vector<bool> isCleared(m_plan.tags.size());
    Deletion deletion(m_trash, DeletionReason::kReplace);
    for (std::size_t i = 0; i < m_plan.tags.size(); ++i) {
      const PlannedTag& tag = m_plan.tags[i];
      if (tag.state != RestoreState::kDifferent) {
        continue;
      }
      const auto kept = deletion.Keep(tag.here, getText(tag.here.name));
      isCleared[i] = kept.has_value();
      m_outcome.tags[i] = kept ? RestoreFate::kReplaced : FateOf(kept.error());
    }
    const bool isSealed = deletion.Seal().has_value();
    for (std::size_t i = 0; i < m_plan.tags.size(); ++i) {
      if (isCleared[i] && !(isSealed && m_trash.DeleteParts(m_plan.tags[i].here))) {
        isCleared[i] = false;
        m_outcome.tags[i] = isSealed ? RestoreFate::kInUse : RestoreFate::kFailed;
      }
    }
    // A mark that a loss of power brings back would end the deletion again, with the new tag there.
    const bool isAnyCleared = std::ranges::find(isCleared, true) != isCleared.end();
    const auto isOver = [&] {
      return deletion.End() && m_files.FlushFolder(kTrashFolder).has_value();
    };
    if (isAnyCleared && !isOver()) {
      for (std::size_t i = 0; i < m_plan.tags.size(); ++i) {
        if (isCleared[i]) {
          isCleared[i] = false;
          m_outcome.tags[i] = RestoreFate::kFailed;
          BringBack(m_plan.tags[i].here.name);
        }
      }
    }
    return isCleared;
  }

  using Note = Result<std::u16string, FileError>;

  /// Returns the note about all tags that come. A kill then leaves no part of one. It is empty if
  /// none comes.
  [[nodiscard]] Note NoteTags(const std::vector<bool>& isCleared) {
    std::vector<TagParts> coming;
    for (std::size_t i = 0; i < m_plan.tags.size(); ++i) {
      const BackupTag& tag = m_backup.tags[m_plan.tags[i].index];
      if (isCleared[i] || m_plan.tags[i].state == RestoreState::kNew) {
        coming.push_back(
            {tag.name, tag.recording ? tag.name + std::u16string(kWaveExtension) : std::u16string(),
             tag.voiceTemplate ? tag.name + std::u16string(kTemplateExtension) : std::u16string(),
             true});
      }
    }
    return coming.empty() ? Note() : m_trash.BeginRestoring(coming);
  }

  void PutTag(std::size_t i, bool isCleared, bool replaces, const Note& note) {
    const PlannedTag& planned = m_plan.tags[i];
    RestoreFate& fate = m_outcome.tags[i];
    switch (planned.state) {
      case RestoreState::kSame:
        fate = RestoreFate::kSame;
        return;
      case RestoreState::kContactElsewhere:
        fate = RestoreFate::kContactElsewhere;
        return;
      case RestoreState::kDifferent:
        if (!replaces) {
          fate = RestoreFate::kKept;
        }
        if (!isCleared) {
          return;
        }
        break;
      case RestoreState::kNew:
        break;
    }
    const Put put = !note       ? Failure(FateOf(note.error()))
                    : HasRoom() ? PutParts(planned)
                                : Failure(RestoreFate::kTooMany);
    if (put) {
      fate = isCleared ? RestoreFate::kReplaced : RestoreFate::kRestored;
      return;
    }
    fate = put.error();
    if (isCleared) {
      BringBack(planned.here.name);
    }
  }

  [[nodiscard]] bool HasRoom() {
    const auto list = TagStore(m_files, m_registry).ListNames();
    return list && list->names.size() < static_cast<std::size_t>(kMaxTags);
  }

  Put PutParts(const PlannedTag& planned) {
    const BackupTag& tag = m_backup.tags[planned.index];
    return PutFile(WavePath(tag.name), tag.recording)
        .and_then([&] { return PutFile(TemplatePath(tag.name), tag.voiceTemplate); })
        .and_then([&] { return PutSettings(m_registry, planned.entry); });
  }

  Put PutFile(const std::u16string& path, const std::optional<BackupMember>& member) {
    if (!member) {
      return {};
    }
    const auto target = m_files.OpenReplacement(path);
    if (!target) {
      return Failure(FateOf(target.error()));
    }
    const auto copied = CopyMember(m_archive, *member, (*target)->GetFile());
    return (copied ? (*target)->Publish(platform::Durability::kNow) : copied)
        .map_error([](FileError error) { return FateOf(error); });
  }

  /// If that fails, the tag stays in the trash.
  void BringBack(std::u16string_view name) {
    const TagStore store(m_files, m_registry);
    static_cast<void>(store.Delete(name));
    const auto trashed = m_trash.List();
    if (!trashed) {
      return;
    }
    const auto latest = std::ranges::find_if(
        *trashed, [name](const TrashedTag& tag) { return tag.item.parts.name == name; });
    if (latest != trashed->end()) {
      static_cast<void>(m_trash.Restore(*latest));
    }
  }

  void PutOthers(bool replaces) {
    const bool isAnyDifferent = m_plan.connection == RestoreState::kDifferent ||
                                m_plan.languageFile == RestoreState::kDifferent;
    const Put saved = replaces && isAnyDifferent ? SaveSettings() : Put();
    const auto put = [&](const std::optional<RestoreState>& state, auto putIt) {
      if (!state || *state == RestoreState::kSame) {
        return state ? std::optional(RestoreFate::kSame) : std::nullopt;
      }
      const bool isDifferent = *state == RestoreState::kDifferent;
      if (isDifferent && !replaces) {
        return std::optional(RestoreFate::kKept);
      }
      const Put done = isDifferent && !saved ? saved : putIt();
      return std::optional(!done         ? done.error()
                           : isDifferent ? RestoreFate::kReplaced
                                         : RestoreFate::kRestored);
    };
    m_outcome.connection = put(m_plan.connection, [this] {
      return PutSettings(m_registry, m_backup.settings.at(BackupSettings::kConnection));
    });
    m_outcome.languageFile = put(m_plan.languageFile, [this] {
      return PutFile(std::u16string(kLanguageFile), m_backup.languageFile);
    });
  }

  /// Copies the settings and the language file into the trash.
  Put SaveSettings() {
    const auto stamp = m_trash.MakeStamp(m_clock.GetUnixTime());
    if (!stamp) {
      return Failure(FateOf(stamp.error()));
    }
    const std::u16string path = InTrash(*stamp + std::u16string(kSavedEnd));
    const auto made = WriteBackup(m_files, m_registry, m_clock, path, BackupScope::kSettings);
    if (!made) {
      return Failure(FateOf(made.error().file));
    }
    m_outcome.saved = path;
    return {};
  }

  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  platform::Clock& m_clock;
  platform::File& m_archive;
  const BackupContents& m_backup;
  const RestorePlan& m_plan;
  const TagTrash m_trash;
  RestoreOutcome m_outcome;
};

}  // namespace

RestoreOutcome Restore(platform::FileSystem& files, platform::Registry& registry,
                       platform::Clock& clock, platform::File& archive,
                       const BackupContents& backup, const RestorePlan& plan, Replacing replacing,
                       const std::function<std::u16string(std::u16string_view)>& getText) {
  return Restoration(files, registry, clock, archive, backup, plan).Run(replacing, getText);
}

}  // namespace storage

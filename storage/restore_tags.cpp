#include "storage/restore_tags.h"

#include <algorithm>

#include "storage/deletion.h"
#include "storage/device_paths.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"

namespace storage {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

namespace {

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

/// First the tags that are to be replaced go to the trash, in one deletion. It ends before a new
/// tag comes, since it would take the new one for the old. Then a note in the trash names all tags
/// that come, so that a kill leaves no part of one. Tags that replace others come before new ones:
/// the others must not take their places among the hundred.
class TagRestoration {
 public:
  explicit TagRestoration(const RestoreParts& parts)
      : m_parts(parts),
        m_tags(parts.plan.tags),
        m_fates(m_tags.size(), RestoreFate::kFailed),
        m_isCleared(m_tags.size()) {}

  std::vector<RestoreFate> Run(Replacing replacing,
                               const std::function<std::u16string(std::u16string_view)>& getText) {
    FindFates();
    if (replacing == Replacing::kYes) {
      Clear(getText);
    }
    const Result<std::u16string, FileError> note = Note();
    // Two rounds over the same list, so that the tags keep the order of the backup in each.
    for (const bool isReplacement : {true, false}) {
      for (std::size_t i = 0; i < m_tags.size(); ++i) {
        if (Comes(i) && m_isCleared[i] == isReplacement) {
          PutTag(i, note);
        }
      }
    }
    if (note && !note->empty()) {
      m_parts.trash.EndRestoring(*note);
    }
    return std::move(m_fates);
  }

 private:
  [[nodiscard]] bool Comes(std::size_t i) const {
    return m_isCleared[i] || m_tags[i].state == RestoreState::kNew;
  }

  /// Of the tags that do not come.
  void FindFates() {
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      switch (m_tags[i].state) {
        case RestoreState::kSame:
          m_fates[i] = RestoreFate::kSame;
          break;
        case RestoreState::kContactElsewhere:
          m_fates[i] = RestoreFate::kContactElsewhere;
          break;
        case RestoreState::kDifferent:
          m_fates[i] = RestoreFate::kKept;
          break;
        case RestoreState::kNew:
          break;
      }
    }
  }

  void Clear(const std::function<std::u16string(std::u16string_view)>& getText) {
    Deletion deletion(m_parts.trash, DeletionReason::kReplace);
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      const PlannedTag& tag = m_tags[i];
      if (tag.state != RestoreState::kDifferent) {
        continue;
      }
      const auto kept = deletion.Keep(tag.here, getText(tag.here.name));
      m_isCleared[i] = kept.has_value();
      // A tag that was kept has "failed" until its successor is there.
      m_fates[i] = kept ? RestoreFate::kFailed : FateOf(kept.error());
    }
    const bool isSealed = deletion.Seal().has_value();
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      // Asked before any of its parts goes: half a tag would be left otherwise.
      if (m_isCleared[i] && isSealed && !IsFree(m_tags[i].here)) {
        m_fates[i] = RestoreFate::kInUse;
        m_isCleared[i] = false;
      }
      m_isCleared[i] = m_isCleared[i] && isSealed && m_parts.trash.DeleteParts(m_tags[i].here);
    }
    // A mark that a loss of power brings back would end the deletion again, with the new tag there.
    const bool isAnyCleared = std::ranges::find(m_isCleared, true) != m_isCleared.end();
    if (isAnyCleared && !(deletion.End() && m_parts.files.FlushFolder(kTrashFolder))) {
      for (std::size_t i = 0; i < m_tags.size(); ++i) {
        if (m_isCleared[i]) {
          BringBack(m_tags[i].here.name);
          m_isCleared[i] = false;
        }
      }
    }
  }

  /// Returns whether nobody has a file of the tag open. A companion shares what it reads, so the
  /// file can be copied, but not deleted.
  [[nodiscard]] bool IsFree(const TagParts& tag) {
    const auto isFree = [this](std::u16string_view folder, const std::u16string& file) {
      const auto opened = m_parts.files.Open(
          PathIn(folder, file), {platform::FileAccess::kRead, platform::FileShare::kNone,
                                 platform::FileCreation::kOpenExisting});
      return file.empty() || opened != Failure(FileError::kSharingViolation);
    };
    return isFree(kWaveFolder, tag.waveFile) && isFree(kTemplateFolder, tag.templateFile);
  }

  /// Returns the name of the note. It is empty if no tag comes.
  [[nodiscard]] Result<std::u16string, FileError> Note() const {
    std::vector<TagParts> coming;
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      const BackupTag& tag = m_parts.backup.tags[m_tags[i].index];
      if (Comes(i)) {
        coming.push_back(
            {tag.name, tag.recording ? tag.name + std::u16string(kWaveExtension) : std::u16string(),
             tag.voiceTemplate ? tag.name + std::u16string(kTemplateExtension) : std::u16string(),
             true});
      }
    }
    return coming.empty() ? Result<std::u16string, FileError>()
                          : m_parts.trash.BeginRestoring(coming);
  }

  void PutTag(std::size_t i, const Result<std::u16string, FileError>& note) {
    const BackupTag& tag = m_parts.backup.tags[m_tags[i].index];
    // Without the note a kill would leave parts that nobody takes away, so nothing comes then.
    const Put hasRoom = note ? FindRoom() : Failure(storage::FateOf(note.error()));
    // The files come before the entry, as when a tag is learned: only the entry makes them a tag.
    const Put put =
        hasRoom.and_then([&] { return PutFile(m_parts, WavePath(tag.name), tag.recording); })
            .and_then([&] { return PutFile(m_parts, TemplatePath(tag.name), tag.voiceTemplate); })
            .and_then([&] { return PutSettings(m_parts.registry, m_tags[i].entry); });
    if (put) {
      m_fates[i] = m_isCleared[i] ? RestoreFate::kReplaced : RestoreFate::kRestored;
      return;
    }
    m_fates[i] = put.error();
    if (m_isCleared[i]) {
      BringBack(tag.name);
    }
  }

  [[nodiscard]] Put FindRoom() const {
    const auto list = TagStore(m_parts.files, m_parts.registry).ListNames();
    if (!list) {
      return Failure(RestoreFate::kFailed);
    }
    return list->names.size() < static_cast<std::size_t>(kMaxTags) ? Put()
                                                                   : Failure(RestoreFate::kTooMany);
  }

  /// Takes a tag out of the trash again. If that fails, it stays there.
  void BringBack(std::u16string_view name) const {
    const TagStore store(m_parts.files, m_parts.registry);
    static_cast<void>(store.Delete(name));
    const auto trashed = m_parts.trash.List();
    if (!trashed) {
      return;
    }
    // The list begins with what went last.
    const auto latest = std::ranges::find_if(
        *trashed, [name](const TrashedTag& tag) { return tag.item.parts.name == name; });
    if (latest != trashed->end()) {
      static_cast<void>(m_parts.trash.Restore(*latest));
    }
  }

  const RestoreParts& m_parts;
  const std::vector<PlannedTag>& m_tags;
  std::vector<RestoreFate> m_fates;
  std::vector<bool> m_isCleared;  ///< Whether what was here is in the trash, and out of the way.
};

}  // namespace

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

Put PutSettings(platform::Registry& registry, std::span<const RegistryChange> changes) {
  return ApplyRegistryChanges(registry, changes).map_error([](const RegistryFileError& error) {
    return error.store == RegistryError::kFull ? RestoreFate::kFull : RestoreFate::kFailed;
  });
}

Put PutFile(const RestoreParts& parts, std::u16string_view path,
            const std::optional<BackupMember>& member) {
  if (!member) {
    return {};
  }
  const auto target = parts.files.OpenReplacement(path);
  if (!target) {
    return Failure(FateOf(target.error()));
  }
  const auto copied = CopyMember(parts.archive, *member, (*target)->GetFile());
  return (copied ? (*target)->Publish(platform::Durability::kNow) : copied)
      .map_error([](FileError error) { return FateOf(error); });
}

std::vector<RestoreFate> RestoreTags(
    const RestoreParts& parts, Replacing replacing,
    const std::function<std::u16string(std::u16string_view)>& getText) {
  return TagRestoration(parts).Run(replacing, getText);
}

}  // namespace storage

#include "storage/deletion.h"

#include <algorithm>
#include <utility>

#include "storage/device_paths.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"

// Every deletion goes in three steps: copy all, wait until the copies are on the medium, delete. A
// kill in the first two leaves the tags, and one in the third leaves the copies. The deletion of
// one tag and of all, the clean-up and the repair all go this way. They differ in what they do if
// no copy can be made.
namespace storage {

using platform::Failure;
using platform::FileError;
using platform::Result;

Deletion::~Deletion() { static_cast<void>(End()); }

bool Deletion::End() {
  // Taken first, so that a second call has nothing to end.
  const std::u16string stamp = std::exchange(m_stamp, {});
  if (stamp.empty()) {
    return true;
  }
  const auto names = m_trash.ListFiles();
  if (!names) {
    return false;
  }
  const bool isOver = m_trash.EndDeletion(stamp + std::u16string(kDeletingEnd), *names,
                                          TagTrash::Unfinished::kKeep);
  m_trash.RemoveOld(*names);
  return isOver;
}

// A user who deletes wants the tag to go, even if the disk has no room for a copy. So older
// deletions make room first. A clean-up, which nobody asked for, destroys nothing.
Result<void, ItemError> Deletion::Keep(const TagParts& parts, std::u16string_view text) {
  if (IsKept(parts)) {
    return {};
  }
  const auto written = Write(parts, text);
  const bool isOfUser = m_by == DeletionReason::kDelete || m_by == DeletionReason::kDeleteAll;
  if (written || written.error() != ItemError::kFull || !isOfUser) {
    return written;
  }
  // All of it: what a deletion needs is not known before it is written. Deletions that are under
  // way, this one among them, keep what they have.
  static_cast<void>(m_trash.Empty());
  return Write(parts, text);
}

// An earlier deletion may have been killed after it had copied this tag and taken a part of it
// away. A second copy, of what is left, would look like the tag and restore only a part.
bool Deletion::IsKept(const TagParts& parts) const {
  const auto names = m_trash.ListFiles();
  if (!names) {
    return false;
  }
  // What is left of the tag must all be in the copy, or it is not this tag that was copied.
  const auto isSameOrGone = [](const std::u16string& left, const std::u16string& kept) {
    return left.empty() || left == kept;
  };
  return std::ranges::any_of(*names, [&](const std::u16string& name) {
    if (!IsItem(name) || !IsMarked(*names, name) || DeletionOf(name) == m_stamp) {
      return false;
    }
    const auto item = ReadItem(m_trash.m_files, InTrash(name));
    if (!item || !*item) {
      return false;
    }
    const TagParts& kept = (*item)->parts;
    return kept.name == parts.name && isSameOrGone(parts.waveFile, kept.waveFile) &&
           isSameOrGone(parts.templateFile, kept.templateFile) && parts.hasEntry <= kept.hasEntry &&
           GetState(m_trash.m_files, m_trash.m_registry, kept) == PartsState::kPartly;
  });
}

Result<void, ItemError> Deletion::Write(const TagParts& parts, std::u16string_view text) {
  return Begin()
      .and_then([&] {
        return WriteItem(
            m_trash.m_files, m_trash.m_registry, InTrash(ItemName(m_stamp, m_count + 1)),
            {.parts = parts, .text = std::u16string(text), .deletedAt = m_time, .by = m_by});
      })
      .map([&] { ++m_count; });
}

// The stamp is chosen when the first tag is kept, so a deletion without tags leaves no trace. The
// mark is made with kCreateNew: if two deletions chose one stamp, the second would fail here.
Result<void, ItemError> Deletion::Begin() {
  if (!m_stamp.empty()) {
    return {};
  }
  const auto fail = [](FileError error) {
    return Failure(error == FileError::kDiskFull ? ItemError::kFull : ItemError::kOther);
  };
  m_time = m_trash.m_clock.GetUnixTime();
  const auto stamp = m_trash.MakeStamp(m_time);
  if (!stamp) {
    return fail(stamp.error());
  }
  if (const auto marked = m_trash.Mark(*stamp + std::u16string(kDeletingEnd)); !marked) {
    return fail(marked.error());
  }
  m_stamp = *stamp;
  return {};
}

/// One flush of the folder for all copies: each file is on the medium when it is written, and its
/// name when the folder is.
Result<void, FileError> Deletion::Seal() const {
  return m_stamp.empty() ? Result<void, FileError>() : m_trash.m_files.FlushFolder(kTrashFolder);
}

namespace {

/// Copies everything into the trash, and counts what a full disk has no room for. Fails if the
/// store must stay as it is.
Result<void, DeletionProblem> KeepAll(
    Deletion& deletion, const std::vector<TagParts>& all,
    const std::function<std::u16string(std::u16string_view)>& getText, int& destroyedCount) {
  for (const TagParts& parts : all) {
    const auto kept = deletion.Keep(parts, parts.hasEntry ? getText(parts.name) : std::u16string());
    if (kept) {
      continue;
    }
    switch (kept.error()) {
      case ItemError::kFull:
        ++destroyedCount;
        break;
      case ItemError::kRecordingInUse:
      case ItemError::kTemplateInUse:
      case ItemError::kStoreUnread:
        return Failure(DeletionProblem::kFileInUse);
      case ItemError::kOther:
        return Failure(DeletionProblem::kNotKept);
    }
  }
  return deletion.Seal().map_error([](FileError) { return DeletionProblem::kNotKept; });
}

/// Deletes the entries, and the tag key unless it holds what no copy could be made of.
bool DeleteEntries(const TagStore& store, const StoreContents& contents) {
  // Deleting the key at once takes one step. If it holds keys that no copy can be made of, each
  // tag's entry goes alone and the others stay.
  if (contents.unusableKeys == 0) {
    return store.DeleteAllEntries().has_value();
  }
  return std::ranges::all_of(contents.tags, [&store](const TagParts& parts) {
    return store.DeleteEntry(parts.name).has_value();
  });
}

}  // namespace

DeletedAll DeleteAllTags(platform::FileSystem& files, platform::Registry& registry,
                         const TagTrash& trash,
                         const std::function<std::u16string(std::u16string_view)>& getText,
                         const std::function<void(DeletionProblem)>& report) {
  const auto contents = ListStore(files, registry);
  if (!contents) {
    report(DeletionProblem::kFileInUse);
    return {};
  }
  for (std::size_t i = 0; i < contents->failedSearches; ++i) {
    report(DeletionProblem::kSearchFailed);
  }
  // A folder that could not be read may hold recordings that nobody has copied.
  if (contents->failedSearches > 0) {
    return {};
  }
  // Tags first, then the files without an entry. If the disk fills up, the tags are the ones that
  // were copied.
  std::vector<TagParts> all = contents->tags;
  all.insert(all.end(), contents->orphans.begin(), contents->orphans.end());
  Deletion deletion(trash, DeletionReason::kDeleteAll);
  DeletedAll outcome;
  if (const auto kept = KeepAll(deletion, all, getText, outcome.destroyedCount); !kept) {
    report(kept.error());
    return {};
  }
  // All recordings, then all templates, then the entries: a companion sees no entry go before both
  // its files.
  const auto deleteFiles = [&](std::u16string_view folder, std::u16string TagParts::*part) {
    for (const TagParts& parts : all) {
      if (!(parts.*part).empty() &&
          !platform::AcceptMissing(files.Delete(PathIn(folder, parts.*part)))) {
        report(DeletionProblem::kFileInUse);
      }
    }
  };
  deleteFiles(kWaveFolder, &TagParts::waveFile);
  deleteFiles(kTemplateFolder, &TagParts::templateFile);
  outcome.isDone = DeleteEntries(TagStore(files, registry), *contents);
  if (!outcome.isDone) {
    report(DeletionProblem::kFileInUse);
  }
  return outcome;
}

Result<void, StaleError> DeleteStaleTag(platform::FileSystem& files, platform::Registry& registry,
                                        Deletion& deletion, std::u16string_view tagName) {
  const auto parts = FindParts(files, registry, tagName);
  if (!parts) {
    return Failure(StaleError::kNotKept);
  }
  // The contact is gone, so nobody knows a text for the tag but its name.
  if (const auto kept = deletion.Keep(*parts, tagName); !kept) {
    switch (kept.error()) {
      case ItemError::kRecordingInUse:
        return Failure(StaleError::kRecordingInUse);
      case ItemError::kTemplateInUse:
        return Failure(StaleError::kTemplateInUse);
      case ItemError::kStoreUnread:
      case ItemError::kFull:
      case ItemError::kOther:
        return Failure(StaleError::kNotKept);
    }
  }
  if (!deletion.Seal()) {
    return Failure(StaleError::kNotKept);
  }
  return TagStore(files, registry).Delete(tagName).map_error([](TagPart part) {
    switch (part) {
      case TagPart::kWave:
        return StaleError::kRecordingInUse;
      case TagPart::kTemplate:
        return StaleError::kTemplateInUse;
      case TagPart::kEntry:
        break;
    }
    return StaleError::kEntryFailed;
  });
}

std::vector<std::u16string> DeleteOrphans(platform::FileSystem& files, platform::Registry& registry,
                                          const TagTrash& trash) {
  // Without all entries nobody knows which files have none. A folder that cannot be read only hides
  // orphans.
  auto contents = ListStore(files, registry);
  if (!contents) {
    return {};
  }
  Deletion deletion(trash, DeletionReason::kRepair);
  // What could not be kept is taken off the list, and so stays in its folder.
  std::erase_if(contents->orphans, [&deletion](const TagParts& parts) {
    return !deletion.Keep(parts, {}).has_value();
  });
  if (!deletion.Seal()) {
    return {};
  }
  std::vector<std::u16string> names;
  for (const TagParts& parts : contents->orphans) {
    if (trash.DeleteParts(parts)) {
      names.push_back(parts.name);
    }
  }
  return names;
}

}  // namespace storage

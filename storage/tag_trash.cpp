#include "storage/tag_trash.h"

#include <algorithm>
#include <set>
#include <span>
#include <tuple>
#include <utility>

#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"

// The trash is one folder. Each deleted tag is an archive there, and its name begins with the time
// of the deletion. Two kinds of marks, files next to the archives, say what is under way: a
// deletion that has copied its tags and not yet taken them away, and a restoration that has not yet
// put all parts back. A process can be killed at any moment. The marks are all that the next one
// has, so each is made before the first change and goes after the last.
namespace storage {

using platform::AcceptMissing;
using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

/// More than the names of all tags can take.
constexpr std::uint64_t kLongestNote = std::uint64_t{1} << 24U;

std::uint64_t LengthOf(platform::FileSystem& files, std::u16string_view name) {
  const auto file =
      files.Open(InTrash(name), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                 platform::FileCreation::kOpenExisting});
  return file ? (*file)->GetLength().value_or(0) : 0;
}

}  // namespace

// The folder is read once and its names are sorted. A stamp begins with the time, so the names of
// one deletion stand next to each other, and later ones come after them.
Result<std::vector<std::u16string>, FileError> TagTrash::ListFiles() const {
  std::vector<std::u16string> names;
  const auto search = m_files.Find(InTrash(u"*"));
  if (!search && search.error() == FileError::kNotFound) {
    return names;
  }
  if (!search) {
    return Failure(search.error());
  }
  auto found = (*search)->Next();
  for (; found && *found; found = (*search)->Next()) {
    if (!(*found)->isFolder) {  // Nothing of the trash is a folder.
      names.push_back((*found)->name);
    }
  }
  if (!found) {
    return Failure(found.error());
  }
  std::ranges::sort(names);
  return names;
}

// A deletion copies its tags before it takes them away. If it was killed in between, the copy is in
// the trash and the tag is in the store. The user has lost nothing then, and sees the tag in one
// place only.
Result<std::vector<TrashedTag>, FileError> TagTrash::List() const {
  const auto names = ListFiles();
  if (!names) {
    return Failure(names.error());
  }
  std::vector<TrashedTag> tags;
  for (const std::u16string& name : *names) {
    if (!IsItem(name)) {
      continue;
    }
    auto item = ReadItem(m_files, InTrash(name));
    if (!item) {
      return Failure(item.error());
    }
    // Reading the store is worth it for marked items only. All others are of deletions that ended.
    const bool isStillThere = *item && IsMarked(*names, name) &&
                              GetState(m_files, m_registry, (*item)->parts) == PartsState::kWhole;
    if (*item && !isStillThere) {
      tags.push_back({name, std::u16string(DeletionOf(name)), std::move(**item)});
    }
  }
  // Within one deletion in the order in which the tags went.
  std::ranges::stable_sort(tags, [](const TrashedTag& a, const TrashedTag& b) {
    return std::tie(a.item.deletedAt, a.deletion) > std::tie(b.item.deletedAt, b.deletion);
  });
  return tags;
}

// What the marks say is ended first, as only then it is known what the trash holds and what is too
// old.
void TagTrash::Recover() const {
  const auto names = ListFiles();
  if (!names || names->empty()) {
    return;  // A command that lists the trash reports that it cannot be read.
  }
  for (const std::u16string& name : *names) {
    if (name.ends_with(kRestoringEnd)) {
      EndRestoring(name);
    } else if (name.ends_with(kDeletingEnd)) {
      EndDeletion(name, *names, Unfinished::kFinish);
    } else if (name.starts_with(platform::kUnfinishedPrefix)) {
      Delete(name);  // A file system that cannot hold a file without a name keeps it after a kill.
    }
  }
  if (const auto left = ListFiles()) {
    RemoveOld(*left);
  }
}

// A restoration puts the files back, then the entry, and ends by taking the copy out of the trash.
// If it was killed before the entry was there, what it put back is taken away again and the copy
// stays: a file without an entry would be nobody's.
void TagTrash::EndRestoring(std::u16string_view mark) const {
  // The mark has the name of the item that is restored. A note, which is of a backup, has none:
  // there is no such item then.
  const std::u16string name =
      std::u16string(mark.substr(0, mark.size() - kRestoringEnd.size())).append(kItemEnd);
  const auto item = ReadItem(m_files, InTrash(name));
  if (!item) {
    return;
  }
  if (*item) {
    const TagParts& parts = (*item)->parts;
    const auto state = GetState(m_files, m_registry, parts);
    if (!state) {
      return;
    }
    // The entry came last, so all of it is there, or what is there is a part of the copy.
    const bool isDone =
        *state == PartsState::kWhole ? Delete(name) : DeleteParts(parts) && FlushStore();
    if (!isDone) {
      return;
    }
  } else if (!EndNote(mark)) {
    return;
  }
  Delete(mark);
}

bool TagTrash::EndNote(std::u16string_view mark) const {
  const auto note = ReadNote(mark);
  bool isEnded = note.has_value();
  bool hasChanged = false;
  for (const TagParts& parts : note.value_or(std::vector<TagParts>())) {
    const auto state = GetState(m_files, m_registry, parts);
    // A tag of the note that is whole has come, and stays.
    if (state != PartsState::kWhole) {
      isEnded = state && DeleteParts(parts) && isEnded;
      hasChanged = true;
    }
  }
  return isEnded && (!hasChanged || FlushStore());
}

Result<std::vector<TagParts>, FileError> TagTrash::ReadNote(std::u16string_view mark) const {
  const auto file =
      m_files.Open(InTrash(mark), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                   platform::FileCreation::kOpenExisting});
  const auto length = file ? (*file)->GetLength() : Failure(file.error());
  if (!length || *length > kLongestNote) {
    return Failure(length ? FileError::kOther : length.error());
  }
  std::string note(static_cast<std::size_t>(*length), '\0');
  const auto count = (*file)->Read(std::as_writable_bytes(std::span(note)));
  if (count != note.size()) {
    return Failure(FileError::kOther);
  }
  return ParseJournal(note);
}

Result<std::u16string, FileError> TagTrash::BeginRestoring(
    const std::vector<TagParts>& tags) const {
  const auto stamp = MakeStamp(m_clock.GetUnixTime());
  if (!stamp) {
    return Failure(stamp.error());
  }
  std::u16string mark = RestoringMarkOf(ItemName(*stamp, 0));
  const auto target = m_files.OpenReplacement(InTrash(mark));
  if (!target) {
    return Failure(target.error());
  }
  const std::string note = WriteJournal(tags);
  return (*target)
      ->GetFile()
      .Write(std::as_bytes(std::span(note)))
      .and_then([&] { return (*target)->Publish(platform::Durability::kNow); })
      .map([&mark] { return std::move(mark); });
}

Result<std::u16string, FileError> TagTrash::MakeStamp(std::int64_t unixTime) const {
  const auto folder = m_files.CreateFolder(kTrashFolder);
  if (!folder && folder.error() != FileError::kAlreadyExists) {
    return Failure(folder.error());
  }
  const auto names = ListFiles();
  if (!names) {
    return Failure(names.error());
  }
  // Two deletions in one second have the same time. A number after it keeps them apart.
  for (unsigned i = 1; i <= kMostInOneSecond; ++i) {
    std::u16string stamp = StampOf(unixTime, i);
    if (std::ranges::none_of(*names, [&](const auto& name) { return name.starts_with(stamp); })) {
      return stamp;
    }
  }
  return Failure(FileError::kOther);
}

// A deletion that was killed left each of its tags in one of three states. If the tag is whole, it
// was not deleted, and its copy goes. If it is gone, the copy is all that is left of it. If a part
// is left, the companion may see half a tag, so the rest goes as well. The destructor of a deletion
// comes here too, but keeps what is left, as a file that is in use may be free a moment later.
bool TagTrash::EndDeletion(std::u16string_view mark, const std::vector<std::u16string>& names,
                           Unfinished unfinished) const {
  bool isEnded = true;
  bool hasChanged = false;
  for (const std::u16string& name : names) {
    if (!IsItem(name) || DeletionOf(name) != DeletionOf(mark)) {
      continue;
    }
    const auto item = ReadItem(m_files, InTrash(name));
    isEnded = isEnded && item;
    if (!item || !*item) {
      continue;
    }
    const TagParts& parts = (*item)->parts;
    const auto state = GetState(m_files, m_registry, parts);
    if (!state) {
      isEnded = false;
      continue;
    }
    switch (*state) {
      case PartsState::kWhole:
        isEnded = Delete(name) && isEnded;
        break;
      case PartsState::kPartly:
        isEnded = unfinished == Unfinished::kFinish && DeleteParts(parts) && isEnded;
        hasChanged = true;
        break;
      case PartsState::kGone:
        hasChanged = true;
        break;
    }
  }
  // Without its mark a file that a loss of power brings back would be nobody's.
  return isEnded && (!hasChanged || FlushStore()) && Delete(mark);
}

Result<void, PartError> TagTrash::DeleteParts(const TagParts& parts) const {
  if (!parts.waveFile.empty() &&
      !AcceptMissing(m_files.Delete(PathIn(kWaveFolder, parts.waveFile)))) {
    return Failure(PartError::kFileStays);
  }
  if (!parts.templateFile.empty() &&
      !AcceptMissing(m_files.Delete(PathIn(kTemplateFolder, parts.templateFile)))) {
    return Failure(PartError::kFileStays);
  }
  if (parts.hasEntry && !TagStore(m_files, m_registry).DeleteEntry(parts.name)) {
    return Failure(PartError::kEntryStays);
  }
  return {};
}

// A folder may bring back a file that was deleted, if the power fails before the folder is on the
// medium.
Result<void, FileError> TagTrash::FlushStore() const {
  return AcceptMissing(m_files.FlushFolder(kWaveFolder)).and_then([this] {
    return AcceptMissing(m_files.FlushFolder(kTemplateFolder));
  });
}

// The list begins with the latest deletion, so the sum of bytes says how much would be kept with
// this tag and all that went after it. The latest deletion is kept whatever its size: an undo must
// work once.
void TagTrash::RemoveOld(const std::vector<std::u16string>& names) const {
  const std::int64_t now = m_clock.GetUnixTime();
  const auto tags = List();
  if (!tags) {
    return;
  }
  std::uint64_t bytes = 0;
  for (const TrashedTag& tag : *tags) {
    bytes += LengthOf(m_files, tag.file);
    const bool isLatest = tag.deletion == tags->front().deletion;
    const bool isTooMuch = bytes > kKeptBytes && !isLatest;
    const bool isTooOld = tag.item.deletedAt < now - kKeptSeconds;
    if ((isTooMuch || isTooOld) && !IsMarked(names, tag.file)) {
      Delete(tag.file);
    }
  }
  // Stamps sort as the times do.
  const std::u16string oldest = StampOf(now - kKeptSeconds, 0);
  for (const std::u16string& name : names) {
    if (name.ends_with(kSavedEnd) && name < oldest) {
      Delete(name);
    }
  }
}

// The mark is on the medium before the store changes. Whatever happens after that, the next Recover
// finds it and ends the restoration in the same way as EndRestoring does here.
Result<void, RestoreError> TagTrash::Restore(const TrashedTag& tag) const {
  const TagParts& parts = tag.item.parts;
  if (const auto hasRoom = CheckRoomFor(parts); !hasRoom) {
    return hasRoom;
  }
  if (!CreateStoreFolders(m_files)) {
    return Failure(RestoreError::kNoFolder);
  }
  const std::u16string mark = RestoringMarkOf(tag.file);
  const auto marked = Mark(mark);
  if (!marked || !m_files.FlushFolder(kTrashFolder)) {
    Delete(mark);
    const bool isFull = !marked && marked.error() == FileError::kDiskFull;
    return Failure(isFull ? RestoreError::kFull : RestoreError::kOther);
  }
  const auto unpacked = UnpackItem(m_files, m_registry, InTrash(tag.file));
  EndRestoring(mark);
  return unpacked.map_error([](ItemError error) {
    return error == ItemError::kFull ? RestoreError::kFull : RestoreError::kOther;
  });
}

Result<void, RestoreError> TagTrash::CheckRoomFor(const TagParts& parts) const {
  const auto there = FindParts(m_files, m_registry, parts.name);
  if (!there) {
    return Failure(RestoreError::kOther);
  }
  // Nothing is written over. A part of another tag of this name, spelled otherwise, counts too.
  if (there->hasEntry || GetState(m_files, m_registry, parts) != PartsState::kGone) {
    return Failure(RestoreError::kExists);
  }
  if (!parts.hasEntry) {
    return {};
  }
  const auto list = TagStore(m_files, m_registry).ListNames();
  if (!list) {
    return Failure(RestoreError::kOther);
  }
  if (list->names.size() >= static_cast<std::size_t>(kMaxTags)) {
    return Failure(RestoreError::kTooMany);
  }
  return {};
}

Result<void, FileError> TagTrash::Empty() const {
  const auto names = ListFiles();
  if (!names) {
    return Failure(names.error());
  }
  Result<void, FileError> emptied;
  for (const std::u16string& name : *names) {
    // What a deletion or a restoration under way still needs is not thrown away.
    const bool isMark = name.ends_with(kDeletingEnd) || name.ends_with(kRestoringEnd);
    if (!isMark && !IsMarked(*names, name)) {
      const auto deleted = AcceptMissing(m_files.Delete(InTrash(name)));
      emptied = emptied ? deleted : emptied;
    }
  }
  return emptied ? AcceptMissing(m_files.FlushFolder(kTrashFolder)) : emptied;
}

Result<void, FileError> TagTrash::Mark(std::u16string_view name) const {
  return m_files
      .Open(InTrash(name), {platform::FileAccess::kWrite, platform::FileShare::kNone,
                            platform::FileCreation::kCreateNew})
      .map([](const auto&) {});
}

bool TagTrash::Delete(std::u16string_view name) const {
  return AcceptMissing(m_files.Delete(InTrash(name))).has_value();
}

// A name may be taken by files without an entry, or by a tag in the trash that the user can still
// restore. If the store cannot be asked about a name, the name counts as free: a recording must not
// wait for a store that answers nothing, and writing fails by itself then.
std::u16string FreeTagName(platform::FileSystem& files, platform::Registry& registry,
                           const TagTrash& trash, std::uint32_t tickCount) {
  const auto trashed = trash.List().value_or(std::vector<TrashedTag>());
  std::set<std::u16string> taken;
  for (const TrashedTag& tag : trashed) {
    taken.insert(tag.item.parts.name);
  }
  // There are fewer names in use than tick counts.
  for (std::uint32_t tick = tickCount;; ++tick) {
    std::u16string name = TagNameOfTickCount(tick);
    const auto parts = FindParts(files, registry, name);
    const bool isFree =
        parts && parts->waveFile.empty() && parts->templateFile.empty() && !parts->hasEntry;
    if (!taken.contains(name) && (isFree || !parts)) {
      return name;
    }
  }
}

}  // namespace storage

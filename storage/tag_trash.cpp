#include "storage/tag_trash.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <tuple>

#include "language/formatting.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"

namespace storage {

using platform::FileError;
using platform::Result;

namespace {

constexpr std::u16string_view kItemEnd = u".tar";
constexpr std::u16string_view kDeletingEnd = u".deleting";
constexpr std::u16string_view kRestoringEnd = u".restoring";

/// "20261121T221005Z-01"; an item has "-0001" after it.
constexpr std::size_t kDeletionLength = 19;
constexpr std::size_t kItemLength = kDeletionLength + 5;

std::u16string InTrash(std::u16string_view name) {
  return std::u16string(kTrashFolder).append(u"\\").append(name);
}

std::u16string Digits(unsigned number, std::size_t width) {
  std::u16string digits(width, u'0');
  for (std::size_t i = width; i > 0; --i, number /= 10) {
    digits[i - 1] = static_cast<char16_t>(u'0' + number % 10);
  }
  return digits;
}

/// Sorts as the time does, and is a name on every file system.
std::u16string Stamp(std::int64_t unixTime) {
  using std::chrono::days;
  const std::chrono::sys_seconds time{std::chrono::seconds(unixTime)};
  const auto day = std::chrono::floor<days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  return Digits(static_cast<unsigned>(static_cast<int>(date.year())), 4) +
         Digits(static_cast<unsigned>(date.month()), 2) +
         Digits(static_cast<unsigned>(date.day()), 2) + u"T" +
         Digits(static_cast<unsigned>(clock.hours().count()), 2) +
         Digits(static_cast<unsigned>(clock.minutes().count()), 2) +
         Digits(static_cast<unsigned>(clock.seconds().count()), 2) + u"Z";
}

bool IsItem(std::u16string_view name) {
  return name.size() == kItemLength + kItemEnd.size() && name.ends_with(kItemEnd);
}

bool Contains(const std::vector<std::u16string>& names, const std::u16string& name) {
  return std::ranges::find(names, name) != names.end();
}

std::u16string_view DeletionOf(std::u16string_view item) { return item.substr(0, kDeletionLength); }

/// Whether an item belongs to something that was not ended.
bool IsMarked(const std::vector<std::u16string>& names, std::u16string_view item) {
  return Contains(names, std::u16string(DeletionOf(item)).append(kDeletingEnd)) ||
         Contains(names, std::u16string(item.substr(0, kItemLength)).append(kRestoringEnd));
}

/// What is there no more was deleted.
bool IsGone(const Result<void, FileError>& deleted) {
  return deleted || deleted.error() == FileError::kNotFound;
}

std::uint64_t LengthOf(platform::FileSystem& files, std::u16string_view name) {
  const auto file =
      files.Open(InTrash(name), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                 platform::FileCreation::kOpenExisting});
  return file ? (*file)->GetLength().value_or(0) : 0;
}

std::u16string TemplateFilePath(std::u16string_view file) {
  return std::u16string(kTemplateFolder).append(u"\\").append(file);
}

}  // namespace

bool TagTrash::ListFiles(std::vector<std::u16string>& names) const {
  const auto search = m_files.Find(InTrash(u"*"));
  if (!search) {
    return search.error() == FileError::kNotFound;
  }
  auto found = (*search)->Next();
  for (; found && *found; found = (*search)->Next()) {
    if (!(*found)->isFolder) {  // Nothing of the trash is a folder.
      names.push_back((*found)->name);
    }
  }
  std::ranges::sort(names);
  return found.has_value();
}

bool TagTrash::List(std::vector<TrashedTag>& tags) const {
  std::vector<std::u16string> names;
  if (!ListFiles(names)) {
    return false;
  }
  std::vector<TrashedTag> listed;
  for (const std::u16string& name : names) {
    TrashedTag tag{.file = name, .deletion = std::u16string(DeletionOf(name)), .item = {}};
    const ItemRead read =
        IsItem(name) ? ReadItem(m_files, InTrash(name), tag.item) : ItemRead::kNone;
    if (read == ItemRead::kUnreadable) {
      return false;
    }
    if (read == ItemRead::kNone) {
      continue;
    }
    const bool isStillThere = IsMarked(names, name) &&
                              GetState(m_files, m_registry, tag.item.parts) == PartsState::kWhole;
    if (!isStillThere) {
      listed.push_back(std::move(tag));
    }
  }
  // Within one deletion in the order in which the tags went.
  std::ranges::stable_sort(listed, [](const TrashedTag& a, const TrashedTag& b) {
    return std::tie(a.item.deletedAt, a.deletion) > std::tie(b.item.deletedAt, b.deletion);
  });
  tags = std::move(listed);
  return true;
}

void TagTrash::Recover() const {
  std::vector<std::u16string> names;
  if (!ListFiles(names) || names.empty()) {
    return;  // Whoever lists the trash reports that it cannot be read.
  }
  for (const std::u16string& name : names) {
    if (name.ends_with(kRestoringEnd)) {
      EndRestoring(name);
    } else if (name.ends_with(kDeletingEnd)) {
      EndDeletion(name, names, Unfinished::kFinish);
    }
  }
  names.clear();
  if (ListFiles(names)) {
    RemoveOld(names);
  }
}

void TagTrash::EndRestoring(std::u16string_view mark) const {
  const std::u16string name =
      std::u16string(mark.substr(0, mark.size() - kRestoringEnd.size())).append(kItemEnd);
  TrashItem item;
  const ItemRead read = ReadItem(m_files, InTrash(name), item);
  if (read == ItemRead::kUnreadable) {
    return;
  }
  if (read == ItemRead::kDone) {
    const PartsState state = GetState(m_files, m_registry, item.parts);
    if (state == PartsState::kUnknown) {
      return;
    }
    // The entry came last, so all of it is there, or what is there is a part of the copy.
    const bool isDone =
        state == PartsState::kWhole ? Delete(name) : DeleteParts(item.parts) && FlushStore();
    if (!isDone) {
      return;
    }
  }
  Delete(mark);
}

void TagTrash::EndDeletion(std::u16string_view mark, const std::vector<std::u16string>& names,
                           Unfinished unfinished) const {
  bool isEnded = true;
  bool hasChanged = false;
  for (const std::u16string& name : names) {
    if (!IsItem(name) || DeletionOf(name) != DeletionOf(mark)) {
      continue;
    }
    TrashItem item;
    const ItemRead read = ReadItem(m_files, InTrash(name), item);
    isEnded = isEnded && read != ItemRead::kUnreadable;
    if (read != ItemRead::kDone) {
      continue;
    }
    switch (GetState(m_files, m_registry, item.parts)) {
      case PartsState::kWhole:
        isEnded = Delete(name) && isEnded;
        break;
      case PartsState::kPartly:
        isEnded = unfinished == Unfinished::kFinish && DeleteParts(item.parts) && isEnded;
        hasChanged = true;
        break;
      case PartsState::kGone:
        hasChanged = true;
        break;
      case PartsState::kUnknown:
        isEnded = false;
        break;
    }
  }
  // Without its mark a file that a loss of power brings back would be nobody's.
  if (isEnded && (!hasChanged || FlushStore())) {
    Delete(mark);
  }
}

bool TagTrash::DeleteParts(const TagParts& parts) const {
  if (!parts.waveFile.empty() && !IsGone(m_files.Delete(WaveFilePath(parts.waveFile)))) {
    return false;
  }
  if (!parts.templateFile.empty() &&
      !IsGone(m_files.Delete(TemplateFilePath(parts.templateFile)))) {
    return false;
  }
  return !parts.hasEntry || TagStore(m_files, m_registry).DeleteEntry(parts.name).has_value();
}

bool TagTrash::FlushStore() const {
  return IsGone(m_files.FlushFolder(kWaveFolder)) && IsGone(m_files.FlushFolder(kTemplateFolder));
}

void TagTrash::RemoveOld(const std::vector<std::u16string>& names) const {
  const std::int64_t now = m_clock.GetUnixTime();
  std::vector<TrashedTag> tags;
  if (!List(tags)) {
    return;
  }
  std::uint64_t bytes = 0;
  for (const TrashedTag& tag : tags) {
    bytes += LengthOf(m_files, tag.file);
    const bool isLatest = tag.deletion == tags.front().deletion;
    const bool isTooMuch = bytes > kKeptBytes && !isLatest;
    const bool isTooOld = tag.item.deletedAt < now - kKeptSeconds;
    if ((isTooMuch || isTooOld) && !IsMarked(names, tag.file)) {
      Delete(tag.file);
    }
  }
}

RestoreResult TagTrash::Restore(const TrashedTag& tag) const {
  const TagParts& parts = tag.item.parts;
  TagParts there;
  if (!FindParts(m_files, m_registry, parts.name, there)) {
    return RestoreResult::kFailed;
  }
  if (there.hasEntry || GetState(m_files, m_registry, parts) != PartsState::kGone) {
    return RestoreResult::kExists;
  }
  if (parts.hasEntry) {
    const auto list = TagStore(m_files, m_registry).ListNames();
    if (!list) {
      return RestoreResult::kFailed;
    }
    if (list->names.size() >= static_cast<std::size_t>(kMaxTags)) {
      return RestoreResult::kTooMany;
    }
  }
  if (!CreateStoreFolders(m_files)) {
    return RestoreResult::kNoFolder;
  }
  const std::u16string mark = tag.file.substr(0, kItemLength).append(kRestoringEnd);
  const auto marked = Mark(mark);
  if (!marked || !m_files.FlushFolder(kTrashFolder)) {
    Delete(mark);
    const bool isFull = !marked && marked.error() == FileError::kDiskFull;
    return isFull ? RestoreResult::kFull : RestoreResult::kFailed;
  }
  const ItemResult unpacked = UnpackItem(m_files, m_registry, InTrash(tag.file));
  EndRestoring(mark);
  switch (unpacked) {
    case ItemResult::kDone:
      return RestoreResult::kDone;
    case ItemResult::kFull:
      return RestoreResult::kFull;
    default:
      return RestoreResult::kFailed;
  }
}

bool TagTrash::Empty() const {
  std::vector<std::u16string> names;
  if (!ListFiles(names)) {
    return false;
  }
  bool isEmpty = true;
  for (const std::u16string& name : names) {
    const bool isMark = name.ends_with(kDeletingEnd) || name.ends_with(kRestoringEnd);
    if (!isMark && !IsMarked(names, name)) {
      isEmpty = Delete(name) && isEmpty;
    }
  }
  return isEmpty && IsGone(m_files.FlushFolder(kTrashFolder));
}

Result<void, FileError> TagTrash::Mark(std::u16string_view name) const {
  return m_files
      .Open(InTrash(name), {platform::FileAccess::kWrite, platform::FileShare::kNone,
                            platform::FileCreation::kCreateNew})
      .map([](const auto&) {});
}

bool TagTrash::Delete(std::u16string_view name) const {
  return IsGone(m_files.Delete(InTrash(name)));
}

Deletion::~Deletion() {
  std::vector<std::u16string> names;
  if (!m_name.empty() && m_trash.ListFiles(names)) {
    m_trash.EndDeletion(m_name + std::u16string(kDeletingEnd), names, TagTrash::Unfinished::kKeep);
    m_trash.RemoveOld(names);
  }
}

ItemResult Deletion::Keep(const TagParts& parts, std::u16string_view text) {
  if (IsKept(parts)) {
    return ItemResult::kDone;
  }
  ItemResult result = Write(parts, text);
  const bool isOfUser = m_by == DeletionReason::kDelete || m_by == DeletionReason::kDeleteAll;
  if (result == ItemResult::kFull && isOfUser) {
    static_cast<void>(m_trash.Empty());
    result = Write(parts, text);
  }
  return result;
}

bool Deletion::IsKept(const TagParts& parts) const {
  std::vector<std::u16string> names;
  if (!m_trash.ListFiles(names)) {
    return false;
  }
  const auto isSameOrGone = [](const std::u16string& left, const std::u16string& kept) {
    return left.empty() || left == kept;
  };
  return std::ranges::any_of(names, [&](const std::u16string& name) {
    TrashItem item;
    return IsItem(name) && IsMarked(names, name) && DeletionOf(name) != m_name &&
           ReadItem(m_trash.m_files, InTrash(name), item) == ItemRead::kDone &&
           item.parts.name == parts.name && isSameOrGone(parts.waveFile, item.parts.waveFile) &&
           isSameOrGone(parts.templateFile, item.parts.templateFile) &&
           parts.hasEntry <= item.parts.hasEntry &&
           GetState(m_trash.m_files, m_trash.m_registry, item.parts) == PartsState::kPartly;
  });
}

ItemResult Deletion::Write(const TagParts& parts, std::u16string_view text) {
  if (const ItemResult begun = Begin(); begun != ItemResult::kDone) {
    return begun;
  }
  const std::u16string file = m_name + u"-" + Digits(static_cast<unsigned>(m_count + 1), 4);
  const ItemResult result =
      WriteItem(m_trash.m_files, m_trash.m_registry, InTrash(file + std::u16string(kItemEnd)),
                {.parts = parts, .text = std::u16string(text), .deletedAt = m_time, .by = m_by});
  m_count += result == ItemResult::kDone ? 1 : 0;
  return result;
}

ItemResult Deletion::Begin() {
  if (!m_name.empty()) {
    return ItemResult::kDone;
  }
  const auto folder = m_trash.m_files.CreateFolder(kTrashFolder);
  if (!folder && folder.error() != FileError::kAlreadyExists) {
    return folder.error() == FileError::kDiskFull ? ItemResult::kFull : ItemResult::kFailed;
  }
  std::vector<std::u16string> names;
  if (!m_trash.ListFiles(names)) {
    return ItemResult::kFailed;
  }
  constexpr unsigned kMostInOneSecond = 99;
  m_time = m_trash.m_clock.GetUnixTime();
  for (unsigned i = 1; i <= kMostInOneSecond; ++i) {
    const std::u16string name = Stamp(m_time) + u"-" + Digits(i, 2);
    if (std::ranges::any_of(names, [&](const auto& other) { return other.starts_with(name); })) {
      continue;
    }
    const auto marked = m_trash.Mark(name + std::u16string(kDeletingEnd));
    if (!marked) {
      return marked.error() == FileError::kDiskFull ? ItemResult::kFull : ItemResult::kFailed;
    }
    m_name = name;
    return ItemResult::kDone;
  }
  return ItemResult::kFailed;
}

bool Deletion::Seal() const { return m_name.empty() || m_trash.m_files.FlushFolder(kTrashFolder); }

std::u16string FreeTagName(platform::FileSystem& files, platform::Registry& registry,
                           const TagTrash& trash, std::uint32_t tickCount) {
  std::vector<TrashedTag> trashed;
  static_cast<void>(trash.List(trashed));
  std::set<std::u16string> taken;
  for (const TrashedTag& tag : trashed) {
    taken.insert(tag.item.parts.name);
  }
  // There are fewer names in use than tick counts.
  for (std::uint32_t tick = tickCount;; ++tick) {
    std::u16string name = TagNameOfTickCount(tick);
    TagParts parts;
    const bool isAsked = FindParts(files, registry, name, parts);
    const bool isFree = parts.waveFile.empty() && parts.templateFile.empty() && !parts.hasEntry;
    if (!taken.contains(name) && (isFree || !isAsked)) {
      return name;
    }
  }
}

}  // namespace storage

#include "storage/trash_item.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <vector>

#include "backends/text/utf.h"
#include "storage/device_paths.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "storage/tar.h"

// One archive of the trash: a description, the entry as a registry file, the recording and the
// template. It keeps the exact names of the files, since letter case may differ between an entry
// and its files, and they shall come back as they were.
namespace storage {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

namespace {

// The members of an archive. The description comes first, so that a list of the trash reads only
// the first blocks of each archive.
constexpr std::string_view kAbout = "about.txt";
constexpr std::string_view kEntry = "entry.reg";
constexpr std::string_view kRecording = "recording.wav";
constexpr std::string_view kTemplate = "template.st";

/// More than the texts of a tag can take.
constexpr std::uint64_t kLongestAbout = 65536;

constexpr std::array<std::string_view, 5> kReasonWords{"delete", "delete-all", "clean-up", "repair",
                                                       "replace"};

// The lines of about.txt: a word, a blank, a value.
constexpr std::string_view kDeletedLine = "deleted ";
constexpr std::string_view kByLine = "by ";
constexpr std::string_view kNameLine = "name ";
constexpr std::string_view kRecordingLine = "recording ";
constexpr std::string_view kTemplateLine = "template ";
constexpr std::string_view kEntryLine = "entry ";
constexpr std::string_view kTextLine = "text ";

constexpr std::u16string_view kKeySeparators = u"\\";
constexpr std::u16string_view kFileSeparators = u"\\/";

ItemError ToItemError(FileError error) {
  return error == FileError::kDiskFull ? ItemError::kFull : ItemError::kOther;
}

Result<void, ItemError> ToResult(const Result<void, FileError>& result) {
  return result.map_error(ToItemError);
}

/// A name of the host may hold any byte but a zero; the end of a line must not be in a line.
void AppendLine(std::string& about, std::string_view word, std::u16string_view value) {
  std::string bytes = text::ToHostName(value);
  std::ranges::replace(bytes, '\n', ' ');
  about.append(word).append(bytes).append("\n");
}

void AppendParts(std::string& about, const TagParts& parts) {
  AppendLine(about, kNameLine, parts.name);
  AppendLine(about, kRecordingLine, parts.waveFile);
  AppendLine(about, kTemplateLine, parts.templateFile);
  about.append(kEntryLine).append(parts.hasEntry ? "1" : "0").append("\n");
}

std::string WriteAbout(const TrashItem& item) {
  std::string about;
  // The reader expects these lines in this order. What is added some day comes after them.
  about.append(kDeletedLine).append(std::to_string(item.deletedAt)).append("\n");
  about.append(kByLine).append(ToWord(item.by)).append("\n");
  AppendParts(about, item.parts);
  AppendLine(about, kTextLine, item.text);
  return about;
}

/// Reads about.txt from its beginning, line by line. What is not as WriteAbout writes it ends the
/// reading: then HasFailed() is true, and each later line is empty.
class AboutReader {
 public:
  explicit AboutReader(std::string_view about) : m_rest(about) {}

  [[nodiscard]] bool HasFailed() const { return m_hasFailed; }
  [[nodiscard]] bool IsAtEnd() const { return m_rest.empty(); }

  /// Returns what follows `word` on the next line.
  std::string_view Take(std::string_view word) {
    const std::size_t end = m_rest.find('\n');
    if (m_hasFailed || end == std::string_view::npos || !m_rest.starts_with(word)) {
      m_hasFailed = true;
      return {};
    }
    const std::string_view value = m_rest.substr(word.size(), end - word.size());
    m_rest.remove_prefix(end + 1);
    return value;
  }

  /// Returns the name on the next line. It is refused if it holds one of `separators`: it would
  /// lead out of its folder or its key, and is none of ours.
  std::u16string TakeName(std::string_view word, std::u16string_view separators) {
    std::u16string name = text::FromHostName(Take(word));
    m_hasFailed = m_hasFailed || name.find_first_of(separators) != std::u16string::npos;
    return name;
  }

  TagParts TakeParts() {
    TagParts parts;
    parts.name = TakeName(kNameLine, kKeySeparators);
    parts.waveFile = TakeName(kRecordingLine, kFileSeparators);
    parts.templateFile = TakeName(kTemplateLine, kFileSeparators);
    parts.hasEntry = Take(kEntryLine) == "1";
    return parts;
  }

  std::int64_t TakeNumber(std::string_view word) {
    const std::string_view value = Take(word);
    std::int64_t number = 0;
    const auto read = std::from_chars(value.data(), value.data() + value.size(), number);
    m_hasFailed = m_hasFailed || read.ec != std::errc() || read.ptr != value.data() + value.size();
    return number;
  }

  DeletionReason TakeReason(std::string_view word) {
    const auto* const found = std::ranges::find(kReasonWords, Take(word));
    if (found == kReasonWords.end()) {
      m_hasFailed = true;
      return {};
    }
    return static_cast<DeletionReason>(found - kReasonWords.begin());
  }

 private:
  std::string_view m_rest;
  bool m_hasFailed = false;
};

/// Returns nothing if the text is no whole description of an item.
std::optional<TrashItem> ParseAbout(std::string_view about) {
  AboutReader reader(about);
  TrashItem item;
  item.deletedAt = reader.TakeNumber(kDeletedLine);
  item.by = reader.TakeReason(kByLine);
  item.parts = reader.TakeParts();
  item.text = text::FromHostName(reader.Take(kTextLine));
  return reader.HasFailed() ? std::nullopt : std::optional(std::move(item));
}

/// Adds nothing for a tag without such a file.
Result<void, ItemError> AddFile(platform::FileSystem& files, TarWriter& tar,
                                std::string_view member, std::u16string_view folder,
                                const std::u16string& file, ItemError inUse) {
  if (file.empty()) {
    return {};
  }
  // A companion that reads the file shares it.
  const auto source =
      files.Open(PathIn(folder, file), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                        platform::FileCreation::kOpenExisting});
  if (!source) {
    const bool isInUse = source.error() == FileError::kSharingViolation;
    return Failure(isInUse ? inUse : ToItemError(source.error()));
  }
  return ToResult(tar.AddFile(member, **source));
}

Result<void, ItemError> AddEntry(platform::Registry& registry, TarWriter& tar,
                                 const TagParts& parts) {
  if (!parts.hasEntry) {
    return {};
  }
  const auto entry = WriteRegistryFile(registry, EntryPath(parts.name));
  return entry ? ToResult(tar.Add(kEntry, *entry)) : Failure(ItemError::kStoreUnread);
}

Result<void, ItemError> WriteParts(platform::FileSystem& files, platform::Registry& registry,
                                   TarWriter& tar, const TrashItem& item) {
  const std::string about = WriteAbout(item);
  return ToResult(tar.Add(kAbout, std::as_bytes(std::span(about))))
      .and_then([&] { return AddEntry(registry, tar, item.parts); })
      .and_then([&] {
        return AddFile(files, tar, kRecording, kWaveFolder, item.parts.waveFile,
                       ItemError::kRecordingInUse);
      })
      .and_then([&] {
        return AddFile(files, tar, kTemplate, kTemplateFolder, item.parts.templateFile,
                       ItemError::kTemplateInUse);
      })
      .and_then([&] { return ToResult(tar.End()); });
}

/// Goes to the member of that name. Returns false if there is none, or if the archive is torn.
bool Find(TarReader& tar, std::string_view member) {
  auto next = tar.Next();
  while (next && *next && tar.GetName() != member) {
    next = tar.Next();
  }
  return next && *next;
}

/// Makes nothing for a tag without such a file.
Result<void, ItemError> UnpackFile(platform::FileSystem& files, platform::File& archive,
                                   std::string_view member, std::u16string_view folder,
                                   const std::u16string& file) {
  if (file.empty()) {
    return {};
  }
  TarReader tar(archive);
  if (!Find(tar, member)) {
    return Failure(ItemError::kOther);
  }
  const auto target = files.OpenReplacement(PathIn(folder, file));
  if (!target) {
    return Failure(ToItemError(target.error()));
  }
  const auto copied = tar.CopyTo((*target)->GetFile());
  return ToResult(copied ? (*target)->Publish(platform::Durability::kNow) : copied);
}

/// Returns the changes that bring the entry back. A file with a change of anything but the tag's
/// own key is none of ours.
Result<std::vector<RegistryChange>, ItemError> ReadEntryChanges(platform::File& archive,
                                                                const TagParts& parts) {
  if (!parts.hasEntry) {
    return {};
  }
  TarReader tar(archive);
  if (!Find(tar, kEntry)) {
    return Failure(ItemError::kOther);
  }
  const auto file = tar.ReadAll(kMaxRegistryFileLength);
  if (!file) {
    return Failure(ItemError::kOther);
  }
  auto content = ParseRegistryFile(*file);
  const std::u16string key = EntryPath(parts.name);
  if (!content || !std::ranges::all_of(content->changes, [&](const RegistryChange& change) {
        return change.key == key || change.key.starts_with(key + u'\\');
      })) {
    return Failure(ItemError::kOther);
  }
  return std::move(content->changes);
}

Result<void, ItemError> UnpackEntry(platform::Registry& registry, platform::File& archive,
                                    const TagParts& parts) {
  if (!parts.hasEntry) {
    return {};
  }
  return ReadEntryChanges(archive, parts).and_then([&](const auto& changes) {
    return ApplyRegistryChanges(registry, changes).map_error([](const auto& failure) {
      return failure.store == RegistryError::kFull ? ItemError::kFull : ItemError::kOther;
    });
  });
}

Result<std::unique_ptr<platform::File>, FileError> OpenItem(platform::FileSystem& files,
                                                            std::u16string_view path) {
  return files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                           platform::FileCreation::kOpenExisting});
}

}  // namespace

std::string_view ToWord(DeletionReason reason) {
  return kReasonWords[static_cast<std::size_t>(reason)];
}

Result<void, ItemError> WriteItem(platform::FileSystem& files, platform::Registry& registry,
                                  std::u16string_view path, const TrashItem& item) {
  const auto target = files.OpenReplacement(path);
  if (!target) {
    return Failure(ToItemError(target.error()));
  }
  platform::File& file = (*target)->GetFile();
  TarWriter tar(file);
  // The bytes are flushed here. The name waits for Deletion::Seal, which does it once for all
  // copies.
  return WriteParts(files, registry, tar, item)
      .and_then([&] { return ToResult(file.Flush()); })
      .and_then([&] { return ToResult((*target)->Publish(platform::Durability::kLater)); });
}

Result<std::optional<TrashItem>, FileError> ReadItem(platform::FileSystem& files,
                                                     std::u16string_view path) {
  const auto file = OpenItem(files, path);
  if (!file && file.error() == FileError::kNotFound) {
    return std::nullopt;
  }
  if (!file) {
    return Failure(file.error());
  }
  TarReader tar(**file);
  const auto about = tar.Next().and_then([&](bool isThere) {
    return isThere && tar.GetName() == kAbout ? tar.ReadAll(kLongestAbout)
                                              : Failure(TarError::kTorn);
  });
  if (about) {
    return ParseAbout({reinterpret_cast<const char*>(about->data()), about->size()});
  }
  // No item of ours, or a torn one: the trash does without it.
  if (about.error() == TarError::kTorn) {
    return std::nullopt;
  }
  return Failure(FileError::kOther);
}

Result<TagEntry, ItemError> ReadItemEntry(platform::FileSystem& files, std::u16string_view path,
                                          const TagParts& parts) {
  const auto archive = OpenItem(files, path);
  if (!archive) {
    return Failure(ToItemError(archive.error()));
  }
  return ReadEntryChanges(**archive, parts).map([](const auto& changes) {
    TagEntry entry;
    for (const RegistryChange& change : changes) {
      if (change.kind != RegistryChange::Kind::kSetValue) {
        continue;
      }
      if (change.valueName == kContactValue) {
        entry.oid = ParseOid(TextOfValue(change.value));
      } else if (change.valueName == kPhoneTypeValue) {
        entry.phoneType = TextOfValue(change.value);
      }
    }
    return entry;
  });
}

std::string WriteJournal(const std::vector<TagParts>& tags) {
  std::string journal;
  for (const TagParts& parts : tags) {
    AppendParts(journal, parts);
  }
  return journal;
}

std::vector<TagParts> ParseJournal(std::string_view journal) {
  AboutReader reader(journal);
  std::vector<TagParts> tags;
  while (!reader.IsAtEnd()) {
    TagParts parts = reader.TakeParts();
    if (reader.HasFailed()) {
      break;
    }
    tags.push_back(std::move(parts));
  }
  return tags;
}

Result<void, ItemError> UnpackItem(platform::FileSystem& files, platform::Registry& registry,
                                   std::u16string_view path) {
  const auto item = ReadItem(files, path);
  if (!item || !*item) {
    return Failure(ItemError::kOther);
  }
  const auto archive = OpenItem(files, path);
  if (!archive) {
    return Failure(ToItemError(archive.error()));
  }
  const TagParts& parts = (*item)->parts;
  return UnpackFile(files, **archive, kRecording, kWaveFolder, parts.waveFile)
      .and_then([&] {
        return UnpackFile(files, **archive, kTemplate, kTemplateFolder, parts.templateFile);
      })
      .and_then([&] { return UnpackEntry(registry, **archive, parts); });
}

}  // namespace storage

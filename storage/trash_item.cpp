#include "storage/trash_item.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "backends/text/utf.h"
#include "storage/device_paths.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "storage/tar.h"

namespace storage {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

namespace {

// The members of an archive.
constexpr std::string_view kAbout = "about.txt";
constexpr std::string_view kEntry = "entry.reg";
constexpr std::string_view kRecording = "recording.wav";
constexpr std::string_view kTemplate = "template.st";

/// More than the texts of a tag can take.
constexpr std::uint64_t kLongestAbout = 65536;

constexpr std::array<std::string_view, 4> kReasonWords{"delete", "delete-all", "clean-up",
                                                       "repair"};

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

std::u16string PathIn(std::u16string_view folder, std::u16string_view name) {
  return std::u16string(folder).append(u"\\").append(name);
}

std::u16string TrashedEntryPath(std::u16string_view name) { return PathIn(kTagKey, name); }

ItemResult ToResult(const Result<void, FileError>& result) {
  if (result) {
    return ItemResult::kDone;
  }
  return result.error() == FileError::kDiskFull ? ItemResult::kFull : ItemResult::kFailed;
}

ItemResult ToResult(RegistryError error) {
  return error == RegistryError::kFull ? ItemResult::kFull : ItemResult::kFailed;
}

/// A name of the host may hold any byte but a zero; the end of a line must not be in a line.
void AppendLine(std::string& about, std::string_view word, std::u16string_view value) {
  std::string bytes = text::ToHostName(value);
  std::ranges::replace(bytes, '\n', ' ');
  about.append(word).append(bytes).append("\n");
}

std::string WriteAbout(const TrashItem& item) {
  std::string about;
  about.append(kDeletedLine).append(std::to_string(item.deletedAt)).append("\n");
  about.append(kByLine).append(ToWord(item.by)).append("\n");
  AppendLine(about, kNameLine, item.parts.name);
  AppendLine(about, kRecordingLine, item.parts.waveFile);
  AppendLine(about, kTemplateLine, item.parts.templateFile);
  about.append(kEntryLine).append(item.parts.hasEntry ? "1" : "0").append("\n");
  AppendLine(about, kTextLine, item.text);
  return about;
}

/// Takes the next line off `about`. Returns false if it does not begin with `word`.
bool TakeLine(std::string_view& about, std::string_view word, std::string_view& value) {
  const std::size_t end = about.find('\n');
  if (end == std::string_view::npos || !about.starts_with(word)) {
    return false;
  }
  value = about.substr(word.size(), end - word.size());
  about.remove_prefix(end + 1);
  return true;
}

/// Returns false as well if the name holds one of `separators`: it would lead out of its folder or
/// its key, and is none of ours.
bool TakeName(std::string_view& about, std::string_view word, std::u16string_view separators,
              std::u16string& name) {
  std::string_view value;
  if (!TakeLine(about, word, value)) {
    return false;
  }
  name = text::FromHostName(value);
  return name.find_first_of(separators) == std::u16string::npos;
}

bool ParseAbout(std::string_view about, TrashItem& item) {
  std::string_view value;
  if (!TakeLine(about, kDeletedLine, value)) {
    return false;
  }
  const auto number = std::from_chars(value.data(), value.data() + value.size(), item.deletedAt);
  if (number.ec != std::errc() || number.ptr != value.data() + value.size() ||
      !TakeLine(about, kByLine, value)) {
    return false;
  }
  const auto* const word = std::ranges::find(kReasonWords, value);
  if (word == kReasonWords.end()) {
    return false;
  }
  item.by = static_cast<DeletionReason>(word - kReasonWords.begin());
  if (!TakeName(about, kNameLine, kKeySeparators, item.parts.name) ||
      !TakeName(about, kRecordingLine, kFileSeparators, item.parts.waveFile) ||
      !TakeName(about, kTemplateLine, kFileSeparators, item.parts.templateFile) ||
      !TakeLine(about, kEntryLine, value)) {
    return false;
  }
  item.parts.hasEntry = value == "1";
  if (!TakeLine(about, kTextLine, value)) {
    return false;
  }
  item.text = text::FromHostName(value);
  return true;
}

/// Adds nothing for a tag without such a file.
ItemResult AddFile(platform::FileSystem& files, TarWriter& tar, std::string_view member,
                   std::u16string_view folder, const std::u16string& file, ItemResult inUse) {
  if (file.empty()) {
    return ItemResult::kDone;
  }
  // A companion that reads the file shares it.
  const auto source =
      files.Open(PathIn(folder, file), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                        platform::FileCreation::kOpenExisting});
  if (!source) {
    return source.error() == FileError::kSharingViolation ? inUse
                                                          : ToResult(Failure(source.error()));
  }
  return ToResult(tar.AddFile(member, **source));
}

ItemResult AddEntry(platform::Registry& registry, TarWriter& tar, std::u16string_view name) {
  const auto entry = WriteRegistryFile(registry, TrashedEntryPath(name));
  return entry ? ToResult(tar.Add(kEntry, *entry)) : ItemResult::kEntryUnread;
}

ItemResult WriteParts(platform::FileSystem& files, platform::Registry& registry, TarWriter& tar,
                      const TrashItem& item) {
  const std::string about = WriteAbout(item);
  ItemResult result = ToResult(tar.Add(kAbout, std::as_bytes(std::span(about))));
  if (result == ItemResult::kDone && item.parts.hasEntry) {
    result = AddEntry(registry, tar, item.parts.name);
  }
  if (result == ItemResult::kDone) {
    result = AddFile(files, tar, kRecording, kWaveFolder, item.parts.waveFile,
                     ItemResult::kRecordingInUse);
  }
  if (result == ItemResult::kDone) {
    result = AddFile(files, tar, kTemplate, kTemplateFolder, item.parts.templateFile,
                     ItemResult::kTemplateInUse);
  }
  return result == ItemResult::kDone ? ToResult(tar.End()) : result;
}

/// Goes to the member of that name. Returns false if there is none, or the archive is torn.
bool Find(TarReader& tar, std::string_view member) {
  auto next = tar.Next();
  while (next && *next && tar.GetName() != member) {
    next = tar.Next();
  }
  return next && *next;
}

Result<void, FileError> UnpackFile(platform::FileSystem& files, platform::File& archive,
                                   std::string_view member, const std::u16string& path) {
  TarReader tar(archive);
  if (!Find(tar, member)) {
    return Failure(FileError::kOther);
  }
  const auto target = files.OpenReplacement(path);
  if (!target) {
    return Failure(target.error());
  }
  const auto copied = tar.CopyTo((*target)->GetFile());
  return copied ? (*target)->Publish(platform::Durability::kNow) : copied;
}

/// Of the file's changes only those of the tag's own key are made.
ItemResult UnpackEntry(platform::Registry& registry, platform::File& archive,
                       std::u16string_view name) {
  TarReader tar(archive);
  if (!Find(tar, kEntry)) {
    return ItemResult::kFailed;
  }
  const auto file = tar.ReadAll(kMaxRegistryFileLength);
  if (!file) {
    return ItemResult::kFailed;
  }
  const auto content = ParseRegistryFile(*file);
  const std::u16string key = TrashedEntryPath(name);
  if (!content || !std::ranges::all_of(content->changes, [&](const RegistryChange& change) {
        return change.key == key || change.key.starts_with(key + u'\\');
      })) {
    return ItemResult::kFailed;
  }
  const auto failure = ApplyRegistryChanges(registry, content->changes);
  return failure ? ToResult(failure->store.value_or(RegistryError::kOther)) : ItemResult::kDone;
}

}  // namespace

std::string_view ToWord(DeletionReason reason) {
  return kReasonWords[static_cast<std::size_t>(reason)];
}

bool FindParts(platform::FileSystem& files, platform::Registry& registry, std::u16string_view name,
               TagParts& parts) {
  parts = {.name = std::u16string(name), .waveFile = {}, .templateFile = {}};
  const auto find = [&files](const std::u16string& path, std::u16string& file) {
    const auto search = files.Find(path);
    if (!search) {
      return search.error() == FileError::kNotFound;
    }
    const auto found = (*search)->Next();
    if (found && *found && !(*found)->isFolder) {
      file = (*found)->name;
    }
    return found.has_value();
  };
  if (!find(WavePath(name), parts.waveFile) || !find(TemplatePath(name), parts.templateFile)) {
    return false;
  }
  const platform::OpenedKey entry = registry.OpenKey(TrashedEntryPath(name));
  parts.hasEntry = entry.has_value();
  // A name that no key can have has no entry.
  return entry || entry.error() == RegistryError::kNotFound ||
         entry.error() == RegistryError::kInvalid;
}

PartsState GetState(platform::FileSystem& files, platform::Registry& registry,
                    const TagParts& parts) {
  std::size_t wanted = 0;
  std::size_t there = 0;
  const auto look = [&](std::u16string_view folder, const std::u16string& file) {
    if (file.empty()) {
      return true;
    }
    const auto search = files.Find(PathIn(folder, file));
    ++wanted;
    there += search ? 1U : 0U;
    return search || search.error() == FileError::kNotFound;
  };
  if (!look(kWaveFolder, parts.waveFile) || !look(kTemplateFolder, parts.templateFile)) {
    return PartsState::kUnknown;
  }
  if (parts.hasEntry) {
    const platform::OpenedKey entry = registry.OpenKey(TrashedEntryPath(parts.name));
    if (!entry && entry.error() != RegistryError::kNotFound) {
      return PartsState::kUnknown;
    }
    ++wanted;
    there += entry ? 1U : 0U;
  }
  if (there == 0) {
    return PartsState::kGone;
  }
  return there == wanted ? PartsState::kWhole : PartsState::kPartly;
}

ItemResult WriteItem(platform::FileSystem& files, platform::Registry& registry,
                     std::u16string_view path, const TrashItem& item) {
  const auto target = files.OpenReplacement(path);
  if (!target) {
    return ToResult(Failure(target.error()));
  }
  platform::File& file = (*target)->GetFile();
  TarWriter tar(file);
  const ItemResult result = WriteParts(files, registry, tar, item);
  if (result != ItemResult::kDone) {
    return result;
  }
  const auto flushed = file.Flush();
  return ToResult(flushed ? (*target)->Publish(platform::Durability::kLater) : flushed);
}

ItemRead ReadItem(platform::FileSystem& files, std::u16string_view path, TrashItem& item) {
  const auto file = files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                      platform::FileCreation::kOpenExisting});
  if (!file) {
    return file.error() == FileError::kNotFound ? ItemRead::kNone : ItemRead::kUnreadable;
  }
  TarReader tar(**file);
  const auto about = tar.Next().value_or(false) && tar.GetName() == kAbout
                         ? tar.ReadAll(kLongestAbout)
                         : Failure(FileError::kOther);
  if (!about) {
    return tar.HasFailed() ? ItemRead::kUnreadable : ItemRead::kNone;
  }
  const std::string_view text(reinterpret_cast<const char*>(about->data()), about->size());
  TrashItem read;
  if (!ParseAbout(text, read)) {
    return ItemRead::kNone;
  }
  item = std::move(read);
  return ItemRead::kDone;
}

ItemResult UnpackItem(platform::FileSystem& files, platform::Registry& registry,
                      std::u16string_view path) {
  TrashItem item;
  if (ReadItem(files, path, item) != ItemRead::kDone) {
    return ItemResult::kFailed;
  }
  const auto archive = files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                         platform::FileCreation::kOpenExisting});
  if (!archive) {
    return ToResult(Failure(archive.error()));
  }
  Result<void, FileError> unpacked;
  if (!item.parts.waveFile.empty()) {
    unpacked = UnpackFile(files, **archive, kRecording, WaveFilePath(item.parts.waveFile));
  }
  if (unpacked && !item.parts.templateFile.empty()) {
    unpacked =
        UnpackFile(files, **archive, kTemplate, PathIn(kTemplateFolder, item.parts.templateFile));
  }
  if (!unpacked || !item.parts.hasEntry) {
    return ToResult(unpacked);
  }
  return UnpackEntry(registry, **archive, item.parts.name);
}

}  // namespace storage

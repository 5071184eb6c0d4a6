#include "storage/backup.h"

#include <array>
#include <utility>

#include "storage/backup_archive.h"
#include "storage/device_paths.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "storage/store_contents.h"
#include "storage/tag_store.h"

// Makes a backup. The caller holds the tags, so what is copied belongs together. A part that cannot
// be read ends the backup: a file that calls itself a backup and lacks a tag would be found out
// only when it is needed.
namespace storage {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

namespace {

using Kind = BackupFailure::Kind;
using BackedUp = Result<void, BackupFailure>;

/// A companion that reads the file shares it.
constexpr platform::OpenMode kReadOnly{platform::FileAccess::kRead, platform::FileShare::kRead,
                                       platform::FileCreation::kOpenExisting};

BackedUp ToBackedUp(const Result<void, FileError>& written) {
  return written.map_error([](FileError error) {
    return BackupFailure{.kind = Kind::kTarget, .tag = {}, .file = error};
  });
}

/// Copies the store into an archive, part by part.
class BackupRun {
 public:
  BackupRun(platform::FileSystem& files, platform::Registry& registry, platform::File& target)
      : m_files(files), m_registry(registry), m_writer(target) {}

  BackedUp Begin(std::int64_t unixTime) { return ToBackedUp(m_writer.Begin(unixTime)); }

  BackedUp AddSettings() {
    // A key that is not there is no failure: a store that was never set up has none of them.
    for (const BackupSettings settings :
         {BackupSettings::kConnection, BackupSettings::kMathematics, BackupSettings::kContacts}) {
      const auto file = WriteRegistryFile(m_registry, KeyOf(settings));
      if (!file && file.error() == RegistryError::kNotFound) {
        continue;
      }
      if (!file) {
        return Failure(BackupFailure{.kind = Kind::kSettings, .tag = {}, .store = file.error()});
      }
      if (auto added = ToBackedUp(m_writer.AddSettings(settings, *file)); !added) {
        return added;
      }
    }
    return {};
  }

  BackedUp AddLanguageFile() {
    const auto source = m_files.Open(kLanguageFile, kReadOnly);
    if (!source) {
      return source.error() == FileError::kNotFound
                 ? BackedUp()
                 : Failure(BackupFailure{.kind = Kind::kLanguage, .tag = {}});
    }
    return ToBackedUp(m_writer.AddLanguageFile(**source));
  }

  BackedUp AddTags() {
    const auto list = TagStore(m_files, m_registry).ListNames();
    if (!list) {
      return Failure(BackupFailure{.kind = Kind::kSettings, .tag = {}, .store = list.error()});
    }
    for (const std::u16string& name : list->names) {
      if (auto added = AddTag(name); !added) {
        return added;
      }
    }
    return {};
  }

  Result<BackupMade, BackupFailure> End() {
    return ToBackedUp(m_writer.End()).map([this] { return std::move(m_made); });
  }

 private:
  BackedUp AddTag(const std::u16string& name) {
    const auto entry = WriteRegistryFile(m_registry, EntryPath(name));
    // An entry of another program, with a name or a value that no archive can hold. The caller
    // names it to the user, and the rest is saved.
    if (!BackupWriter::Fits(name) || (!entry && entry.error() == RegistryError::kInvalid)) {
      m_made.leftOut.push_back(name);
      return {};
    }
    if (!entry) {
      return Failure(BackupFailure{.kind = Kind::kSettings, .tag = name, .store = entry.error()});
    }
    ++m_made.tagCount;
    return ToBackedUp(m_writer.AddEntry(name, *entry))
        .and_then([&] { return AddFile(name, WavePath(name), &BackupWriter::AddRecording); })
        .and_then([&] { return AddFile(name, TemplatePath(name), &BackupWriter::AddTemplate); });
  }

  /// Adds nothing if the tag has no such file.
  BackedUp AddFile(const std::u16string& name, const std::u16string& path,
                   BackupWriter::Written (BackupWriter::*add)(std::u16string_view,
                                                              platform::File&)) {
    const auto source = m_files.Open(path, kReadOnly);
    if (!source) {
      return source.error() == FileError::kNotFound
                 ? BackedUp()
                 : Failure(BackupFailure{.kind = Kind::kTag, .tag = name});
    }
    return ToBackedUp((m_writer.*add)(name, **source));
  }

  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  BackupWriter m_writer;
  BackupMade m_made;
};

}  // namespace

Result<BackupMade, BackupFailure> WriteBackup(platform::FileSystem& files,
                                              platform::Registry& registry, platform::Clock& clock,
                                              std::u16string_view path, BackupScope scope) {
  const auto target = files.OpenReplacement(path);
  if (!target) {
    return Failure(BackupFailure{.kind = Kind::kTarget, .tag = {}, .file = target.error()});
  }
  // The archive has no name until it is whole. If anything fails on the way, an earlier backup at
  // this path stays what it was.
  BackupRun run(files, registry, (*target)->GetFile());
  auto made = run.Begin(clock.GetUnixTime())
                  .and_then([&run] { return run.AddSettings(); })
                  .and_then([&run] { return run.AddLanguageFile(); })
                  .and_then([&] { return scope == BackupScope::kAll ? run.AddTags() : BackedUp(); })
                  .and_then([&run] { return run.End(); });
  if (!made) {
    return made;
  }
  return ToBackedUp((*target)->Publish(platform::Durability::kNow)).map([&made] {
    return std::move(*made);
  });
}

BackupTarget LookAtBackupTarget(platform::FileSystem& files, std::u16string_view path) {
  const auto file = files.Open(path, kReadOnly);
  if (!file) {
    return file.error() == FileError::kNotFound ? BackupTarget::kNothing : BackupTarget::kOther;
  }
  return LooksLikeBackup(**file).value_or(false) ? BackupTarget::kBackup : BackupTarget::kOther;
}

}  // namespace storage

// The back ends of a Linux desktop.

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "backends/ebook/door.h"
#include "backends/posix/host_paths.h"
#include "backends/posix/library.h"
#include "backends/posix/posix_file_system.h"
#include "backends/posix/posix_threads.h"
#include "backends/pulse/pulse_inputs.h"
#include "backends/pulse/pulse_sound.h"
#include "backends/sqlite/connection.h"
#include "backends/sqlite/sqlite_registry.h"
#include "backends/text/utf.h"
#include "host/machine/places.h"
#include "host/machine/system.h"
#include "storage/registry_keys.h"
#include "tags/page_one.h"

namespace machine {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRootName = "voxtrel";

/// A folder that a variable names counts only if it does not depend on the current folder.
std::optional<fs::path> GetFolder(const char* variable) {
  // Read before there is a second thread.
  const char* const value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
  fs::path folder = value == nullptr ? "" : value;
  return folder.is_absolute() ? std::optional(std::move(folder)) : std::nullopt;
}

}  // namespace

fs::path FindOwnFile() { return posix::FindOwnFile(); }

std::optional<fs::path> FindDefaultRoot() {
  if (const auto data = GetFolder("XDG_DATA_HOME")) {
    return *data / kRootName;
  }
  if (const auto home = GetFolder("HOME")) {
    return *home / ".local/share" / kRootName;
  }
  return std::nullopt;
}

// A program that may write there could give somebody another telephone number. So a folder that is
// not the user's own, or in which others may write, is not used. Its name is not followed if it is
// a link.
std::optional<fs::path> MakeCacheFolder() {
  std::optional<fs::path> folder = GetFolder("XDG_CACHE_HOME");
  if (!folder) {
    folder = GetFolder("HOME");
    if (!folder) {
      return std::nullopt;
    }
    *folder /= ".cache";
  }
  *folder /= "voxtrel";
  struct stat status {};
  const bool isThere =
      ::lstat(folder->c_str(), &status) == 0 ||
      (posix::MakeFolders(folder->native()) && ::lstat(folder->c_str(), &status) == 0);
  const bool isOwn = isThere && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
                     (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  return isOwn ? folder : std::nullopt;
}

std::u16string FindDefaultContacts(platform::FileSystem& /*files*/) { return u"\\contacts.vcf"; }

void MakeRootFor(const fs::path& root, std::vector<std::u16string> paths) {
  // The database and the files that SQLite makes next to it.
  for (const std::u16string_view suffix : {u"", u"-wal", u"-shm", u"-journal"}) {
    paths.push_back(u"\\" + text::FromHostName(sqlite::kDatabaseName) + std::u16string(suffix));
  }
  static_cast<void>(posix::MakeFolders(root.lexically_normal().native()));
  posix::PosixFileSystem files(ToName(root));
  for (const std::u16string& path : paths) {
    files.KeepFromOthers(path);
  }
  files.KeepFromOthers(u"\\" +
                       text::FromHostName(posix::PosixThreads::LockName(tags::kInstanceMutex)));
}

std::u16string ToName(const fs::path& path) { return text::FromHostName(path.native()); }

std::string ToHostText(std::u16string_view name) { return text::ToHostName(name); }

std::unique_ptr<platform::FileSystem> MakeFiles(const fs::path& root) {
  return std::make_unique<posix::PosixFileSystem>(ToName(root));
}

std::unique_ptr<platform::Threads> MakeThreads(const fs::path& root) {
  return std::make_unique<posix::PosixThreads>(root.native());
}

std::unique_ptr<platform::Clock> MakeClock() { return std::make_unique<posix::PosixClock>(); }

std::unique_ptr<platform::Registry> MakeRegistry(const fs::path& root, RegistryUse use) {
  sqlite::RegistryOptions options;
  options.initialKeys.assign(storage::kInstalledKeys.begin(), storage::kInstalledKeys.end());
  options.access = use == RegistryUse::kRead ? sqlite::Access::kRead : sqlite::Access::kChange;
  options.findSoundMark = [] {
    auto mark = MakeCacheFolder();
    if (mark) {
      *mark /= "sound";
    }
    return mark;
  };
  return std::make_unique<sqlite::SqliteRegistry>(root / sqlite::kDatabaseName, options);
}

std::string NameOfRegistry(const fs::path& root) { return (root / sqlite::kDatabaseName).string(); }

fs::path FindRegistryLink(const fs::path& root) {
  return sqlite::FindLink(root / sqlite::kDatabaseName);
}

std::unique_ptr<platform::WaveIn> MakeMicrophone(ChosenMicrophone getChosen) {
  return std::make_unique<pulse::PulseWaveIn>(std::move(getChosen));
}

std::unique_ptr<platform::WaveInputs> MakeWaveInputs(ChosenMicrophone getChosen) {
  return std::make_unique<pulse::PulseWaveInputs>(std::move(getChosen));
}

std::unique_ptr<platform::WaveOut> MakeLoudspeaker() {
  return std::make_unique<pulse::PulseWaveOut>();
}

vcard::DesktopSource::Library LoadDesktopBooks() {
  const auto found = posix::LoadFunction(
      Places(posix::FindOwnFile()).GetLibrary(ebook::kLibraryName, "backends/ebook"),
      ebook::kFunctionName);
  return found.map(
      [](void* read) { return reinterpret_cast<platform::ReadDesktopBooksFunction*>(read); });
}

}  // namespace machine

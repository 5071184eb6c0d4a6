#include "applet/backends.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "applet/late_sound.h"
#include "backends/loading/loaded_library.h"
#include "backends/posix/posix_file.h"
#include "backends/sqlite/sqlite_registry.h"
#include "backends/text/utf.h"
#include "backends/wave_file/file_wave_in.h"
#include "backends/wave_file/file_wave_out.h"
#include "platform/desktop_books.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tags/oids_in_use.h"
#include "tags/page_one.h"

namespace applet {
namespace {

/// Below a device that is no folder: nothing can be found or made there.
constexpr const char* kNowhere = "/dev/null/voxtrel";

/// Empty where it is not set.
std::string GetVariable(const char* name) {
  // Read once, before there is a second thread.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

/// A folder named by a variable counts only where it does not depend on the current folder.
std::optional<std::filesystem::path> GetFolder(const char* variable) {
  std::filesystem::path folder = GetVariable(variable);
  return folder.is_absolute() ? std::optional(std::move(folder)) : std::nullopt;
}

/// "voxtrel" in the folder where the user's programs keep their data; nothing for a user without a
/// home.
std::optional<std::filesystem::path> FindDefaultRoot() {
  if (const auto data = GetFolder("XDG_DATA_HOME")) {
    return *data / "voxtrel";
  }
  if (const auto home = GetFolder("HOME")) {
    return *home / ".local/share/voxtrel";
  }
  return std::nullopt;
}

std::optional<std::filesystem::path> FindRoot(const BackendOptions& options) {
  if (options.root.empty()) {
    return FindDefaultRoot();
  }
  std::error_code error;
  std::filesystem::path root = std::filesystem::absolute(options.root, error);
  return error ? std::nullopt : std::optional(std::move(root));
}

vcard::DesktopSource::Library LoadDesktopBooks() {
  loading::LoadedFunction found =
      loading::LoadDoor(platform::kDesktopBooksLibrary, "ebook", platform::kReadDesktopBooksName);
  return {reinterpret_cast<platform::ReadDesktopBooksFunction*>(found.address),
          std::move(found.reason)};
}

}  // namespace

BackendOptions ReadBackendOptions() {
  return {GetVariable("VOXTREL_ROOT"), GetVariable("VOXTREL_MICROPHONE"),
          GetVariable("VOXTREL_SPEAKER"), GetVariable("VOXTREL_CONTACTS")};
}

Backends::Backends(const BackendOptions& options)
    : m_options(options), m_desktop(LoadDesktopBooks) {}

Backends::~Backends() = default;

const std::optional<std::filesystem::path>& Backends::FindRootOnce() const {
  if (!m_root) {
    m_root.emplace(FindRoot(m_options));
  }
  return *m_root;
}

bool Backends::HasRoot() const { return FindRootOnce().has_value(); }

std::filesystem::path Backends::GetRoot() const { return FindRootOnce().value_or(kNowhere); }

std::filesystem::path Backends::GetRegistryPath() const {
  return GetRoot() / sqlite::kDatabaseName;
}

void Backends::MakeRoot() const {
  if (m_access == sqlite::Access::kRead) {
    return;
  }
  static_cast<void>(posix::MakeFolders(GetRoot().lexically_normal().native()));
  // What an earlier version left to the umask.
  posix::PosixFileSystem files(ToSystemPath(GetRoot().native()));
  for (const std::u16string_view path :
       {std::u16string_view(u"\\"), storage::kProgramFilesFolder, storage::kMakerFolder,
        storage::kInstallFolder, storage::kWaveFolder, storage::kTemplateFolder}) {
    files.KeepFromOthers(path);
  }
  for (const std::u16string_view suffix : {u"", u"-wal", u"-shm", u"-journal"}) {
    files.KeepFromOthers(u"\\" + text::FromHostName(sqlite::kDatabaseName) +
                         std::u16string(suffix));
  }
  files.KeepFromOthers(u"\\" +
                       text::FromHostName(posix::PosixThreads::LockName(tags::kInstanceMutex)));
}

std::u16string Backends::ToSystemPath(const std::string& name) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(name, error);
  if (!error) {
    return text::FromHostName(path.native());
  }
  // No name, or the current folder was deleted: whoever opens this reports it. The dot keeps a name
  // that begins with a backslash from being a path of the device.
  return name.empty() ? std::u16string() : text::FromHostName("./" + name);
}

std::string Backends::ToHostPath(std::u16string_view devicePath) const {
  std::string path = text::ToHostName(devicePath);
  std::ranges::replace(path, '\\', '/');
  return GetRoot().native() + path;
}

platform::FileSystem& Backends::GetFiles() {
  if (!m_files) {
    m_files = std::make_unique<posix::PosixFileSystem>(ToSystemPath(GetRoot().native()));
  }
  return *m_files;
}

platform::WaveIn& Backends::GetWaveIn() {
  if (!m_waveIn) {
    if (m_options.microphone.empty()) {
      m_waveIn = std::make_unique<LateWaveIn>();
    } else {
      m_waveIn =
          std::make_unique<wave_file::FileWaveIn>(GetFiles(), ToSystemPath(m_options.microphone));
    }
  }
  return *m_waveIn;
}

platform::WaveOut& Backends::GetWaveOut() {
  if (!m_waveOut) {
    if (m_options.speaker.empty()) {
      m_waveOut = std::make_unique<LateWaveOut>();
    } else {
      m_waveOut =
          std::make_unique<wave_file::FileWaveOut>(GetFiles(), ToSystemPath(m_options.speaker));
    }
  }
  return *m_waveOut;
}

platform::Threads& Backends::GetThreads() {
  if (!m_threads) {
    m_threads = std::make_unique<posix::PosixThreads>(GetRoot().native());
  }
  return *m_threads;
}

platform::Registry& Backends::GetRegistry() {
  if (!m_registry) {
    sqlite::RegistryOptions options;
    options.initialKeys.assign(storage::kInstalledKeys.begin(), storage::kInstalledKeys.end());
    options.access = m_access;
    m_registry = std::make_unique<sqlite::SqliteRegistry>(GetRegistryPath(), options);
  }
  return *m_registry;
}

vcard::AddressBooks& Backends::GetContacts(platform::Threads& threads) {
  if (!m_contacts) {
    vcard::AddressBooks::Options options;
    m_waitedDesktop = std::make_unique<vcard::BackgroundSource>(m_desktop, threads);
    options.desktop = m_waitedDesktop.get();
    if (!m_options.contacts.empty()) {
      options.choice = vcard::ParseChoice(text::FromHostName(m_options.contacts));
    }
    options.changesNothing = m_access == sqlite::Access::kRead;
    options.nothingFound = [this] {
      if (m_noContacts) {
        m_noContacts();
      }
    };
    options.oidsInUse = [this] {
      MakeRoot();
      return tags::FindOidsInUse(storage::TagStore(GetFiles(), GetRegistry()));
    };
    m_contacts = std::make_unique<vcard::AddressBooks>(GetFiles(), GetRegistry(), options);
  }
  return *m_contacts;
}

}  // namespace applet

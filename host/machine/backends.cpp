#include "host/machine/backends.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>
#include <vector>

#include "backends/text/host_path.h"
#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "backends/wave_file/file_sound.h"
#include "host/machine/system.h"
#include "storage/device_paths.h"
#include "storage/microphone_choice.h"
#include "storage/tag_store.h"
#include "tags/page_one.h"
#include "tags/tag_reader.h"

// The one place that joins back ends for programs. What differs between systems is in system.h, so
// nothing here names a system.
namespace machine {
namespace {

/// Below a device that is no folder: nothing can be found or made there.
constexpr const char* kNowhere = "/dev/null/voxtrel";

/// Returns "" if it is not set.
std::string GetVariable(const char* name) {
  // Read once, before there is a second thread.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

std::optional<std::filesystem::path> FindRoot(const Options& options) {
  if (options.root.empty()) {
    return FindDefaultRoot();
  }
  std::error_code error;
  // Made absolute once, so that a later change of the current folder moves no tags.
  std::filesystem::path root = std::filesystem::absolute(text::ToHostPath(options.root), error);
  return error ? std::nullopt : std::optional(std::move(root));
}

/// Returns the path from the root of the file system on. The library's own function takes the dot
/// off the end of a folder's name on Windows.
std::filesystem::path MakeAbsolute(const std::filesystem::path& path, std::error_code& error) {
  return path.is_absolute() ? path : std::filesystem::current_path(error) / path;
}

}  // namespace

Options ReadOptions() {
  return {GetVariable("VOXTREL_ROOT"), GetVariable("VOXTREL_MICROPHONE"),
          GetVariable("VOXTREL_SPEAKER"), GetVariable("VOXTREL_CONTACTS")};
}

// Each back end is made when it is first asked for. So a command on plain files opens no settings
// and no sound, and the options may still change until then.
Backends::Backends(const Options& options)
    : m_options(options), m_clock(MakeClock()), m_desktop(LoadDesktopBooks) {}

Backends::~Backends() = default;

const std::optional<std::filesystem::path>& Backends::FindRootOnce() const {
  if (!m_root) {
    m_root.emplace(FindRoot(m_options));
  }
  return *m_root;
}

bool Backends::HasRoot() const { return FindRootOnce().has_value(); }

std::filesystem::path Backends::GetRoot() const { return FindRootOnce().value_or(kNowhere); }

std::string Backends::GetRegistryName() const { return NameOfRegistry(GetRoot()); }

void Backends::MakeRoot() const {
  if (m_changesNothing) {
    return;
  }
  // An earlier version left the rights of these to the umask.
  std::vector<std::u16string> paths{u"\\"};
  for (const std::u16string_view folder :
       {storage::kProgramFilesFolder, storage::kMakerFolder, storage::kInstallFolder,
        storage::kWaveFolder, storage::kTemplateFolder}) {
    paths.emplace_back(folder);
  }
  MakeRootFor(GetRoot(), std::move(paths));
}

std::u16string Backends::ToSystemPath(const std::string& name) {
  std::error_code error;
  const std::filesystem::path path = MakeAbsolute(text::ToHostPath(name), error);
  if (!name.empty() && !error) {
    return ToName(path);
  }
  // There is no name, or the current folder was deleted: the code that opens this reports it. The
  // dot keeps a name that begins with a backslash from being a path of the device.
  return name.empty() ? std::u16string() : text::FromHostName("./" + name);
}

std::string Backends::ToHostPath(std::u16string_view devicePath) const {
  std::u16string path(devicePath);
  std::ranges::replace(path, u'\\', u'/');
  return ToHostText(ToName(GetRoot()) + path);
}

std::string Backends::GetDefaultContacts() {
  const std::u16string path = FindDefaultContacts(GetFiles());
  return text::IsDevicePath(path) ? ToHostPath(path) : ToHostText(path);
}

platform::FileSystem& Backends::GetFiles() {
  if (!m_files) {
    m_files = MakeFiles(GetRoot());
  }
  return *m_files;
}

platform::WaveIn& Backends::GetWaveIn() {
  if (!m_waveIn) {
    if (m_options.microphone.empty()) {
      m_waveIn = MakeMicrophone(MicrophoneReader());
    } else {
      m_waveIn =
          std::make_unique<wave_file::FileWaveIn>(GetFiles(), ToSystemPath(m_options.microphone));
    }
  }
  return *m_waveIn;
}

platform::WaveInputs& Backends::GetWaveInputs() {
  if (!m_waveInputs) {
    m_waveInputs = MakeWaveInputs(MicrophoneReader());
  }
  return *m_waveInputs;
}

// Read each time, since another program may have changed it. The settings are opened for reading
// only and by themselves: recording changes nothing, and it has a thread of its own.
std::function<std::u16string()> Backends::MicrophoneReader() const {
  return [root = GetRoot()] {
    return storage::ReadMicrophone(*MakeRegistry(root, RegistryUse::kRead));
  };
}

platform::WaveOut& Backends::GetWaveOut() {
  if (!m_waveOut) {
    if (m_options.speaker.empty()) {
      m_waveOut = MakeLoudspeaker();
    } else {
      m_waveOut =
          std::make_unique<wave_file::FileWaveOut>(GetFiles(), ToSystemPath(m_options.speaker));
    }
  }
  return *m_waveOut;
}

platform::Threads& Backends::GetThreads() {
  if (!m_threads) {
    m_threads = MakeThreads(GetRoot());
  }
  return *m_threads;
}

platform::Registry& Backends::GetRegistry() {
  if (!m_registry) {
    m_registry =
        MakeRegistry(GetRoot(), m_changesNothing ? RegistryUse::kRead : RegistryUse::kChange);
  }
  return *m_registry;
}

vcard::AddressBooks& Backends::GetContacts(platform::Threads& threads) {
  if (!m_contacts) {
    vcard::AddressBooks::Options options;
    // The desktop's address books can keep a caller waiting for seconds, so they are read on a
    // thread of their own.
    m_waitedDesktop = std::make_unique<vcard::BackgroundSource>(m_desktop, threads);
    options.desktop = m_waitedDesktop.get();
    if (!m_options.contacts.empty()) {
      options.choice = vcard::ParseChoice(text::FromHostName(m_options.contacts));
    }
    options.defaultPath = FindDefaultContacts(GetFiles());
    options.changesNothing = m_changesNothing;
    options.openCache = [this] {
      const auto folder = m_cache ? std::nullopt : MakeCacheFolder();
      if (folder) {
        m_cache = MakeFiles(*folder);
      }
      return m_cache.get();
    };
    options.nothingFound = [this] {
      if (m_noContacts) {
        m_noContacts();
      }
    };
    options.oidsInUse = [this] {
      MakeRoot();
      // Without a group, each entry of a tag would be some transactions of its own.
      const auto group = platform::RegistryGroup::BeginReading(GetRegistry());
      return tags::FindOidsInUse(storage::TagStore(GetFiles(), GetRegistry()));
    };
    m_contacts = std::make_unique<vcard::AddressBooks>(GetFiles(), GetRegistry(), options);
  }
  return *m_contacts;
}

}  // namespace machine

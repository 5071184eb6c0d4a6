#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "backends/posix/posix_clock.h"
#include "backends/posix/posix_file_system.h"
#include "backends/posix/posix_threads.h"
#include "backends/sqlite/connection.h"
#include "backends/vcard/address_books.h"
#include "backends/vcard/background_source.h"
#include "backends/vcard/desktop_source.h"
#include "platform/registry.h"
#include "platform/wave_in.h"
#include "platform/wave_out.h"

namespace applet {

struct BackendOptions {
  std::string root;        ///< Empty: the default below the XDG data folder.
  std::string microphone;  ///< Empty: the default input of the sound server.
  std::string speaker;     ///< Empty: the default output of the sound server.
  std::string contacts;    ///< "eds", or a vCard file or folder; empty: the one chosen last.
};

/// Options as the environment of the process gives them: VOXTREL_ROOT, VOXTREL_MICROPHONE,
/// VOXTREL_SPEAKER and VOXTREL_CONTACTS, empty where unset. To be called before there is a second
/// thread.
[[nodiscard]] BackendOptions ReadBackendOptions();

/// The real back ends of this machine, each made when it is first asked for. What the user sees is
/// not among them: every host has its own.
class Backends {
 public:
  /// `options` outlive this, and are read when something is first asked for.
  explicit Backends(const BackendOptions& options);
  Backends(const Backends&) = delete;
  Backends& operator=(const Backends&) = delete;
  ~Backends();

  /// From now on nothing is changed: settings are only read, no address book is remembered, no
  /// folder is made. Missing settings count as new ones. Call it before the registry or the
  /// contacts are used.
  void ChangeNothing() { m_access = sqlite::Access::kRead; }

  /// Whether there is a folder to stand for the device's root: none where no option names one and
  /// the user has no home folder. Device paths lead nowhere then.
  [[nodiscard]] bool HasRoot() const;
  [[nodiscard]] std::filesystem::path GetRoot() const;
  [[nodiscard]] std::filesystem::path GetRegistryPath() const;

  [[nodiscard]] platform::FileSystem& GetFiles();
  [[nodiscard]] platform::WaveIn& GetWaveIn();
  [[nodiscard]] platform::WaveOut& GetWaveOut();
  [[nodiscard]] platform::Threads& GetThreads();
  [[nodiscard]] platform::Clock& GetClock() { return m_clock; }

  /// The settings below the root folder.
  [[nodiscard]] platform::Registry& GetRegistry();
  /// The user's contacts. Logging on to other ones than the recorded tags are for fails. While a
  /// server is asked, the log-on waits as `threads` have it, which outlive this or its last log-on.
  [[nodiscard]] vcard::AddressBooks& GetContacts(platform::Threads& threads);

  /// What happens when contacts are looked for and nobody ever chose or recorded any. Nothing,
  /// unless this is called.
  void OnNoContacts(std::function<void()> tell) { m_noContacts = std::move(tell); }

  /// If anything may be changed: makes the root folder if it is missing, and takes from other users
  /// every right to what the applet keeps there. If that fails, the code that needs the folder
  /// reports it.
  void MakeRoot() const;

  /// Where a device path leads on this machine.
  [[nodiscard]] std::string ToHostPath(std::u16string_view devicePath) const;

  /// The path under which the files know a name that the user gave, relative ones from the current
  /// folder.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name);

 private:
  [[nodiscard]] const std::optional<std::filesystem::path>& FindRootOnce() const;

  const BackendOptions& m_options;
  sqlite::Access m_access = sqlite::Access::kChange;
  /// Looked for once: neither the environment nor the current folder moves it later.
  mutable std::optional<std::optional<std::filesystem::path>> m_root;
  std::unique_ptr<posix::PosixFileSystem> m_files;
  std::unique_ptr<platform::Registry> m_registry;
  vcard::DesktopSource m_desktop;
  std::unique_ptr<vcard::BackgroundSource> m_waitedDesktop;
  std::function<void()> m_noContacts;
  std::unique_ptr<vcard::AddressBooks> m_contacts;
  std::unique_ptr<platform::WaveIn> m_waveIn;
  std::unique_ptr<platform::WaveOut> m_waveOut;
  std::unique_ptr<posix::PosixThreads> m_threads;
  posix::PosixClock m_clock;
};

}  // namespace applet

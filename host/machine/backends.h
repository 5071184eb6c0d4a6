#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "backends/vcard/address_books.h"
#include "backends/vcard/contact_source.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/threads.h"
#include "platform/wave_devices.h"
#include "platform/wave_inputs.h"

namespace machine {

/// What the user may choose about the machine.
struct Options {
  std::string root;        ///< Empty: "voxtrel" in the folder for the data of programs.
  std::string microphone;  ///< A wave file. Empty: the chosen input of the sound server.
  std::string speaker;     ///< A wave file. Empty: the default output of the sound server.
  std::string contacts;    ///< "eds", or a vCard file or folder. Empty: the one chosen last.
};

/// Returns the options that the environment of the process gives: VOXTREL_ROOT, VOXTREL_MICROPHONE,
/// VOXTREL_SPEAKER and VOXTREL_CONTACTS. One that is not set is empty. Call it before there is a
/// second thread.
[[nodiscard]] Options ReadOptions();

/// The back ends of this machine that every program shares. Each is made when it is first asked
/// for. What the user sees is not among them, since every program has its own.
class Backends {
 public:
  /// `options` outlive this. They are read when something is first asked for.
  explicit Backends(const Options& options);
  Backends(const Backends&) = delete;
  Backends& operator=(const Backends&) = delete;
  ~Backends();

  /// From now on nothing is changed: settings are only read, no address book is remembered, no
  /// folder is made. Missing settings count as new ones. Call it before the registry or the
  /// contacts are used.
  void ChangeNothing() { m_changesNothing = true; }

  /// Returns whether there is a folder to stand for the device's root. There is none if no option
  /// names one and the user has no home folder. Device paths lead nowhere then.
  [[nodiscard]] bool HasRoot() const;
  [[nodiscard]] std::filesystem::path GetRoot() const;
  /// Returns the place of the settings in words of this system, such as the path of their file.
  [[nodiscard]] std::string GetRegistryName() const;

  [[nodiscard]] platform::FileSystem& GetFiles();
  [[nodiscard]] platform::WaveIn& GetWaveIn();
  /// Returns the inputs of the sound server, also if a wave file stands for the microphone.
  [[nodiscard]] platform::WaveInputs& GetWaveInputs();
  [[nodiscard]] platform::WaveOut& GetWaveOut();
  [[nodiscard]] platform::Threads& GetThreads();
  [[nodiscard]] platform::Clock& GetClock() { return *m_clock; }

  /// Returns the settings below the root folder.
  [[nodiscard]] platform::Registry& GetRegistry();

  /// Returns the user's contacts. A log-on fails if the recorded tags are for other contacts. While
  /// a server is asked, the log-on waits on `threads`, which outlive the last log-on.
  [[nodiscard]] vcard::AddressBooks& GetContacts(platform::Threads& threads);

  /// Sets what is called if contacts are looked for, and the user never chose any and has no tag.
  void OnNoContacts(std::function<void()> report) { m_noContacts = std::move(report); }

  /// If anything may be changed: makes the root folder if it is missing, and takes from other users
  /// every right to what the applet keeps there. If that fails, the code that needs the folder
  /// reports it.
  void MakeRoot() const;

  /// Returns the vCard file or folder of this machine that is read if the user chose none.
  [[nodiscard]] std::string GetDefaultContacts();

  /// Returns where a device path leads on this machine.
  [[nodiscard]] std::string ToHostPath(std::u16string_view devicePath) const;

  /// Returns the path under which the files know a name that the user gave. A relative one starts
  /// from the current folder.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name);

 private:
  [[nodiscard]] const std::optional<std::filesystem::path>& FindRootOnce() const;
  /// Returns what reads the choice of the user. It may be called on any thread.
  [[nodiscard]] std::function<std::u16string()> MicrophoneReader() const;

  const Options& m_options;
  bool m_changesNothing = false;
  /// Looked for once: neither the environment nor the current folder moves it later.
  mutable std::optional<std::optional<std::filesystem::path>> m_root;
  const std::unique_ptr<platform::Clock> m_clock;
  std::unique_ptr<platform::FileSystem> m_files;
  std::unique_ptr<platform::Registry> m_registry;
  std::unique_ptr<platform::FileSystem> m_cache;
  vcard::DesktopSource m_desktop;
  std::unique_ptr<vcard::BackgroundSource> m_waitedDesktop;
  std::function<void()> m_noContacts;
  std::unique_ptr<vcard::AddressBooks> m_contacts;
  std::unique_ptr<platform::WaveIn> m_waveIn;
  std::unique_ptr<platform::WaveInputs> m_waveInputs;
  std::unique_ptr<platform::WaveOut> m_waveOut;
  std::unique_ptr<platform::Threads> m_threads;
};

}  // namespace machine

#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "backends/vcard/address_books.h"
#include "host/machine/backends.h"
#include "platform/clock.h"
#include "platform/platform.h"
#include "platform/registry.h"
#include "resources/report_strings.h"

namespace session {

/// What a user can do something about in more than one way, so that each program has its own
/// advice.
enum class Matter : std::uint8_t {
  kNoRoot,          ///< No folder for the voice tags can be named.
  kNoDesktopBooks,  ///< The desktop's address books do not answer.
  kUnreadableAddressBook,
  kNoContacts,  ///< Nobody chose contacts, and there are none to be found.
};

/// Takes what a session has to say, and decides for the user. Called on the session's thread, and
/// for message boxes on the thread that shows the box.
class Outlet {
 public:
  Outlet() = default;
  Outlet(const Outlet&) = delete;
  Outlet& operator=(const Outlet&) = delete;
  virtual ~Outlet() = default;

  /// What was asked for was not done. A sentence without a full stop.
  virtual void ShowFailure(std::string_view sentence) = 0;
  /// What the user should know all the same. A sentence without a full stop.
  virtual void ShowWarning(std::string_view sentence) = 0;
  /// A message box of the pages that asks nothing.
  virtual void ShowMessage(const headless::ShownMessage& message) = 0;
  /// Returns whether the user agrees to what a message box asks.
  [[nodiscard]] virtual bool AgreesTo(const platform::MessageBox& question) = 0;
  /// Waits for the end of the dialog that computes every template again. Once that has failed,
  /// nobody else closes the dialog.
  virtual void WatchReinit(headless::HeadlessDialog& window) = 0;
  /// Returns what the user can do, with the punctuation that comes before it. Returns "" if there
  /// is nothing to say.
  [[nodiscard]] virtual std::string Advise(Matter matter) const = 0;
};

/// The clock of a session. The pages sleep so that a user can speak, listen, or see a bar move. If
/// files stand for microphone and speaker, or a waiting dialog has no window, nobody needs that
/// time: within a QuickScope each sleep takes a hundredth of it, and the tick count moves on by the
/// whole of it. Threads still take turns as they do in the window. May be called from any thread.
class SessionClock final : public platform::Clock {
 public:
  /// `clock` outlives this.
  explicit SessionClock(platform::Clock& clock) : m_clock(clock) {}

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_clock.GetTickCount() + m_skipped; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_clock.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override;

 private:
  friend class QuickScope;

  platform::Clock& m_clock;
  std::atomic<std::uint32_t> m_skipped = 0;  ///< Milliseconds that nobody slept.
  std::atomic<bool> m_isQuick = false;
};

/// Makes the sleeps of a clock short as long as it exists, if `isQuick`.
class QuickScope {
 public:
  QuickScope(SessionClock& clock, bool isQuick) : m_clock(clock) { m_clock.m_isQuick = isQuick; }
  QuickScope(const QuickScope&) = delete;
  QuickScope& operator=(const QuickScope&) = delete;
  ~QuickScope() { m_clock.m_isQuick = false; }

 private:
  SessionClock& m_clock;
};

/// The Learning page and what it rests on, without a window of theirs: the back ends, and what goes
/// wrong. Used by one thread.
class Session {
 public:
  /// `options` and `outlet` outlive this. The options are read when something is first asked for.
  Session(const machine::Options& options, Outlet& outlet);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  [[nodiscard]] const machine::Options& GetMachineOptions() const { return m_options; }
  [[nodiscard]] Outlet& GetOutlet() const { return m_outlet; }
  [[nodiscard]] platform::Platform GetPlatform();
  /// Returns the same with `clock` in the place of the session's own.
  [[nodiscard]] platform::Platform GetPlatform(platform::Clock& clock);
  /// From now on `microphone`, which outlives this, takes the place of the one of the options.
  void UseMicrophone(platform::WaveIn& microphone) { m_microphone = &microphone; }
  [[nodiscard]] platform::FileSystem& GetFiles() { return m_backends.GetFiles(); }
  [[nodiscard]] platform::WaveInputs& GetWaveInputs() { return m_backends.GetWaveInputs(); }
  [[nodiscard]] SessionClock& GetClock() { return m_clock; }

  /// Returns whether a file stands for the microphone. Nobody waits for its sound.
  [[nodiscard]] bool HearsFile() const { return !m_options.microphone.empty(); }
  /// Returns whether a file stands for the loudspeaker.
  [[nodiscard]] bool PlaysIntoFile() const { return !m_options.speaker.empty(); }

  /// Returns whether there is a root folder, or can be one, and no file of the settings is a link.
  /// Reports it if not.
  [[nodiscard]] bool RequireRoot();

  /// Returns whether the root folder is there. If it is not, there are no tags and no settings.
  [[nodiscard]] bool HasRootFolder() const;

  /// The same as RequireRoot for a command that changes nothing: settings and contacts are only
  /// read, no folder is made, and a root folder that is missing counts as a new one. Called before
  /// settings or contacts are asked for.
  [[nodiscard]] bool OpenForReading();

  /// The same as RequireRoot for a command that may change something: makes the root folder.
  [[nodiscard]] bool OpenForChanging();

  /// Returns the settings below the root folder.
  [[nodiscard]] platform::Registry& GetRegistry() { return m_backends.GetRegistry(); }
  /// Returns the vCard file or folder of this machine that is read if the user chose none.
  [[nodiscard]] std::string GetDefaultContacts() { return m_backends.GetDefaultContacts(); }
  /// Returns the place of the settings in words of this system, such as the path of their file.
  [[nodiscard]] std::string GetRegistryName() const { return m_backends.GetRegistryName(); }
  [[nodiscard]] std::filesystem::path GetRoot() const { return m_backends.GetRoot(); }

  /// Looks for a key, from `start` on, with a name that keeps the settings from being read. Returns
  /// a sentence about the first one. Returns nothing if there is none.
  [[nodiscard]] std::optional<std::string> FindUnusableKey(std::u16string_view start = {});

  /// Returns why the settings answered `error`, and for which file, without a full stop.
  [[nodiscard]] std::string ExplainStore(platform::RegistryError error);

  /// Returns the user's contacts. A log-on fails if the recorded tags are for other contacts.
  [[nodiscard]] vcard::AddressBooks& GetContacts();

  [[nodiscard]] headless::HeadlessUi& GetUi() { return m_ui; }

  /// Returns whether the system ended its process, which here ends only the command.
  [[nodiscard]] bool HasEnded() const { return m_process.GetExitCode().has_value(); }

  /// Returns the path of this machine to which a device path leads.
  [[nodiscard]] std::string ToHostPath(std::u16string_view devicePath) const {
    return m_backends.ToHostPath(devicePath);
  }

  /// Returns the path under which the system's files know a name from the command line.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name) {
    return machine::Backends::ToSystemPath(name);
  }

  /// Returns whether both names lead to one file that is there.
  [[nodiscard]] static bool AreSameFile(const std::string& a, const std::string& b);

  /// Returns what `name` leads to, in one of our own texts with places for both, if it is a
  /// symbolic link. Returns "" if it is none.
  [[nodiscard]] static std::string ExplainLink(
      const std::string& name, std::u16string_view text = resources::kLinkNotWritten);

  /// Reports what failed.
  void Fail(std::string_view message);

  /// Reports what hinders nothing.
  void Warn(std::string_view message) { m_outlet.ShowWarning(message); }

  /// Returns whether anything failed, or the system ended its process.
  [[nodiscard]] bool HasFailed() const { return m_hasFailed || HasEnded(); }

  /// Returns what failed last. Returns an empty text if nothing did.
  [[nodiscard]] const std::string& GetFailure() const { return m_failure; }

 private:
  const machine::Options& m_options;
  Outlet& m_outlet;
  machine::Backends m_backends;
  SessionClock m_clock;
  platform::WaveIn* m_microphone = nullptr;  ///< Null for that of the options.
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  bool m_hasFailed = false;
  std::string m_failure;
};

}  // namespace session

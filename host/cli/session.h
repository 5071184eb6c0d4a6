#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "backends/vcard/address_books.h"
#include "host/cli/waiting.h"
#include "host/machine/backends.h"
#include "platform/platform.h"
#include "platform/registry.h"

namespace cli {

/// What stands before the command.
struct Options {
  machine::Options machine;
  bool json = false;
  bool yes = false;  ///< Answers every confirmation with OK.
};

/// One run of the command line: chooses the back ends and gathers the outcome. Message boxes go to
/// standard error as "caption: text"; a confirmation is asked on the terminal, and refused where
/// there is none.
class Session {
 public:
  /// `options` are filled while the command line is parsed, and read when a command first asks.
  explicit Session(const Options& options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  [[nodiscard]] const Options& GetOptions() const { return m_options; }
  [[nodiscard]] platform::Platform GetPlatform();
  /// The same with `clock` in the place of the session's own.
  [[nodiscard]] platform::Platform GetPlatform(platform::Clock& clock);
  [[nodiscard]] platform::FileSystem& GetFiles() { return m_backends.GetFiles(); }
  [[nodiscard]] SessionClock& GetClock() { return m_clock; }

  /// Whether files stand for every device that the sound goes through, so that nobody waits for it.
  [[nodiscard]] bool HearsFile() const { return !m_options.machine.microphone.empty(); }
  [[nodiscard]] bool PlaysIntoFile() const { return !m_options.machine.speaker.empty(); }

  /// Whether there is a root folder, or can be one, and no file of the settings is a link. Reports
  /// it if not.
  [[nodiscard]] bool RequireRoot();

  /// The same for a command that changes nothing: settings and contacts are only read, no folder is
  /// made, and a root folder that is missing counts as a new one. Called before settings or
  /// contacts are asked for.
  [[nodiscard]] bool OpenForReading();

  /// The same for a command that may change something: makes the root folder.
  [[nodiscard]] bool OpenForChanging();

  /// The settings below the root folder.
  [[nodiscard]] platform::Registry& GetRegistry() { return m_backends.GetRegistry(); }
  [[nodiscard]] std::filesystem::path GetRegistryPath() const {
    return m_backends.GetRegistryPath();
  }

  /// Returns a sentence about the key from `start` on that keeps the settings from being read by
  /// its name. Returns nothing if there is none.
  [[nodiscard]] std::optional<std::string> FindUnusableKey(std::u16string_view start = {});

  /// Why the settings answered `error`, and for which file, without a full stop.
  [[nodiscard]] std::string ExplainStore(platform::RegistryError error);

  /// The user's contacts. Logging on to other ones than the recorded tags are for fails.
  [[nodiscard]] vcard::AddressBooks& GetContacts();

  [[nodiscard]] headless::HeadlessUi& GetUi() { return m_ui; }

  /// Whether the system ended its process, which here ends only the command.
  [[nodiscard]] bool HasEnded() const { return m_process.GetExitCode().has_value(); }

  /// Where a device path leads on this machine.
  [[nodiscard]] std::string ToHostPath(std::u16string_view devicePath) const {
    return m_backends.ToHostPath(devicePath);
  }

  /// The path under which the system's files know a name from the command line.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name) {
    return machine::Backends::ToSystemPath(name);
  }

  /// Whether both names lead to one file that is there.
  [[nodiscard]] static bool AreSameFile(const std::string& a, const std::string& b);

  /// Returns what `name` leads to, and the consequence, if it is a symbolic link. Returns "" if it
  /// is none.
  [[nodiscard]] static std::string ExplainLink(const std::string& name,
                                               std::string_view consequence = "not written");

  /// Tells what failed on standard error; the exit code will be 1.
  void Fail(std::string_view message);

  /// What failed last; empty where nothing did.
  [[nodiscard]] const std::string& GetFailure() const { return m_failure; }

  [[nodiscard]] int GetExitCode() const;

 private:
  [[nodiscard]] platform::MessageAnswer Answer(const platform::MessageBox& box) const;

  const Options& m_options;
  machine::Backends m_backends;
  SessionClock m_clock;
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  bool m_failed = false;
  std::string m_failure;
};

}  // namespace cli

#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "backends/vcard/address_books.h"
#include "host/cli/output.h"
#include "host/cli/waiting.h"
#include "host/machine/backends.h"
#include "platform/platform.h"
#include "platform/registry.h"

namespace cli {

/// Exit codes of the program. 0 means done.
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;

/// What stands before the command.
struct Options {
  machine::Options machine;
  bool json = false;
  bool yes = false;  ///< Answers every confirmation with OK.
};

/// One run of the command line: chooses the back ends and gathers the outcome. Message boxes go to
/// standard error as "caption: text". A confirmation is asked on the terminal, and refused if there
/// is none.
///
/// A script reads one JSON value for each command. What goes wrong is known only when the command
/// has ended. So the session keeps the value until then, and adds the error to it.
class Session {
 public:
  /// `options` are filled while the command line is parsed, and read when a command first asks.
  explicit Session(const Options& options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  [[nodiscard]] const Options& GetOptions() const { return m_options; }
  [[nodiscard]] platform::Platform GetPlatform();
  /// Returns the same with `clock` in the place of the session's own.
  [[nodiscard]] platform::Platform GetPlatform(platform::Clock& clock);
  [[nodiscard]] platform::FileSystem& GetFiles() { return m_backends.GetFiles(); }
  [[nodiscard]] SessionClock& GetClock() { return m_clock; }

  /// Returns whether a file stands for the microphone. Nobody waits for its sound.
  [[nodiscard]] bool HearsFile() const { return !m_options.machine.microphone.empty(); }
  /// Returns whether a file stands for the loudspeaker.
  [[nodiscard]] bool PlaysIntoFile() const { return !m_options.machine.speaker.empty(); }

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
  [[nodiscard]] std::filesystem::path GetRegistryPath() const {
    return m_backends.GetRegistryPath();
  }

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

  /// Returns what `name` leads to, and the consequence, if it is a symbolic link. Returns "" if it
  /// is none.
  [[nodiscard]] static std::string ExplainLink(const std::string& name,
                                               std::string_view consequence = "not written");

  /// Reports on standard error what failed. The exit code will be kFailed.
  void Fail(std::string_view message);

  /// Returns what failed last. Returns an empty text if nothing did.
  [[nodiscard]] const std::string& GetFailure() const { return m_failure; }

  /// Sets the value that the command prints with --json. It is printed when the command has ended.
  void SetJson(Json json) { m_json = std::move(json); }

  /// Prints the JSON value if there is one to print. If the command failed, an object gets the
  /// member "error", and without a value there is one of the error alone. An array stays as it is.
  void PrintOutcome() const;

  [[nodiscard]] int GetExitCode() const;

 private:
  [[nodiscard]] platform::MessageAnswer Answer(const platform::MessageBox& box) const;
  void PrintMessage(const headless::ShownMessage& shown);

  const Options& m_options;
  machine::Backends m_backends;
  SessionClock m_clock;
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  bool m_failed = false;
  std::string m_failure;
  std::string m_messages;  ///< Failures and message boxes, a line each.
  std::optional<Json> m_json;
};

}  // namespace cli

#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ebook/ebook_contacts.h"
#include "platform/headless/headless_process.h"
#include "platform/headless/headless_shell.h"
#include "platform/headless/headless_ui.h"
#include "platform/platform.h"
#include "platform/posix/posix_clock.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/posix_threads.h"
#include "platform/registry.h"

namespace cli {

/// What stands before the command.
struct Options {
  std::string root;        ///< Empty: the default below the XDG data folder.
  std::string microphone;  ///< Empty: the default input of the sound server.
  std::string speaker;     ///< Empty: the default output of the sound server.
  std::string contacts;    ///< "eds", or a vCard file or folder; empty: the one chosen last.
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
  [[nodiscard]] platform::FileSystem& GetFiles();

  /// The settings below the root folder, which is made where it is missing.
  [[nodiscard]] platform::Registry& GetRegistry();
  [[nodiscard]] std::filesystem::path GetRegistryPath() const;

  /// The user's contacts. Logging on to other ones than the recorded tags are for fails.
  [[nodiscard]] ebook::EbookContacts& GetContacts();

  [[nodiscard]] headless::HeadlessUi& GetUi() { return m_ui; }

  /// Whether the system ended its process, which here ends only the command.
  [[nodiscard]] bool HasEnded() const { return m_process.GetExitCode().has_value(); }

  /// Where a device path leads on this machine.
  [[nodiscard]] std::string ToHostPath(std::u16string_view devicePath) const;

  /// The path under which the system's files know a name from the command line.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name);

  /// Whether both names lead to one file that is there.
  [[nodiscard]] static bool AreSameFile(const std::string& a, const std::string& b);

  /// Tells what failed on standard error; the exit code will be 1.
  void Fail(std::string_view message);

  [[nodiscard]] int GetExitCode() const;

 private:
  [[nodiscard]] platform::WaveIn& GetWaveIn();
  [[nodiscard]] platform::WaveOut& GetWaveOut();
  [[nodiscard]] platform::Threads& GetThreads();
  // Without making the root folder.
  [[nodiscard]] platform::Registry& MakeRegistry();
  [[nodiscard]] ebook::EbookContacts& MakeContacts();
  [[nodiscard]] platform::MessageAnswer Answer(const platform::MessageBox& box) const;
  [[nodiscard]] std::filesystem::path GetRoot() const;

  const Options& m_options;
  std::unique_ptr<posix::PosixFileSystem> m_files;
  std::unique_ptr<platform::Registry> m_registry;
  std::unique_ptr<ebook::EbookContacts> m_contacts;
  std::unique_ptr<platform::WaveIn> m_waveIn;
  std::unique_ptr<platform::WaveOut> m_waveOut;
  std::unique_ptr<posix::PosixThreads> m_threads;
  posix::PosixClock m_clock;
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  bool m_failed = false;
};

}  // namespace cli

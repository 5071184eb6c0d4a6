#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ebook/ebook_contacts.h"
#include "platform/headless/headless_process.h"
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
  std::string contacts;    ///< "eds", or a vCard file or folder; empty: the one chosen last.
  bool json = false;
};

/// One run of the command line: chooses the back ends and gathers the outcome. Message boxes go to
/// standard error as "caption: text" and are answered with OK.
class Session {
 public:
  /// `options` are filled while the command line is parsed, and read when a command first asks.
  explicit Session(const Options& options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  [[nodiscard]] const Options& GetOptions() const { return m_options; }
  [[nodiscard]] platform::Platform GetPlatform();
  [[nodiscard]] platform::FileSystem& GetFiles();

  /// The settings below the root folder, which is made where it is missing.
  [[nodiscard]] platform::Registry& GetRegistry();
  [[nodiscard]] std::filesystem::path GetRegistryPath() const;

  /// The user's contacts. Logging on to other ones than the recorded tags are for fails.
  [[nodiscard]] ebook::EbookContacts& GetContacts();

  /// The path under which the system's files know a name from the command line.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name);

  /// Tells what failed on standard error; the exit code will be 1.
  void Fail(std::string_view message);

  [[nodiscard]] int GetExitCode() const;

 private:
  [[nodiscard]] platform::WaveIn& GetWaveIn();
  [[nodiscard]] std::filesystem::path GetRoot() const;

  const Options& m_options;
  std::unique_ptr<posix::PosixFileSystem> m_files;
  std::unique_ptr<platform::Registry> m_registry;
  std::unique_ptr<ebook::EbookContacts> m_contacts;
  std::unique_ptr<platform::WaveIn> m_waveIn;
  posix::PosixClock m_clock;
  posix::PosixThreads m_threads;
  headless::HeadlessProcess m_process;
  headless::HeadlessUi m_ui;
  bool m_failed = false;
};

}  // namespace cli

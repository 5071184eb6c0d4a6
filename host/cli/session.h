#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/headless/headless_contacts.h"
#include "platform/headless/headless_process.h"
#include "platform/headless/headless_ui.h"
#include "platform/headless/memory_registry.h"
#include "platform/platform.h"
#include "platform/posix/posix_clock.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/posix_threads.h"

namespace cli {

/// What stands before the command.
struct Options {
  std::string root;        ///< Empty: the default below the XDG data folder.
  std::string microphone;  ///< Empty: the default input of the sound server.
  std::string speaker;     ///< Empty: its default output.
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

  /// The path under which the system's files know a name from the command line.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name);

  /// Tells what failed on standard error; the exit code will be 1.
  void Fail(std::string_view message);

  [[nodiscard]] int GetExitCode() const;

 private:
  [[nodiscard]] platform::WaveIn& GetWaveIn();
  [[nodiscard]] platform::WaveOut& GetWaveOut();
  [[nodiscard]] posix::PosixFileSystem& GetFiles();

  const Options& m_options;
  std::unique_ptr<posix::PosixFileSystem> m_files;
  std::unique_ptr<platform::WaveIn> m_waveIn;
  std::unique_ptr<platform::WaveOut> m_waveOut;
  posix::PosixClock m_clock;
  posix::PosixThreads m_threads;
  headless::HeadlessProcess m_process;
  headless::HeadlessUi m_ui;
  // No command asks for either yet.
  headless::MemoryRegistry m_registry;
  headless::HeadlessContacts m_contacts;
  bool m_failed = false;
};

}  // namespace cli

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/headless/headless_process.h"
#include "platform/headless/headless_ui.h"
#include "platform/platform.h"
#include "platform/posix/posix_clock.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/posix_threads.h"

namespace cli {

/// What stands before the command.
struct Options {
  std::string root;        ///< Empty: the default below the XDG data folder.
  std::string microphone;  ///< Empty: the default input of the sound server.
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
  /// The same with `clock` in the place of the session's own.
  [[nodiscard]] platform::Platform GetPlatform(platform::Clock& clock);

  /// The path under which the system's files know a name from the command line.
  [[nodiscard]] static std::u16string ToSystemPath(const std::string& name);

  /// Whether both names lead to one file that is there.
  [[nodiscard]] static bool AreSameFile(const std::string& a, const std::string& b);

  /// Tells what failed on standard error; the exit code will be 1.
  void Fail(std::string_view message);

  [[nodiscard]] int GetExitCode() const;

 private:
  [[nodiscard]] platform::WaveIn& GetWaveIn();
  [[nodiscard]] posix::PosixFileSystem& GetFiles();

  const Options& m_options;
  std::unique_ptr<posix::PosixFileSystem> m_files;
  std::unique_ptr<platform::WaveIn> m_waveIn;
  posix::PosixClock m_clock;
  posix::PosixThreads m_threads;
  headless::HeadlessProcess m_process;
  headless::HeadlessUi m_ui;
  bool m_failed = false;
};

}  // namespace cli

#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>
#include <thread>

#include "backends/headless/headless_dialog.h"
#include "backends/headless/headless_ui.h"
#include "backends/posix/posix_threads.h"
#include "framework/dialog.h"
#include "host/cli/waiting.h"
#include "resources/dialogs.h"
#include "tests/host/cli/command_fixture.h"
#include "tests/host/cli/maintenance_fixture.h"
#include "tests/host/cli/run_on_terminal.h"

namespace {

using testing::HasSubstr;
using testing::Not;

using ProgressLine = CommandFixture;

TEST_F(ProgressLine, ShowsOnATerminalHowFarTheReadingOfAFileHasCome) {
  const auto run = RunOnTerminal({VOXTREL_PROGRAM, "--microphone", CopySample("anna_1.wav"), "wave",
                                  "record", Path("new.wav"), "--milliseconds", "300"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            "\rReading  [..............................] 0.0 s of 0.3 s"
            "\rReading  [##########....................] 0.1 s of 0.3 s"
            "\rReading  [####################..........] 0.2 s of 0.3 s"
            "\rReading  [##############################] 0.3 s of 0.3 s\r\n"
            "Recorded 0.3 s to " +
                Path("new.wav") + "\r\n");
}

TEST_F(ProgressLine, SaysNothingIfNothingIsRecorded) {
  const auto run = RunOnTerminal({VOXTREL_PROGRAM, "--microphone", Path("none.wav"), "wave",
                                  "record", Path("new.wav"), "--milliseconds", "300"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, Not(HasSubstr("s of 0.3 s")));
  EXPECT_THAT(run.out, HasSubstr("was not recorded"));
}

TEST_F(ProgressLine, StaysOutOfAFile) {
  const auto run = Run({"--microphone", CopySample("anna_1.wav"), "wave", "record", Path("new.wav"),
                        "--milliseconds", "100"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
}

using ProgressLineOfReinit = MaintenanceFixture;

TEST_F(ProgressLineOfReinit, ShowsOnATerminalHowManyTagsAreDone) {
  PutThreeTags();
  const auto run = RunOnTerminal({VOXTREL_PROGRAM, "--root", Path("root"), "reinit", "--force"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, testing::StartsWith("\rComputing the voice tags again  ["));
  EXPECT_THAT(run.out,
              testing::EndsWith(
                  "\rComputing the voice tags again  [##############################] 3 of 3\r\n"
                  "The voice templates were computed again.\r\n"));
}

TEST_F(ProgressLineOfReinit, StaysOutOfAFile) {
  PutThreeTags();
  const auto run = Run({"reinit", "--force"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
}

/// Standard error is a terminal as long as this lives.
class TerminalForErrors {
 public:
  TerminalForErrors() : m_saved(::dup(STDERR_FILENO)) {
    int screen = -1;
    if (::openpty(&m_watcher, &screen, nullptr, nullptr, nullptr) == 0) {
      ::dup2(screen, STDERR_FILENO);
      ::close(screen);
    }
  }
  TerminalForErrors(const TerminalForErrors&) = delete;
  TerminalForErrors& operator=(const TerminalForErrors&) = delete;
  ~TerminalForErrors() {
    ::dup2(m_saved, STDERR_FILENO);
    ::close(m_saved);
    ::close(m_watcher);
  }

  /// Waits until `text` stands on the terminal. Returns all that was shown since the last call;
  /// ends without `text` if nothing more is shown for ten seconds.
  [[nodiscard]] std::string WaitFor(std::string_view text) {
    constexpr int kMilliseconds = 10'000;
    std::string shown;
    pollfd ready{.fd = m_watcher, .events = POLLIN, .revents = 0};
    while (shown.find(text) == std::string::npos && ::poll(&ready, 1, kMilliseconds) == 1) {
      std::array<char, 4096> buffer{};
      const ssize_t count = ::read(m_watcher, buffer.data(), buffer.size());
      if (count <= 0) {
        break;
      }
      shown.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return shown;
  }

 private:
  int m_saved;
  int m_watcher = -1;
};

TEST(ProgressLineOfAComparison, FollowsTheBarOfTheWindowUntilThatEnds) {
  TerminalForErrors terminal;
  headless::HeadlessUi ui;
  framework::CDialog handler(resources::kComparisonDialog, ui);
  posix::PosixThreads threads;
  headless::HeadlessDialog window(resources::kComparisonDialog, handler, &threads);
  window.CreateProgressBar(resources::kProgressBarId,
                           {.rect = {}, .minimum = 0, .maximum = 4, .step = 1});
  std::thread watcher([&window] { cli::WatchComparison(window); });

  EXPECT_THAT(terminal.WaitFor("of 4"),
              HasSubstr("\rComparing the voice tags  [..............................] 0 of 4"));
  window.StepProgress(resources::kProgressBarId);
  EXPECT_THAT(terminal.WaitFor("1 of 4"),
              HasSubstr("\rComparing the voice tags  [#######.......................] 1 of 4"));
  for (int i = 0; i < 3; ++i) {
    window.StepProgress(resources::kProgressBarId);
  }
  window.EndDialog(1);
  EXPECT_THAT(
      terminal.WaitFor("\n"),
      testing::EndsWith("\rComparing the voice tags  [##############################] 4 of 4\r\n"));
  watcher.join();
}

}  // namespace

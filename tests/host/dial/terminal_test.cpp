#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "tests/host/dial/dial_fixture.h"
#include "tests/host/dial/pty_modem.h"
#include "tests/host/dial/terminal_job.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kEscapeKey = "\x1b";
constexpr const char* kChoose = "Escape to stop.";
constexpr const char* kKeep = "any other key.";

/// Three people who sound different. Their own recordings leave no doubt.
class DialTerminal : public DialFixture {
 protected:
  DialTerminal() {
    Teach("Anna Berg", "anna_1");
    Teach("Bob Ross", "robert_1");
    Teach("Carla Diaz", "jackson_1");
  }
  [[nodiscard]] TerminalJob Start(std::vector<std::string> rest = {}) const {
    return TerminalJob(DialWords("anna_1", std::move(rest)), Environment());
  }
  /// The user says that it is not Anna, and is asked who it is.
  static void SayNo(TerminalJob& job) {
    ASSERT_TRUE(job.Shows("Press any key to stop it.")) << job.GetShown();
    job.Type("n");
    ASSERT_TRUE(job.Shows("Who is it instead?"));
    ASSERT_TRUE(job.Shows(kChoose));
  }
};

TEST_F(DialTerminal, ANumberKeyCallsWhoeverItStandsFor) {
  TerminalJob job = Start();
  SayNo(job);
  EXPECT_TRUE(job.AwaitsKeys());
  const bool isBobFirst = job.GetShown().find("1  Bob Ross") != std::string::npos;
  job.Type("2");
  EXPECT_TRUE(job.Shows(isBobFirst ? "Calling Carla Diaz, Home +1 202 555 0103."
                                   : "Calling Bob Ross, Mobile +1 202 555 0102."));
  EXPECT_TRUE(job.Shows(kKeep));
  job.Type("n");
  EXPECT_EQ(job.End(), 0);
  EXPECT_TRUE(job.IsUsual());
}

TEST_F(DialTerminal, AKeyThatStandsForNobodyIsPassedOver) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("3");
  job.Type("0");
  job.Type("x");
  job.Type("1");
  EXPECT_TRUE(job.Shows("Calling"));
}

TEST_F(DialTerminal, EscapeCallsNobody) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type(kEscapeKey);
  EXPECT_EQ(job.End(), 1);
  EXPECT_THAT(job.GetShown(), HasSubstr("nobody was called"));
  EXPECT_THAT(job.GetShown(), Not(HasSubstr("Calling")));
  EXPECT_TRUE(job.IsUsual());
}

TEST_F(DialTerminal, AFunctionKeyIsNoEscape) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("\x1b[A");
  job.Type("1");
  EXPECT_TRUE(job.Shows("Calling"));
}

TEST_F(DialTerminal, SHearsTheNameAgainAndWhoeverWasRejectedIsNotOffered) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("s");
  EXPECT_TRUE(job.Shows("Who is it?"));
  EXPECT_TRUE(job.Shows(kChoose));
  job.Type(kEscapeKey);
  EXPECT_EQ(job.End(), 1);
  EXPECT_EQ(job.GetShown().find("  Anna Berg"), std::string::npos);
}

TEST_F(DialTerminal, EachSignalThatEndsItGivesTheTerminalBack) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    TerminalJob job = Start();
    SayNo(job);
    EXPECT_TRUE(job.AwaitsKeys());
    job.Signal(signal);
    EXPECT_EQ(job.End(), 128 + signal);
    EXPECT_TRUE(job.IsUsual()) << signal;
  }
}

TEST_F(DialTerminal, ControlCEndsIt) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("\x03");
  EXPECT_EQ(job.End(), 128 + SIGINT);
  EXPECT_TRUE(job.IsUsual());
}

TEST_F(DialTerminal, ControlZGivesTheTerminalToTheShellUntilItComesBack) {
  TerminalJob job = Start();
  SayNo(job);
  for (int round = 0; round < 2; ++round) {
    job.Type("\x1a");
    ASSERT_TRUE(job.Stops());
    EXPECT_TRUE(job.IsUsual());
    job.BringBack();
    ASSERT_TRUE(job.AwaitsKeys());
  }
  job.Type("1");
  EXPECT_TRUE(job.Shows("Calling"));
}

TEST_F(DialTerminal, ATakeThatWasMisheardIsKeptAfterAYes) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("1");
  EXPECT_TRUE(job.Shows("Keep what you said as one more voice tag of"));
  EXPECT_TRUE(job.Shows(kKeep));
  job.Type("y");
  EXPECT_TRUE(job.Shows("has one more voice tag."));
  EXPECT_EQ(job.End(), 0);
  EXPECT_EQ(CountTags(), 4U);
}

TEST_F(DialTerminal, ATakeThatWasMisheardIsNotKeptWithoutAYes) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("1");
  EXPECT_TRUE(job.Shows(kKeep));
  job.Type("\n");
  EXPECT_EQ(job.End(), 0);
  EXPECT_EQ(CountTags(), 3U);
}

TEST_F(DialTerminal, ATakeThatCannotBeKeptIsReportedAndTheCallStands) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("1");
  EXPECT_TRUE(job.Shows(kKeep));
  std::filesystem::remove(Contacts());
  job.Type("y");
  EXPECT_TRUE(job.Shows("the voice tag was not kept: "));
  EXPECT_EQ(job.End(), 0);
}

TEST_F(DialTerminal, KeysServeAlsoIfTheStepsAreJson) {
  TerminalJob job = Start({"--json"});
  EXPECT_TRUE(job.Shows(R"({"step":"sure","candidates":[{"contact":"Berg Anna",)"));
  job.Type("n");
  EXPECT_TRUE(job.Shows(R"({"step":"instead","candidates":[)"));
  EXPECT_TRUE(job.Shows("\n"));
  job.Type("1");
  EXPECT_TRUE(job.Shows(R"({"step":"calling")"));
  EXPECT_TRUE(job.Shows(R"({"step":"called")"));
  EXPECT_TRUE(job.Shows(R"({"step":"offer")"));
  EXPECT_THAT(job.GetShown(), Not(HasSubstr("Who is it")));
}

TEST_F(DialTerminal, WhileItAsksTheAppletCanDeleteWhatItIsAbout) {
  TerminalJob job = Start();
  SayNo(job);
  const auto run = Run({"--contacts", Contacts(), "--yes", "tags", "delete-all"});
  EXPECT_EQ(run.exitCode, 0) << "No lock of the dialer is in the way: " << run.err;
  EXPECT_EQ(CountTags(), 0U);
  job.Type("1");
  EXPECT_TRUE(job.Shows("Calling"));
}

TEST_F(DialTerminal, ATakeIsNotKeptWhileAnotherProgramHasTheTags) {
  TerminalJob job = Start();
  SayNo(job);
  job.Type("1");
  EXPECT_TRUE(job.Shows(kKeep));
  const int mutex = ::open((Path("root") + "/.ZedraD.lock").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(::flock(mutex, LOCK_EX), 0);
  job.Type("Y");
  EXPECT_TRUE(job.Shows("the voice tag was not kept: "));
  EXPECT_TRUE(job.Shows("in use"));
  EXPECT_EQ(job.End(), 0);
  ::close(mutex);
  EXPECT_EQ(CountTags(), 3U);
}

TEST_F(DialTerminal, NothingOfATakeIsLeftBehind) {
  std::filesystem::create_directory(Path("tmp"));
  auto environment = Environment();
  environment.push_back("TMPDIR=" + Path("tmp"));
  TerminalJob job(DialWords("anna_1"), environment);
  SayNo(job);
  job.Type("1");
  EXPECT_TRUE(job.Shows(kKeep));
  job.Type("y");
  EXPECT_EQ(job.End(), 0);
  EXPECT_TRUE(std::filesystem::is_empty(Path("tmp")));
}

TEST_F(DialTerminal, WhoeverIsSureIsCalledIfNobodyPressesAKey) {
  TerminalJob job = Start();
  EXPECT_TRUE(job.Shows("Anna Berg, Mobile +1 202 555 0101."));
  EXPECT_TRUE(job.Shows("Press any key to stop it."));
  EXPECT_TRUE(job.Shows("Calling Anna Berg"));
  EXPECT_EQ(job.End(), 0);
  EXPECT_TRUE(job.IsUsual());
  EXPECT_EQ(std::filesystem::file_size(Path("heard.wav")),
            std::filesystem::file_size(FirstRecording()))
      << "The voice tag was played.";
}

TEST_F(DialTerminal, EscapeStopsTheCall) {
  TerminalJob job = Start();
  EXPECT_TRUE(job.Shows("Press any key to stop it."));
  job.Type(kEscapeKey);
  EXPECT_EQ(job.End(), 1);
  EXPECT_THAT(job.GetShown(), Not(HasSubstr("Calling")));
}

TEST_F(DialTerminal, AnyKeyHangsUpWhileAModemDials) {
  PtyModem modem(
      [](const std::string& line) { return line == "ATH" ? "\r\nOK\r\n" : line + "\r"; });
  auto words = DialWords("anna_1", {"--yes", "--modem", modem.GetName()});
  std::ranges::replace(words, "print", "serial");
  TerminalJob job(words, Environment());
  EXPECT_TRUE(job.Shows("Press any key to stop the call."));
  job.Type("x");
  EXPECT_EQ(job.End(), 1);
  EXPECT_THAT(job.GetShown(), HasSubstr("Anna Berg was not called: the call was stopped"));
  EXPECT_EQ(modem.End(), "ATD+12025550101;|ATH|");
}

TEST_F(DialTerminal, YesCallsAtOnce) {
  TerminalJob job = Start({"--yes"});
  EXPECT_TRUE(job.Shows("Calling Anna Berg"));
  EXPECT_EQ(job.End(), 0);
  EXPECT_THAT(job.GetShown(), Not(HasSubstr("Press any key")));
}

TEST_F(DialTerminal, WithoutATerminalOnlyYesCalls) {
  const auto stopped = Dial("anna_1", {"--json"});
  EXPECT_EQ(stopped.exitCode, 1);
  EXPECT_THAT(stopped.err, HasSubstr("--yes calls without waiting"));
  EXPECT_THAT(stopped.out, Not(HasSubstr("calling")));
  const auto called = Dial("anna_1", {"--json", "--yes"});
  EXPECT_EQ(called.exitCode, 0) << called.err;
  EXPECT_THAT(called.out, HasSubstr(R"({"step":"called","candidates":[{"contact":"Berg Anna")"));
}

}  // namespace

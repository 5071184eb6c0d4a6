// The library itself, loaded by a program that knows nothing of it but the messages.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "backends/posix/doorbell.h"
#include "backends/posix/posix_threads.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::HasSubstr;

class VoxtrelCpl : public testing::Test {
 protected:
  [[nodiscard]] std::string Path(const std::string& name) const {
    return (m_folder.Path() / name).string();
  }

  /// Without a desktop session or a sound server, and with one contact.
  [[nodiscard]] support::ProgramRun Host(int openings, const std::string& display,
                                         const std::vector<std::string>& more = {}) const {
    std::ofstream(Path("contacts.vcf"))
        << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nTEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n";
    std::vector<std::string> environment = {"VOXTREL_ROOT=" + Path("root"),
                                            "VOXTREL_CONTACTS=" + Path("contacts.vcf"),
                                            "XDG_RUNTIME_DIR=" + Path(""),
                                            "DBUS_SESSION_BUS_ADDRESS=unix:path=" + Path("none"),
                                            "PULSE_SERVER=unix:" + Path("none"),
                                            "XDG_ACTIVATION_TOKEN=token",
                                            "DISPLAY=",
                                            "WAYLAND_DISPLAY="};
    if (!display.empty()) {
      environment.push_back("QT_QPA_PLATFORM=" + display);
    }
    std::vector<std::string> command{CPL_HOST, VOXTREL_CPL, std::to_string(openings)};
    command.insert(command.end(), more.begin(), more.end());
    return support::RunProgram(command, environment);
  }

  support::TempFolder m_folder;
};

constexpr const char* kBegin = "init 1 count 1\nicon <svg \n";
constexpr const char* kEnd = "stop 0 exit 0\nicon \n";

TEST_F(VoxtrelCpl, GivesNameAndIconWithoutAWindowSystem) {
  const auto run = Host(0, "");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, std::string(kBegin) + kEnd);
  EXPECT_EQ(run.err, "");
}

TEST_F(VoxtrelCpl, SaysThatThereIsNoDisplay) {
  const auto run = Host(1, "");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, std::string(kBegin) + "opened 0\n" + kEnd);
  EXPECT_THAT(run.err, HasSubstr("voxtrel.cpl: There is no display to open a window on."));
}

TEST_F(VoxtrelCpl, ShowsTheSheetEachTimeItIsOpened) {
  const auto run = Host(3, "offscreen");
  EXPECT_EQ(run.exitCode, 0) << run.err;
  const std::string shown = "shown Property\nopened 0\n";
  EXPECT_EQ(run.out, kBegin + shown + shown + shown + kEnd);
  EXPECT_THAT(run.err, testing::Not(HasSubstr("voxtrel.cpl:")));
}

TEST_F(VoxtrelCpl, ASecondDoubleClickWhileTheSheetIsOpenOpensNoOther) {
  const auto run = Host(2, "offscreen", {"again"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  const std::string shown = "shown Property\nagain 0\nopened 0\n";
  EXPECT_EQ(run.out, kBegin + shown + shown + kEnd);
}

TEST_F(VoxtrelCpl, ItsWindowComesForwardWhenASecondProcessRings) {
  const auto run = Host(1, "offscreen", {"ring", posix::Doorbell::PathFor(Path(""), Path("root"))});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  // It is closed when it is no longer minimised.
  EXPECT_EQ(run.out, kBegin + std::string("shown Property\nminimised 1 rung 1\nopened 0\n") + kEnd);
}

TEST_F(VoxtrelCpl, ASecondProcessSaysWhenTheFirstOneHasNoWindow) {
  posix::PosixThreads commandLine(Path("root"));
  const platform::CreatedMutex held = commandLine.CreateNamedMutex(u"ZedraD");
  ASSERT_TRUE(held);
  const auto run = Host(1, "offscreen");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, kBegin);
  EXPECT_THAT(run.err, HasSubstr("voxtrel.cpl: The voice tags are in use by another"));
}

TEST_F(VoxtrelCpl, ASecondProcessEndsAtOnceAndCallsTheFirstOne) {
  posix::PosixThreads first(Path("root"));
  const platform::CreatedMutex held = first.CreateNamedMutex(u"ZedraD");
  ASSERT_TRUE(held);
  posix::Doorbell bell;
  ASSERT_TRUE(bell.Hang(posix::Doorbell::PathFor(Path(""), Path("root"))));
  const auto run = Host(1, "offscreen");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, kBegin);
  EXPECT_THAT(run.err, HasSubstr("voxtrel.cpl: Zedra Voxtrel is open already"));
  EXPECT_EQ(bell.Answer(), "token");
}

}  // namespace

#include "host/panel/opened_applet.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "tests/host/panel/panel_fixture.h"

namespace {

using panel::Ending;
using panel_test::Applet;
using panel_test::AppletTrace;
using panel_test::Until;

class ErrorLines : public testing::Test {
 protected:
  std::vector<QByteArray> m_passedOn;
  panel::ErrorLines m_lines{"fox.cpl: ",
                            [this](const QByteArray& line) { m_passedOn.push_back(line); }};
};

TEST_F(ErrorLines, KeepsTheLastLineThatIsMeantForTheUserAndPassesTheOthersOn) {
  m_lines.Take("Qt: a warning\nfox.cpl: first\nfox.c");
  m_lines.Take("pl: last\nmore");
  EXPECT_EQ(m_lines.GetMessage(), QStringLiteral("last"));
  EXPECT_EQ(m_passedOn, std::vector<QByteArray>{"Qt: a warning"});
  m_lines.End();
  EXPECT_EQ(m_passedOn.back(), "more");
}

TEST_F(ErrorLines, OfALineOnlyTheFirst4096BytesCountInWhateverPiecesItArrives) {
  const QByteArray line = "fox.cpl: " + QByteArray(5000, 'x') + "fox.cpl: not a line of its own";
  for (const qsizetype piece : {line.size(), qsizetype{4097}, qsizetype{1000}, qsizetype{1}}) {
    for (qsizetype at = 0; at < line.size(); at += piece) {
      m_lines.Take(line.mid(at, piece));
    }
    m_lines.Take("\n");
    EXPECT_EQ(m_lines.GetMessage(), QString(4096 - 9, QLatin1Char('x'))) << piece;
  }
  EXPECT_TRUE(m_passedOn.empty());
}

TEST_F(ErrorLines, WithoutAnyLineThereIsNoMessage) {
  m_lines.Take("");
  m_lines.End();
  EXPECT_TRUE(m_lines.GetMessage().isEmpty());
  EXPECT_TRUE(m_passedOn.empty());
}

/// An applet that is open, and what it reported.
class Opened {
 public:
  explicit Opened(const char* fault, std::chrono::milliseconds patience = std::chrono::minutes(1),
                  const QString& program = panel_test::Program()) {
    panel::OpenedApplet::Events events;
    events.ended = [this](Ending ending, const QString& message) {
      m_ending = ending;
      m_message = message;
    };
    events.silent = [this] { ++m_silences; };
    events.aliveAgain = [this] { ++m_returns; };
    events.shown = [this] { ++m_showings; };
    m_applet = std::make_unique<panel::OpenedApplet>(
        panel::OpenedApplet::Start{
            program, Applet(fault), 0, {QStringLiteral("ADDED=a=b")}, patience},
        std::move(events));
  }

  [[nodiscard]] std::optional<Ending> WaitForEnd() {
    EXPECT_TRUE(Until([this] { return m_ending.has_value(); }));
    return m_ending;
  }
  [[nodiscard]] bool WaitForSilence() {
    return Until([this] { return m_silences > 0; });
  }
  [[nodiscard]] bool WaitForReturn() {
    return Until([this] { return m_returns > 0; });
  }
  [[nodiscard]] bool WaitForWindow() {
    return Until([this] { return m_showings > 0; });
  }
  [[nodiscard]] int GetShowings() const { return m_showings; }
  [[nodiscard]] const QString& GetMessage() const { return m_message; }
  [[nodiscard]] panel::OpenedApplet& Get() { return *m_applet; }

 private:
  std::unique_ptr<panel::OpenedApplet> m_applet;
  std::optional<Ending> m_ending;
  QString m_message;
  int m_silences = 0;
  int m_returns = 0;
  int m_showings = 0;
};

TEST(OpenedApplet, IsSentTheWholeConversation) {
  const AppletTrace trace;
  EXPECT_EQ(Opened("good").WaitForEnd(), Ending::kClosed);
  EXPECT_EQ(trace.Lines(), QStringList({"1 0 0", "2 0 0", "8 0 record", "8 1 record", "5 0 100",
                                        "6 0 100", "6 1 101", "7 0 0"}));
}

TEST(OpenedApplet, IsBroughtForwardOnRequest) {
  AppletTrace trace;
  trace.Stay();
  Opened opened("good");
  ASSERT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("shown")); }));
  EXPECT_FALSE(trace.Lines().contains(QStringLiteral("restored")));
  opened.Get().Raise();
  EXPECT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("restored")); }));
  trace.Leave();
  EXPECT_EQ(opened.WaitForEnd(), Ending::kClosed);
}

TEST(OpenedApplet, ReportsOnceThatItsWindowIsThere) {
  AppletTrace trace;
  trace.Stay();
  Opened opened("good");
  ASSERT_TRUE(opened.WaitForWindow());
  EXPECT_TRUE(trace.Lines().contains(QStringLiteral("shown")));
  trace.Leave();
  EXPECT_EQ(opened.WaitForEnd(), Ending::kClosed);
  EXPECT_EQ(opened.GetShowings(), 1);
}

TEST(OpenedApplet, WithoutAWindowReportsNone) {
  Opened opened("good");
  EXPECT_EQ(opened.WaitForEnd(), Ending::kClosed);
  EXPECT_EQ(opened.GetShowings(), 0);
}

TEST(OpenedApplet, MayCrash) { EXPECT_EQ(Opened("crash-at-open").WaitForEnd(), Ending::kCrashed); }

TEST(OpenedApplet, MayEndItsProcess) {
  Opened opened("ends-at-open");
  EXPECT_EQ(opened.WaitForEnd(), Ending::kFailed);
  EXPECT_TRUE(opened.GetMessage().isEmpty());
}

TEST(OpenedApplet, ShowsTheUserWhatFollowsItsName) {
  testing::internal::CaptureStderr();
  Opened opened("says-at-open");
  EXPECT_EQ(opened.WaitForEnd(), Ending::kClosed);
  EXPECT_EQ(opened.GetMessage(), QStringLiteral("It is busy."));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "a line for [31m nobody\n")
      << "What is not for the user is handed on, but no command to a terminal.";
}

TEST(OpenedApplet, SaysWhyALibraryCannotBeOpened) {
  Opened opened("no-entry");
  EXPECT_EQ(opened.WaitForEnd(), Ending::kFailed);
  EXPECT_EQ(opened.GetMessage(), QStringLiteral("This applet is no applet: it has no CPlApplet."));
}

TEST(OpenedApplet, ReportsThatTheProcessCannotBeMade) {
  Opened opened("good", std::chrono::minutes(1), QStringLiteral("/no/such/program"));
  EXPECT_EQ(opened.WaitForEnd(), Ending::kNotStarted);
}

TEST(OpenedApplet, IsSilentWhileItHangsAndCanBeStopped) {
  Opened opened("hang-at-open", std::chrono::milliseconds(1));
  ASSERT_TRUE(opened.WaitForSilence());
  opened.Get().Stop();
  EXPECT_EQ(opened.WaitForEnd(), Ending::kStopped);
}

TEST(OpenedApplet, IsAliveAgainWithTheNextSign) {
  AppletTrace trace;
  trace.Stay();
  // No process starts that fast, so the first sign of life comes after the patience has ended.
  Opened opened("good", std::chrono::milliseconds(1));
  ASSERT_TRUE(opened.WaitForSilence());
  EXPECT_TRUE(opened.WaitForReturn());
  trace.Leave();
  EXPECT_EQ(opened.WaitForEnd(), Ending::kClosed);
}

}  // namespace

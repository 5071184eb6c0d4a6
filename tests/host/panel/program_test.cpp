#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>

#include "tests/host/panel/panel_fixture.h"

namespace {

struct Outcome {
  int code = -1;
  bool hasCrashed = true;
  QString output;
  QString errors;
};

Outcome RunPanel(const QStringList& arguments, const QProcessEnvironment& environment) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(panel_test::Program(), arguments);
  EXPECT_TRUE(process.waitForFinished(60'000));
  return {process.exitCode(), process.exitStatus() != QProcess::NormalExit,
          QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

QProcessEnvironment WithoutDisplay() {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
  environment.remove(QStringLiteral("DISPLAY"));
  environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
  return environment;
}

void ExpectWordsOfNoDisplay(const Outcome& outcome) {
  EXPECT_FALSE(outcome.hasCrashed);
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(outcome.errors.startsWith(QStringLiteral("voxtrel-panel: There is no display")))
      << outcome.errors.toStdString();
  EXPECT_TRUE(outcome.errors.contains(QStringLiteral("voxtrel --help")));
}

TEST(PanelProgram, SaysThatThereIsNoDisplay) {
  ExpectWordsOfNoDisplay(RunPanel({}, WithoutDisplay()));
  ExpectWordsOfNoDisplay(
      RunPanel({QStringLiteral("--open"), panel_test::Applet("good")}, WithoutDisplay()));
}

TEST(PanelProgram, SaysThatTheDisplayCannotBeReached) {
  QProcessEnvironment environment = WithoutDisplay();
  environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":9999"));
  ExpectWordsOfNoDisplay(RunPanel({}, environment));
}

TEST(PanelProgram, SaysByItsExitCodeWhetherThereIsADisplay) {
  const QStringList probe{QStringLiteral("--probe")};
  EXPECT_EQ(RunPanel(probe, QProcessEnvironment::systemEnvironment()).code, 0);
  EXPECT_EQ(RunPanel(probe, WithoutDisplay()).code, 1);
}

TEST(PanelProgram, NeedsNoDisplayForItsHelp) {
  const Outcome help = RunPanel({QStringLiteral("--help")}, WithoutDisplay());
  EXPECT_EQ(help.code, 0);
  EXPECT_TRUE(help.output.contains(QStringLiteral("--open")));
  EXPECT_FALSE(help.output.contains(QStringLiteral("--inquire"))) << "is nobody's business";
  const Outcome version = RunPanel({QStringLiteral("--version")}, WithoutDisplay());
  EXPECT_EQ(version.code, 0);
  EXPECT_EQ(version.output, QStringLiteral("voxtrel-panel " VOXTREL_VERSION "\n"));
}

TEST(PanelProgram, NamesAWrongArgument) {
  const Outcome outcome = RunPanel({QStringLiteral("--opne")}, WithoutDisplay());
  EXPECT_EQ(outcome.code, 2);
  EXPECT_TRUE(outcome.errors.contains(QStringLiteral("--opne")));
}

TEST(PanelProgram, NamesAnAppletThatIsNotThere) {
  const Outcome outcome =
      RunPanel({QStringLiteral("--open"), QStringLiteral("/no/such/applet.cpl")},
               QProcessEnvironment::systemEnvironment());
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(outcome.errors.startsWith(QStringLiteral("applet.cpl: This applet cannot be loaded")))
      << outcome.errors.toStdString();
}

TEST(PanelProgram, NamesAFileWithoutWhatATerminalMightTakeForACommand) {
  const Outcome outcome =
      RunPanel({QStringLiteral("--open"), QStringLiteral("/no/a\x1B[31m\u202E\u009B.cpl")},
               QProcessEnvironment::systemEnvironment());
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(outcome.errors.startsWith(QStringLiteral("a [31m .cpl: This applet cannot be")))
      << outcome.errors.toStdString();
  for (const char16_t unsafe : {u'\x1B', u'\x202E', u'\x9B'}) {
    EXPECT_FALSE(outcome.errors.contains(QChar(unsafe)));
  }
}

}  // namespace

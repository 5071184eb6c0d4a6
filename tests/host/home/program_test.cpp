#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>
#include <memory>
#include <vector>

#include "tests/support/temp_folder.h"

namespace {

constexpr int kLongest = 60'000;  // ms

/// The program as users start it, on a screen that nobody sees.
class HomeProgram : public ::testing::Test {
 protected:
  HomeProgram() : m_environment(QProcessEnvironment::systemEnvironment()) {
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), Path("run"));
    m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), Path("config"));
    m_environment.insert(QStringLiteral("VOXTREL_ROOT"), Path("device"));
    EXPECT_TRUE(QDir().mkpath(Path("run")));
    EXPECT_TRUE(
        QFile::setPermissions(Path("run"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
  }
  ~HomeProgram() override {
    for (const auto& process : m_processes) {
      process->kill();
      process->waitForFinished();
    }
  }

  QProcess& Start(const QStringList& arguments) {
    m_processes.push_back(std::make_unique<QProcess>());
    m_processes.back()->setProcessEnvironment(m_environment);
    m_processes.back()->start(QStringLiteral(HOME_PROGRAM), arguments);
    return *m_processes.back();
  }
  QProcess& Run(const QStringList& arguments) {
    QProcess& process = Start(arguments);
    EXPECT_TRUE(process.waitForFinished(kLongest));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return process;
  }
  void TakeDisplay() {
    for (const char* const variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
      m_environment.remove(QLatin1String(variable));
    }
  }
  [[nodiscard]] QString Path(const char* name) const {
    return QString::fromStdString((m_folder.Path() / name).native());
  }

  support::TempFolder m_folder;
  QProcessEnvironment m_environment;
  std::vector<std::unique_ptr<QProcess>> m_processes;
};

TEST_F(HomeProgram, SaysThatThereIsNoDisplay) {
  TakeDisplay();
  QProcess& process = Run({});
  EXPECT_EQ(process.exitCode(), 1);
  const QString errors = QString::fromUtf8(process.readAllStandardError());
  EXPECT_TRUE(errors.startsWith(QStringLiteral("voxtrel-home: There is no display")))
      << errors.toStdString();
  EXPECT_TRUE(errors.contains(QStringLiteral("voxtrel --help")));
}

TEST_F(HomeProgram, SaysByItsExitCodeWhetherThereIsADisplay) {
  EXPECT_EQ(Run({QStringLiteral("--probe")}).exitCode(), 0);
  TakeDisplay();
  EXPECT_EQ(Run({QStringLiteral("--probe")}).exitCode(), 1);
}

TEST_F(HomeProgram, NeedsNoDisplayForItsHelp) {
  TakeDisplay();
  QProcess& process = Run({QStringLiteral("--help")});
  EXPECT_EQ(process.exitCode(), 0);
  EXPECT_TRUE(process.readAllStandardOutput().contains("--teach"));
}

TEST_F(HomeProgram, SaysThatThereIsNoFolderForTheTags) {
  for (const char* const variable : {"VOXTREL_ROOT", "XDG_DATA_HOME", "HOME"}) {
    m_environment.remove(QLatin1String(variable));
  }
  QProcess& process = Run({});
  EXPECT_EQ(process.exitCode(), 1);
  EXPECT_TRUE(process.readAllStandardError().contains("VOXTREL_ROOT"));
}

TEST_F(HomeProgram, HasOneWindowAndEndsIfItIsStartedAgain) {
  QProcess& first = Start({});
  ASSERT_TRUE(QTest::qWaitFor(
      [this] {
        const QStringList sockets =
            QDir(Path("run")).entryList({QStringLiteral("*.socket")}, QDir::System);
        return !sockets.isEmpty();
      },
      kLongest));
  EXPECT_EQ(Run({QStringLiteral("--teach")}).exitCode(), 0);
  EXPECT_EQ(first.state(), QProcess::Running);
}

}  // namespace

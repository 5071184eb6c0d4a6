#include "host/panel/panel_window.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>

#include "backends/qt/icons.h"
#include "tests/host/panel/panel_fixture.h"

namespace {

using panel::PanelWindow;
using panel_test::Applet;
using panel_test::AppletTrace;
using panel_test::Until;

/// A panel with real applets in real processes, on a screen that nobody sees.
class Panel : public ::testing::Test {
 protected:
  void Show(std::initializer_list<const char*> faults) {
    for (const char* fault : faults) {
      m_settings.places.append(Applet(fault));
    }
    m_settings.program = panel_test::Program();
    m_window = std::make_unique<PanelWindow>(m_settings);
    m_window->show();
    m_list = m_window->findChild<QListWidget*>();
  }

  [[nodiscard]] QStringList Names() const {
    QStringList names;
    for (int row = 0; row < m_list->count(); ++row) {
      names.append(m_list->item(row)->text());
    }
    return names;
  }
  [[nodiscard]] bool WaitForName(const char* name) const {
    return Until([&] { return Names().contains(QLatin1String(name)); });
  }
  [[nodiscard]] QString Status() const {
    return m_window->findChild<QLabel*>(QStringLiteral("status"))->text();
  }
  [[nodiscard]] bool WaitForStatus(const char* text) const {
    const bool isReached = Until([&] { return Status() == QLatin1String(text); });
    EXPECT_TRUE(isReached) << Status().toStdString();
    return isReached;
  }
  [[nodiscard]] QMessageBox* Box() const {
    for (QMessageBox* box : m_window->findChildren<QMessageBox*>()) {
      if (box->isVisible()) {
        return box;
      }
    }
    return nullptr;
  }
  void Press(int key, const QString& text = {}) const {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(m_list, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(m_list, &release);
  }

  PanelWindow::Settings m_settings;
  std::unique_ptr<PanelWindow> m_window;
  QListWidget* m_list = nullptr;
};

TEST_F(Panel, ShowsEveryAppletWithItsNameAndIcon) {
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  EXPECT_EQ(Names(), QStringList({"Beta", "Alpha"}));
  EXPECT_EQ(m_list->item(1)->icon().pixmap(48, 48).toImage().pixelColor(24, 24), QColor(255, 0, 0));
  EXPECT_EQ(Status(), Applet("good"));
}

TEST_F(Panel, TheIconsDoNotTouchTheEdgeOfTheirBackground) {
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  const QImage picture = m_list->grab().toImage();
  const QRgb background = m_list->palette().color(QPalette::Base).rgb();
  constexpr int kRoom = 12;
  for (int x = 0; x < picture.width(); ++x) {
    for (int y = 0; y < kRoom; ++y) {
      ASSERT_EQ(picture.pixel(x, y), background) << x << ", " << y;
    }
  }
}

TEST_F(Panel, ShowsFaultyAppletsWithAPlainIconAndTheReason) {
  m_settings.inquiryLimit = std::chrono::seconds(6);  // Enough for those that answer.
  Show({"crash-at-inquire", "good", "hang-at-inquire", "odd-count"});
  const auto reason = [this](int row) { return m_list->item(row)->toolTip(); };
  ASSERT_TRUE(WaitForName("Alpha"));
  ASSERT_TRUE(
      Until([&] { return !reason(0).isEmpty() && !reason(2).isEmpty() && !reason(3).isEmpty(); }));
  EXPECT_EQ(reason(0),
            QStringLiteral("This applet crashes when it is asked: ") + Applet("crash-at-inquire"));
  EXPECT_EQ(reason(2), QStringLiteral("This applet does not answer: ") + Applet("hang-at-inquire"));
  EXPECT_EQ(reason(3),
            QStringLiteral("This applet says that it has -5 applets: ") + Applet("odd-count"));
  EXPECT_EQ(m_list->item(0)->text(), QStringLiteral("crash-at-inquire"));
  EXPECT_EQ(m_list->item(0)->icon().pixmap(48, 48).toImage(),
            qt::PlainIcon().pixmap(48, 48).toImage());
  EXPECT_EQ(Status(), reason(0));
}

TEST_F(Panel, ShowsAToolTipAsItStandsWhateverAFolderIsCalled) {
  const QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/<b>XXXXXX"));
  ASSERT_TRUE(QFile::copy(Applet("odd-count"), folder.filePath(QStringLiteral("a.cpl"))));
  m_settings.places = {folder.path()};
  Show({});
  ASSERT_TRUE(Until([&] { return !m_list->item(0)->toolTip().isEmpty(); }));
  QTextDocument shown;
  shown.setHtml(m_list->item(0)->toolTip());
  EXPECT_TRUE(shown.toPlainText().endsWith(folder.filePath(QStringLiteral("a.cpl"))))
      << m_list->item(0)->toolTip().toStdString();
}

TEST_F(Panel, SaysWhereItLookedIfThereIsNoApplet) {
  m_settings.places = {QStringLiteral("/no/such/folder")};
  Show({});
  QString shown;
  for (const QLabel* label : m_window->findChildren<QLabel*>()) {
    shown += label->isVisible() ? label->text() : QString();
  }
  EXPECT_TRUE(shown.contains(QStringLiteral("There are no applets here yet.")));
  EXPECT_TRUE(shown.contains(QStringLiteral("/no/such/folder")));
  EXPECT_FALSE(m_list->isVisible());
}

TEST_F(Panel, FindsANewAppletOnRefresh) {
  const QTemporaryDir folder;
  m_settings.places = {folder.path()};
  Show({});
  EXPECT_EQ(m_list->count(), 0);
  ASSERT_TRUE(QFile::copy(Applet("good"), folder.filePath(QStringLiteral("new.cpl"))));
  m_window->Refresh();
  EXPECT_TRUE(WaitForName("Alpha"));
  EXPECT_TRUE(m_list->isVisible());
}

TEST_F(Panel, TypingSelectsAndEnterOpens) {
  AppletTrace trace;
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  Press(Qt::Key_A, QStringLiteral("a"));
  EXPECT_EQ(m_list->currentItem()->text(), QStringLiteral("Alpha"));
  Press(Qt::Key_Return);
  EXPECT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("5 1 101")); }));
}

TEST_F(Panel, ADoubleClickOpensTheAppletUnderIt) {
  AppletTrace trace;
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  const QRect icon =
      m_list->visualItemRect(m_list->findItems(QStringLiteral("Alpha"), Qt::MatchExactly).at(0));
  QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, icon.center());
  EXPECT_EQ(m_list->currentItem()->text(), QStringLiteral("Alpha"));
  EXPECT_EQ(Status().indexOf(QStringLiteral("Opening")), -1) << "One click selects.";
  QTest::mouseDClick(m_list->viewport(), Qt::LeftButton, {}, icon.center());
  EXPECT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("5 1 101")); }));
}

TEST_F(Panel, BringsAnOpenAppletForwardAndSaysWhy) {
  AppletTrace trace;
  trace.Stay();
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  Press(Qt::Key_Return);
  EXPECT_EQ(Status(), QStringLiteral("Opening Beta"));
  ASSERT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("shown")); }));
  Press(Qt::Key_Return);
  EXPECT_EQ(Status(), QStringLiteral("Beta is open already; its window was brought forward."));
  EXPECT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("restored")); }));
  EXPECT_EQ(trace.Lines().count(QStringLiteral("5 0 100")), 1) << "was opened once";
  trace.Leave();
  EXPECT_TRUE(WaitForStatus(""));
}

TEST_F(Panel, OpensASampleInPlaceOfTheOneThatIsOpenAndNamesItInTheTitle) {
  const QTemporaryDir folder;
  qputenv("XDG_CACHE_HOME", folder.filePath(QStringLiteral("cache")).toUtf8());
  ASSERT_TRUE(QFile::copy(Applet("good"), folder.filePath(QStringLiteral("voxtrel.cpl"))));
  m_settings.places = {folder.path()};
  AppletTrace trace;
  trace.Stay();
  Show({});
  ASSERT_TRUE(WaitForName("Alpha"));
  const auto tryWith = [this](const char* name) {
    for (QAction* action : m_window->findChildren<QAction*>()) {
      if (action->text().contains(QString::fromUtf8(name))) {
        action->trigger();
      }
    }
  };
  const auto waitFor = [&trace](const char* line) {
    return Until([&] { return trace.Lines().contains(QString::fromUtf8(line)); });
  };
  tryWith("“Anna”");
  ASSERT_TRUE(waitFor("as samples: “Anna”"));
  tryWith("“Oliver”");
  EXPECT_TRUE(waitFor("as samples: “Oliver”"));
  tryWith("“Oliver”");
  EXPECT_EQ(Status(), QStringLiteral("Beta is open already; its window was brought forward."));
  EXPECT_EQ(Box(), nullptr) << "Nobody asks why the first one has ended.";
  trace.Leave();
  EXPECT_TRUE(WaitForStatus(""));
  qunsetenv("XDG_CACHE_HOME");
}

TEST_F(Panel, OpensItsHelpInABrowserThatNothingButItsNameMakesOne) {
  const QTemporaryDir folder;
  const QString called = folder.filePath(QStringLiteral("called"));
  QFile browser(folder.filePath(QStringLiteral("firefox")));
  ASSERT_TRUE(browser.open(QIODevice::WriteOnly));
  browser.write("#!/bin/sh\necho \"$1\" >'" + called.toUtf8() + ".new'\n/bin/mv '" +
                called.toUtf8() + ".new' '" + called.toUtf8() + "'\n");
  browser.close();
  browser.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", folder.path().toUtf8());
  Show({"good"});
  for (QAction* action : m_window->findChildren<QAction*>()) {
    if (action->shortcut() == QKeySequence(QKeySequence::HelpContents)) {
      action->trigger();
    }
  }
  qputenv("PATH", path);
  ASSERT_TRUE(Until([&] { return QFile::exists(called); }));
  EXPECT_TRUE(panel_test::ReadAll(called).endsWith(
      QStringLiteral("share/voxtrel/help/ZedraVoxtrelPE_help.htm\n")));
}

TEST_F(Panel, SaysNoLongerThatItOpensAnAppletWhoseWindowIsThere) {
  AppletTrace trace;
  trace.Stay();
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  Press(Qt::Key_Return);
  EXPECT_EQ(Status(), QStringLiteral("Opening Beta"));
  EXPECT_TRUE(WaitForStatus(""));
  EXPECT_EQ(trace.Lines().count(QStringLiteral("6 0 100")), 1) << "It is open still.";
  trace.Leave();
}

TEST_F(Panel, LivesOnWhenAnAppletCrashes) {
  Show({"crash-at-open"});
  ASSERT_TRUE(WaitForName("Beta"));
  Press(Qt::Key_Return);
  EXPECT_TRUE(WaitForStatus("Beta has crashed."));
  ASSERT_NE(Box(), nullptr);
  EXPECT_TRUE(Box()->text().contains(QStringLiteral("you can open Beta again")));
  Press(Qt::Key_Return);
  EXPECT_EQ(Status(), QStringLiteral("Opening Beta"));
  EXPECT_TRUE(WaitForStatus("Beta has crashed."));
}

TEST_F(Panel, PassesOnWhatAnAppletSays) {
  Show({"says-at-open"});
  ASSERT_TRUE(WaitForName("Beta"));
  Press(Qt::Key_Return);
  EXPECT_TRUE(WaitForStatus("It is busy."));
  EXPECT_EQ(Box(), nullptr) << "nothing went wrong";
}

TEST_F(Panel, ShowsWhatWentWrong) {
  Show({"fails-at-open"});
  ASSERT_TRUE(WaitForName("Beta"));
  Press(Qt::Key_Return);
  EXPECT_TRUE(WaitForStatus("It is busy."));
  ASSERT_NE(Box(), nullptr);
  EXPECT_EQ(Box()->text(), QStringLiteral("It is busy."));
}

TEST_F(Panel, OffersToCloseAnAppletThatHangs) {
  m_settings.patience = std::chrono::milliseconds(200);
  Show({"hang-at-open"});
  ASSERT_TRUE(WaitForName("Beta"));
  Press(Qt::Key_Return);
  ASSERT_TRUE(Until([&] { return Box() != nullptr; }));
  EXPECT_TRUE(Box()->text().startsWith(QStringLiteral("Beta does not answer.")));
  ASSERT_EQ(Box()->buttons().size(), 2);
  for (QAbstractButton* button : Box()->buttons()) {
    if (button->text() == QStringLiteral("&Close it")) {
      button->click();
      break;
    }
  }
  EXPECT_TRUE(WaitForStatus("Beta was closed because it did not answer."));
  EXPECT_EQ(Box(), nullptr);
}

TEST_F(Panel, CanBeReadByAScreenReader) {
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(m_list);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Applets"));
  EXPECT_EQ(list->role(), QAccessible::List);
  ASSERT_EQ(list->childCount(), 2);
  EXPECT_EQ(list->child(0)->text(QAccessible::Name), QStringLiteral("Beta"));
  EXPECT_EQ(list->child(0)->role(), QAccessible::ListItem);
  EXPECT_EQ(list->child(0)->text(QAccessible::Description), Applet("good"));
}

/// On a machine without contacts and without a microphone.
class NewcomersPanel : public Panel {
 protected:
  void SetUp() override {
    Panel::SetUp();
    QFile script(m_folder.filePath(QStringLiteral("voxtrel")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(
        "#!/bin/sh\n[ \"$*\" = '--json status' ] || exit 1\n"
        "echo '{\"contacts\":{\"count\":0,\"problem\":\"\"},\"microphones\":0}'\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    m_settings.commandLine = script.fileName();
  }

  const QTemporaryDir m_folder;
};

TEST_F(NewcomersPanel, DoesNotLetTheAppletSayOnceMoreWhatTheBarSays) {
  for (const bool isHidden : {false, true}) {
    AppletTrace trace;
    trace.Stay();
    m_settings.places.clear();
    Show({"good"});
    auto* const notice = m_window->findChild<QLabel*>(QStringLiteral("noticeText"));
    ASSERT_TRUE(Until([&] { return notice->isVisible(); }));
    ASSERT_TRUE(WaitForName("Alpha"));
    notice->parentWidget()->setHidden(isHidden);
    Press(Qt::Key_Return);
    ASSERT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("shown")); }));
    EXPECT_EQ(trace.Lines().contains(QStringLiteral("welcomed")), !isHidden);
    trace.Leave();
  }
}

TEST_F(NewcomersPanel, ShowsANewcomerWhatIsMissing) {
  Show({"good"});
  const auto* const notice = m_window->findChild<QLabel*>(QStringLiteral("noticeText"));
  EXPECT_FALSE(notice->isVisible());
  ASSERT_TRUE(Until([&] { return notice->isVisible(); }));
  EXPECT_TRUE(notice->text().contains(QStringLiteral("No microphone was found.")));
  EXPECT_FALSE(m_window->findChild<QPushButton*>(QStringLiteral("noticeAction"))->isVisible())
      << "there is no voice dialer here to try";
}

/// A panel whose command line says what the test wrote, and a watch that the test calls.
class PanelEquipment : public Panel {
 protected:
  PanelEquipment() {
    QFile script(m_folder.filePath(QStringLiteral("voxtrel")));
    EXPECT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\necho $$ >'" + Path("process").toUtf8() + "'\ncat '" +
                 Path("answer").toUtf8() + "'\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    m_settings.commandLine = script.fileName();
    m_settings.watchInputs = [this](std::function<void()> changed) {
      m_changed = std::move(changed);
      return std::make_unique<platform::WaveInputs::Watch>();
    };
  }

  void SetMicrophones(int count) {
    QFile answer(Path("answer"));
    ASSERT_TRUE(answer.open(QIODevice::WriteOnly));
    answer.write("{\"contacts\":{\"count\":1,\"problem\":\"\"},\"microphones\":" +
                 QByteArray::number(count) + "}\n");
  }
  [[nodiscard]] bool IsShown() const {
    return m_window->findChild<QLabel*>(QStringLiteral("noticeText"))->isVisible();
  }
  /// Returns whether the command line has come to its end since its file was removed.
  [[nodiscard]] bool HasAnswered() const {
    const int process = panel_test::ReadAll(Path("process")).trimmed().toInt();
    return process > 0 && ::kill(process, 0) != 0;
  }
  [[nodiscard]] QString Path(const char* name) const {
    return m_folder.filePath(QLatin1String(name));
  }

  const QTemporaryDir m_folder;
  std::function<void()> m_changed;
};

TEST_F(PanelEquipment, SaysNoLongerThatThereIsNoMicrophoneWhenOneAppears) {
  SetMicrophones(0);
  Show({"good"});
  ASSERT_TRUE(Until([&] { return IsShown(); }));
  ASSERT_NE(m_changed, nullptr) << "It watches the microphones from now on.";
  SetMicrophones(1);
  m_changed();
  EXPECT_TRUE(Until([&] { return !IsShown(); }));
}

TEST_F(PanelEquipment, IsLookedForAgainWhenTheUserComesBack) {
  SetMicrophones(0);
  Show({"good"});
  ASSERT_TRUE(Until([&] { return IsShown(); }));
  SetMicrophones(1);
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  m_window->activateWindow();
  EXPECT_TRUE(Until([&] { return !IsShown(); }));
}

TEST_F(PanelEquipment, IsLookedForAgainOnRefresh) {
  SetMicrophones(0);
  Show({"good"});
  ASSERT_TRUE(Until([&] { return IsShown(); }));
  SetMicrophones(1);
  m_window->Refresh();
  EXPECT_TRUE(Until([&] { return !IsShown(); }));
  SetMicrophones(0);
  m_window->Refresh();
  EXPECT_TRUE(Until([&] { return IsShown(); }));
}

TEST_F(PanelEquipment, IsNotNamedAgainAfterTheUserHidTheBarUntilARefresh) {
  SetMicrophones(0);
  Show({"good"});
  ASSERT_TRUE(Until([&] { return IsShown(); }));
  auto* const bar = m_window->findChild<QLabel*>(QStringLiteral("noticeText"))->parentWidget();
  bar->hide();
  ASSERT_TRUE(QFile::remove(Path("process")));
  m_changed();
  ASSERT_TRUE(Until([&] { return HasAnswered(); }));
  QCoreApplication::processEvents();
  EXPECT_FALSE(IsShown());
  m_window->Refresh();
  EXPECT_TRUE(Until([&] { return IsShown(); }));
}

TEST_F(Panel, ClosesWhileAnAppletStaysOpen) {
  AppletTrace trace;
  trace.Stay();
  Show({"good"});
  ASSERT_TRUE(WaitForName("Alpha"));
  Press(Qt::Key_Return);
  ASSERT_TRUE(Until([&] { return trace.Lines().contains(QStringLiteral("shown")); }));
  m_window->close();
  EXPECT_FALSE(m_window->isVisible());
  const auto ends = [&] { return trace.Lines().count(QStringLiteral("7 0 0")); };
  EXPECT_EQ(ends(), 1) << "of the process that asked, not of the one that is open";
  trace.Leave();
  // The panel ends with the last applet.
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_EQ(ends(), 2);
}

}  // namespace

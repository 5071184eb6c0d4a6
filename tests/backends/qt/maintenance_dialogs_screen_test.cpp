#include <gmock/gmock.h>

#include <QApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QProgressBar>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <semaphore>

#include "backends/posix/posix_threads.h"
#include "maintenance/reinit_threads.h"
#include "maintenance/test_dialog.h"
#include "resources/dialogs.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"
#include "tests/maintenance/session_fixture.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_threads.h"

namespace {

using support::User;
using testing::ElementsAre;

/// What the worker waits for before each recording: that the bar's next value was painted. Other
/// waits are none.
class PaintedBar {
 public:
  /// The worker sleeps.
  void OnSleep(std::uint32_t milliseconds) {
    if (milliseconds != 300) {
      return;
    }
    std::unique_lock lock(m_mutex);
    ++m_recordings;
    m_isPainted &= m_changed.wait_for(lock, std::chrono::seconds(30),
                                      [this] { return m_value >= m_recordings; });
  }
  void OnPainted(int value) {
    const std::lock_guard lock(m_mutex);
    m_value = value;
    m_changed.notify_all();
  }
  /// Whether no wait was in vain.
  [[nodiscard]] bool IsPainted() {
    const std::lock_guard lock(m_mutex);
    return m_isPainted;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  int m_recordings = 0;
  int m_value = 0;
  bool m_isPainted = true;
};

/// Notes, by a timer's call, which values of the bar were painted.
class BarPainting final : public QObject {
 public:
  explicit BarPainting(PaintedBar& bar) : m_bar(bar) { qApp->installEventFilter(this); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* bar = dynamic_cast<QProgressBar*>(watched);
    if (bar != nullptr && event->type() == QEvent::Paint) {
      QTimer::singleShot(0, this, [this, value = bar->value()] {
        if (values.empty() || values.back() != value) {
          values.push_back(value);
        }
        m_bar.OnPainted(value);
      });
    }
    return false;
  }

  std::vector<int> values;

 private:
  PaintedBar& m_bar;
};

/// The dialogs that look after the tags, on real widgets and with real threads.
class MaintenanceDialogsScreen : public SessionFixture {
 protected:
  MaintenanceDialogsScreen() {
    m_session.workerEvent = m_threads.CreateManualResetEvent().value();
    m_clock.SetListener([this](std::uint32_t milliseconds) { m_bar.OnSleep(milliseconds); });
  }

  [[nodiscard]] platform::Platform GetPlatform() {
    const platform::Platform machine = m_machine.Get();
    return {machine.files, machine.waveIn,   m_clock,          m_threads,       machine.process,
            m_ui,          machine.registry, machine.contacts, machine.waveOut, machine.shell};
  }

  int RunTest(const std::function<void()>& story) {
    maintenance::TestDialog dialog(GetPlatform(), m_texts);
    dialog.set_Pageone_point(&m_session);
    m_user.Soon([&story] {
      story();
      User::GetWindow()->reject();
    });
    return dialog.DoModal();
  }

  int Reinitialize() {
    maintenance::ReinitProgressDialog dialog(GetPlatform(), m_texts);
    dialog.set_Pageone_point(&m_session);
    m_session.worker =
        m_threads
            .Start(
                [&] {
                  maintenance::ReinitWorker(GetPlatform(), m_texts, m_session, dialog.GetProgress())
                      .Run();
                },
                platform::ThreadStart::kSuspended)
            .value();
    const int result = dialog.DoModal();
    m_session.worker.reset();
    return result;
  }

  void PutTags(int count) {
    for (int i = 1; i <= count; ++i) {
      const std::u16string name = language::Decimal(i);
      m_session.AddTag(name, u"Tag " + name);
      PutRecording(name, static_cast<std::uint32_t>(i));
    }
  }

  [[nodiscard]] static std::vector<QString> GetWaitLines() {
    std::vector<QString> lines;
    for (const int id : {resources::kReinitWaitLine1Id, resources::kReinitWaitLine2Id}) {
      lines.push_back(dynamic_cast<QLabel*>(User::Find(id))->text());
    }
    return lines;
  }

  qt::UiThread m_thread;
  PaintedBar m_bar;
  support::WatchedClock m_clock;
  posix::PosixThreads m_realThreads;
  framework::ServedThreads m_threads{m_thread, m_realThreads};
  qt::QtUi m_ui{m_thread, u"Zedra Voxtrel", support::TestPictures()};
  User m_user;
  BarPainting m_painting{m_bar};
};

TEST_F(MaintenanceDialogsScreen, TheTestShowsItsLinesAndShortOnesNeedNoScrolling) {
  PutTag(u"1", u"Ann", {1, 2, 3, 4, 5});
  PutTag(u"2", u"Bob", {1, 2, 3, 4, 6});
  RunTest([] {
    const QListWidget* list = User::FindList(resources::kTestListId);
    ASSERT_EQ(list->count(), 2);
    EXPECT_TRUE(list->item(0)->text().endsWith(QStringLiteral("%; 1; Ann;  Bob")));
    EXPECT_TRUE(list->item(1)->text().endsWith(QStringLiteral("%; 1; Bob;  Ann")));
    EXPECT_EQ(list->horizontalScrollBar()->maximum(), 0);
  });
}

TEST_F(MaintenanceDialogsScreen, ATestThatTakesLongShowsABoxThatGoesByItselfOrByCancel) {
  PutTag(u"1", u"Ann", {1, 2, 3, 4, 5});
  PutTag(u"2", u"Bob", {1, 2, 3, 4, 6});
  // Each question for the time is a second later than the one before.
  support::WatchedClock clock;
  clock.SetTicks({1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000, 10000});
  std::counting_semaphore<> released{0};
  support::WatchedThreads threads(m_threads);
  threads.SetEntry([&released] { released.acquire(); });
  const platform::Platform machine = GetPlatform();
  maintenance::TestDialog dialog(
      {machine.files, machine.waveIn, clock, threads, machine.process, machine.ui, machine.registry,
       machine.contacts, machine.waveOut, machine.shell},
      m_texts);
  dialog.set_Pageone_point(&m_session);
  for (const bool isCancelled : {false, true}) {
    m_user.Soon([&] {
      EXPECT_EQ(User::GetWindow()->findChildren<QProgressBar*>().size(), 1);
      if (isCancelled) {
        User::Click(resources::kComparisonCancelId);
      }
      released.release();
    });
    int lines = -1;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
      auto* window = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
      const auto* list = window == nullptr ? nullptr : window->findChild<QListWidget*>();
      if (list != nullptr) {
        lines = list->count();
        window->reject();
      }
    });
    look.start(10);
    dialog.DoModal();
    EXPECT_EQ(lines, isCancelled ? 0 : 2);
    EXPECT_EQ(m_user.GetBoxes().size(), isCancelled ? 1U : 0U);
  }
}

TEST_F(MaintenanceDialogsScreen, TheTestCanBeScrolledToTheEndOfALongLine) {
  PutTag(u"1", std::u16string(60, u'W'), {1, 2, 3, 4, 5});
  PutTag(u"2", u"Bob", {1, 2, 3, 4, 6});
  RunTest([] {
    const QListWidget* list = User::FindList(resources::kTestListId);
    const QScrollBar* bar = list->horizontalScrollBar();
    const int line = QFontMetrics(list->font()).horizontalAdvance(list->item(0)->text());
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_GE(bar->maximum() + list->viewport()->width(), line);
  });
}

TEST_F(MaintenanceDialogsScreen, TheWaitingWindowPaintsEachStepWhileTheWorkerWorks) {
  PutTags(3);
  std::vector<QString> lines;
  m_user.Soon([&lines] { lines = GetWaitLines(); });
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_TRUE(m_bar.IsPainted());
  EXPECT_THAT(m_painting.values, testing::IsSupersetOf({1, 2, 3}));
  EXPECT_TRUE(std::ranges::is_sorted(m_painting.values));
  EXPECT_THAT(lines, ElementsAre("Please wait a few", "seconds..."));
  EXPECT_TRUE(m_user.GetBoxes().empty());
  EXPECT_TRUE(m_machine.files.GetFile(storage::TemplatePath(u"3")).has_value());
}

TEST_F(MaintenanceDialogsScreen, AfterTheWorkerGaveUpTheUserIsToldToCloseAndCan) {
  PutTags(2);
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::TemplatePath(u"1")));
  QTimer look;
  int looks = 0;
  QObject::connect(&look, &QTimer::timeout, [&] {
    const bool isTold = GetWaitLines().front() == QStringLiteral("The work has stopped.");
    if (isTold || ++looks == 3000) {
      look.stop();
      EXPECT_THAT(GetWaitLines(), ElementsAre("The work has stopped.", "Press Escape to close."));
      User::Type(Qt::Key_Escape);
    }
  });
  m_user.SetAnswer([&](QDialog& box) {
    EXPECT_FALSE(box.isModal());
    QDialog* window = User::GetWindow();
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible()) << "Not before the box was answered.";
    EXPECT_THAT(GetWaitLines(), ElementsAre("Please wait a few", "seconds..."));
    User::Click(box.findChild<QPushButton*>(QStringLiteral("ok")));
    look.start(10);
  });
  EXPECT_EQ(Reinitialize(), framework::kIdCancel);
  ASSERT_EQ(m_user.GetBoxes().size(), 1U);
  EXPECT_TRUE(m_user.GetBoxTexts().front().startsWith(QStringLiteral("ERROR in CreateFile")));
}

}  // namespace

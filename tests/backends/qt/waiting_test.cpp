#include <gmock/gmock.h>

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "backends/posix/posix_threads.h"
#include "backends/qt/ui_thread.h"
#include "backends/vcard/contact_source.h"
#include "tests/backends/qt/dialog_fixture.h"
#include "tests/support/results.h"
#include "tests/support/watched_threads.h"

namespace {

using platform::ThreadStart;
using platform::WaitResult;
using support::User;
using testing::ElementsAre;

/// The user-interface thread waits.
class Waiting : public DialogFixture {
 protected:
  /// Waits on this thread for `open` to be called.
  void AwaitOpening() {
    m_thread.Await([this] { m_opening.get_future().wait(); });
  }
  void Open() { m_opening.set_value(); }

  std::promise<void> m_opening;
};

TEST_F(Waiting, ServesPostedCallsInTheirOrder) {
  std::vector<int> served;
  m_thread.Post([&] { served.push_back(1); });
  m_thread.Post([&] {
    served.push_back(2);
    Open();
  });
  AwaitOpening();
  EXPECT_THAT(served, ElementsAre(1, 2));
}

TEST_F(Waiting, GoesOnPainting) {
  class Widget final : public QWidget {
   public:
    explicit Widget(std::function<void()> onPaint) : m_onPaint(std::move(onPaint)) {}

   protected:
    void paintEvent(QPaintEvent* /*event*/) override {
      std::exchange(m_onPaint, [] {})();
    }

   private:
    std::function<void()> m_onPaint;
  } widget([this] { Open(); });
  widget.show();
  AwaitOpening();
}

TEST_F(Waiting, AnAddressBookThatIsSlowToAnswerLeavesTheWindowAlive) {
  /// Answers once the user-interface thread has served a call, or was given up.
  class SlowBook final : public vcard::ContactSource {
   public:
    explicit SlowBook(qt::UiThread& thread) : m_thread(thread) {}

    vcard::ReadBooks Read(vcard::RemarkList& /*remarks*/) override {
      m_thread.Post([this] { m_served.set_value(); });
      const bool isAlive =
          m_served.get_future().wait_for(std::chrono::seconds(60)) == std::future_status::ready;
      return isAlive ? vcard::ReadBooks() : platform::Failure(platform::BooksError());
    }

   private:
    qt::UiThread& m_thread;
    std::promise<void> m_served;
  } book(m_thread);
  posix::PosixThreads real;
  framework::ServedThreads threads(m_thread, real);
  vcard::RemarkList remarks;
  EXPECT_TRUE(vcard::BackgroundSource(book, threads).Read(remarks));
}

TEST_F(Waiting, HoldsBackWhatMustNotRunDuringAWait) {
  std::vector<int> served;
  m_thread.PostForLater([&] { served.push_back(1); });
  m_thread.Post([&] {
    served.push_back(2);
    Open();
  });
  AwaitOpening();
  EXPECT_THAT(served, ElementsAre(2));
  QApplication::processEvents();
  EXPECT_THAT(served, ElementsAre(2, 1));
}

TEST_F(Waiting, OnAnotherThreadItJustCalls) {
  std::thread([this] {
    const auto self = std::this_thread::get_id();
    std::thread::id called;
    m_thread.Await([&] { called = std::this_thread::get_id(); });
    EXPECT_EQ(called, self);
    EXPECT_FALSE(m_thread.IsWaiting());
  }).join();
}

TEST_F(Waiting, OutlastsTheEndOfTheApplication) {
  m_thread.Post([this] {
    QCoreApplication::exit();
    m_thread.Post([this] { Open(); });
  });
  AwaitOpening();
  EXPECT_FALSE(m_thread.IsWaiting());
}

TEST_F(Waiting, TakesNoInput) {
  NotingDialog dialog(m_ui);
  dialog.onCommand = [&](int id) {
    EXPECT_EQ(id, sample::kGo);
    QDialog* window = User::GetWindow();
    m_thread.Post([&, window] {
      User::Click(sample::kStop);
      User::Click(sample::kGo);
      User::ChooseLine(sample::kList, 0);
      User::Type(Qt::Key_Return);
      User::Type(Qt::Key_F1);
      User::Type(Qt::Key_Escape);
      User::Type(Qt::Key_S, Qt::AltModifier);
      QTest::mouseClick(window->findChild<QWidget*>("dialog_77"), Qt::LeftButton, {},
                        QPoint(331, 151));
      EXPECT_FALSE(window->close());
      // A screen reader presses without any event.
      User::FindButton(sample::kStop)->click();
      Open();
    });
    AwaitOpening();
  };
  Run(dialog, [&] {
    dialog.Window().AddItem(sample::kList, u"line");
    User::Click(sample::kGo);
    EXPECT_EQ(dialog.Window().GetSelection(sample::kList), std::nullopt);
    EXPECT_TRUE(dialog.IsAttached());
    dialog.onCommand = {};
    User::Click(sample::kStop);
  });
  EXPECT_EQ(dialog.heard.size(), 2U) << "What was pressed meanwhile is not made up for.";
  EXPECT_EQ(dialog.helps, 0);
  EXPECT_EQ(dialog.cancels, 0);
  EXPECT_TRUE(dialog.presses.empty());
}

TEST_F(Waiting, ShowsAtOnceThatTheWindowIsBusyAndThatABoxIsNot) {
  NotingDialog dialog(m_ui);
  QImage busy;
  Qt::CursorShape busyCursor = Qt::ArrowCursor;
  m_user.SetAnswer([&](QDialog& box) {
    busy = User::Find(sample::kStop)->grab().toImage();
    busyCursor = User::GetWindow()->cursor().shape();
    EXPECT_EQ(box.cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(User::Find(sample::kStop)->isEnabled()) << "It only looks so.";
    box.reject();
    Open();
  });
  Run(dialog, [&] {
    const QImage before = User::Find(sample::kStop)->grab().toImage();
    std::thread worker([&] { m_ui.ShowMessage(platform::ApplicationBox(u"from afar")); });
    AwaitOpening();
    worker.join();
    EXPECT_NE(busy, before);
    EXPECT_EQ(busyCursor, Qt::BusyCursor);
    EXPECT_EQ(User::Find(sample::kStop)->grab().toImage(), before);
    EXPECT_EQ(User::GetWindow()->cursor().shape(), Qt::ArrowCursor);
  });
}

TEST_F(Waiting, AWorkersBoxIsAnsweredAndStopsTheWorkerAlone) {
  m_user.SetAnswer(support::Press("cancel"));
  platform::MessageAnswer answer = platform::MessageAnswer::kOk;
  std::thread worker([&] {
    answer = m_ui.ShowMessage(
        {u"from afar", platform::MessageCaption::kNone, {}, platform::MessageStyle::kOkCancel});
    Open();
  });
  AwaitOpening();
  worker.join();
  EXPECT_EQ(answer, platform::MessageAnswer::kCancel);
  EXPECT_FALSE(m_user.GetBoxes().at(0).isModal);
  QApplication::processEvents();
  EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()) << "The box has gone.";
}

TEST_F(Waiting, EndsWhileAWorkersBoxIsStillOpenWhichThenStandsAboveEverything) {
  QPointer<QDialog> open;
  m_user.SetAnswer([&](QDialog& box) {
    open = &box;
    Open();
  });
  std::thread worker([&] { m_ui.ShowMessage(platform::ApplicationBox(u"from afar")); });
  NotingDialog dialog(m_ui);
  const auto story = [&] {
    // Through the window system, which spares no window that another one blocks.
    const auto click = [](QWidget* widget) {
      const QPoint place = widget->mapTo(widget->window(), widget->rect().center());
      QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {}, place);
    };
    click(User::Find(sample::kStop));
    EXPECT_EQ(dialog.heard.size(), 1U) << "The dialog can be used.";
    EXPECT_TRUE(open->isVisible());
    click(open->findChild<QPushButton*>("ok"));
    EXPECT_TRUE(open.isNull() || !open->isVisible());
    dialog.EndDialog(1);
  };
  dialog.onInit = [&] {
    AwaitOpening();
    m_user.Soon(story);
  };
  dialog.DoModal();
  worker.join();
}

TEST_F(Waiting, ABoxOfThePageComesOnlyWhenTheBoxOfAWorkerIsAnswered) {
  QPointer<QDialog> first;
  m_user.SetAnswer([&](QDialog& box) {
    if (m_user.GetBoxes().size() == 1) {
      first = &box;
      Open();
    } else {
      box.reject();
    }
  });
  std::thread worker([&] { m_ui.ShowMessage(platform::ApplicationBox(u"no microphone")); });
  AwaitOpening();
  std::size_t shownAtFirstAnswer = 0;
  m_user.Soon([&] {
    shownAtFirstAnswer = m_user.GetBoxes().size();
    User::Click(first->findChild<QPushButton*>("ok"));
  });
  m_ui.ShowMessage(platform::ApplicationBox(u"no recording"));
  worker.join();
  EXPECT_EQ(shownAtFirstAnswer, 1U);
  EXPECT_THAT(m_user.GetBoxTexts(), ElementsAre("no microphone", "no recording"));
}

TEST_F(Waiting, TheHandleOfAThreadIsGivenUpWithoutBlockingTheWorkersBox) {
  framework::ServedThreads threads(m_thread, m_machine.simulation);
  auto thread = threads
                    .Start([&] { m_ui.ShowMessage(platform::ApplicationBox(u"last words")); },
                           ThreadStart::kRunning)
                    .value();
  thread.reset();
  EXPECT_THAT(m_user.GetBoxTexts(), ElementsAre("last words"));
  EXPECT_EQ(m_user.GetBoxes().at(0).caption, "Zedra Voxtrel");
}

TEST_F(Waiting, TheClockIsTheInnerOne) {
  framework::ServedClock clock(m_thread, m_machine.simulation);
  EXPECT_EQ(clock.GetTickCount(), 1000U);
  clock.Sleep(300);
  EXPECT_EQ(clock.GetTickCount(), 1300U);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 300U);
}

TEST_F(Waiting, ThreadsAndEventsAreTheInnerOnes) {
  framework::ServedThreads threads(m_thread, m_machine.simulation);
  const auto event = threads.CreateManualResetEvent().value();
  EXPECT_EQ(event->Wait(100), WaitResult::kTimedOut);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 100U);
  const auto thread = threads.Start([&] { event->Set(); }, ThreadStart::kSuspended).value();
  EXPECT_EQ(thread->Wait(50), WaitResult::kTimedOut);
  thread->Resume();
  EXPECT_EQ(event->Wait(platform::kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(thread->Wait(platform::kNoLimit), WaitResult::kSignalled);
  event->Reset();
  EXPECT_EQ(event->Wait(0), WaitResult::kTimedOut);
  const auto mutex = threads.CreateNamedMutex(u"name");
  EXPECT_EQ(support::ErrorOf(threads.CreateNamedMutex(u"name")), platform::ThreadError::kHeld);
}

TEST_F(Waiting, AThreadNeverResumedEndsWithoutHavingRun) {
  framework::ServedThreads threads(m_thread, m_machine.simulation);
  bool hasRun = false;
  {
    const auto thread = threads.Start([&] { hasRun = true; }, ThreadStart::kSuspended).value();
  }
  EXPECT_FALSE(hasRun);
}

TEST_F(Waiting, NoThreadsFromASystemThatHasNone) {
  using support::WatchedThreads;
  WatchedThreads poor(m_machine.simulation);
  poor.Refuse({WatchedThreads::Made::kThread, WatchedThreads::Made::kEvent});
  framework::ServedThreads threads(m_thread, poor);
  EXPECT_EQ(support::ErrorOf(threads.Start([] {}, ThreadStart::kRunning)),
            platform::ThreadError::kRefused);
  EXPECT_EQ(support::ErrorOf(threads.CreateManualResetEvent()), platform::ThreadError::kRefused);
}

}  // namespace

#include "maintenance/comparison_dialog.h"

#include <functional>
#include <memory>
#include <optional>

#include "backends/headless/headless_dialog.h"
#include "backends/posix/posix_threads.h"
#include "maintenance/test_dialog.h"
#include "resources/dialogs.h"
#include "tests/maintenance/session_fixture.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_threads.h"

namespace {

using resources::kComparisonCancelId;
using resources::kProgressBarId;
using resources::kTestListId;
using Made = support::WatchedThreads::Made;

class ComparisonDialogTest : public SessionFixture {
 protected:
  ComparisonDialogTest() {
    for (int i = 0; i < 20; ++i) {
      const std::u16string name = language::Decimal(1000 + i);
      const auto value = static_cast<float>(i);
      PutTag(name, name, {1, value, value * value, 0, 0});
    }
  }

  using Story = std::function<void(headless::HeadlessDialog&)>;

  [[nodiscard]] platform::Platform With(platform::Clock& clock, platform::Threads& threads) {
    const platform::Platform all = m_machine.Get();
    return {all.files, all.waveIn,   clock,        threads,     all.process,
            all.ui,    all.registry, all.contacts, all.waveOut, all.shell};
  }

  /// What a Test dialog lists. `whileWaiting` is done by the user if the box appears.
  Texts TestOn(const platform::Platform& platform, const Story& whileWaiting) {
    maintenance::TestDialog dialog(platform, m_texts);
    dialog.set_Pageone_point(&m_session);
    m_boxes = 0;
    Texts lines;
    m_machine.ui.SetDialogStory(141, [&](headless::HeadlessDialog& window) {
      ++m_boxes;
      whileWaiting(window);
    });
    m_machine.ui.SetDialogStory(
        140, [&](headless::HeadlessDialog& window) { lines = window.GetItems(kTestListId); });
    EXPECT_EQ(dialog.DoModal(), framework::kIdCancel);
    m_isComplete = dialog.IsComplete();
    EXPECT_EQ(dialog.GetLines().size(), lines.size());
    return lines;
  }

  Texts TestSlowly(const Story& whileWaiting) {
    support::WatchedClock clock;
    clock.SetTicks({0, 1000});
    return TestOn(With(clock, m_machine.simulation), whileWaiting);
  }

  Texts TestQuickly() {
    return TestOn(m_machine.Get(), [](headless::HeadlessDialog&) {});
  }

  int m_boxes = 0;
  bool m_isComplete = false;
};

TEST_F(ComparisonDialogTest, AppearsOnlyOnceASecondHasPassed) {
  support::WatchedClock quick;
  quick.SetTicks({5, 6, 1004});
  const Texts lines = TestOn(With(quick, m_machine.simulation), [](headless::HeadlessDialog&) {});
  EXPECT_EQ(m_boxes, 0);
  support::WatchedClock slow;
  slow.SetTicks({5, 6, 1005});
  EXPECT_EQ(TestOn(With(slow, m_machine.simulation),
                   [](headless::HeadlessDialog& window) { EXPECT_TRUE(window.WaitForEnd()); }),
            lines);
  EXPECT_EQ(m_boxes, 1);
}

TEST_F(ComparisonDialogTest, GoesByItselfWithAllLinesListed) {
  const Texts expected = TestQuickly();
  ASSERT_EQ(expected.size(), 20U);
  EXPECT_EQ(TestSlowly([](headless::HeadlessDialog& window) {
              EXPECT_TRUE(window.WaitForEnd());
              EXPECT_EQ(window.GetResult(), framework::kIdOk);
            }),
            expected);
  EXPECT_TRUE(m_isComplete);
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(ComparisonDialogTest, ItsBarFollowsTheWork) {
  TestSlowly([](headless::HeadlessDialog& window) {
    const auto before = window.GetProgress(kProgressBarId);
    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(before->position, 0);
    EXPECT_EQ(before->bar.maximum, 100);
    EXPECT_TRUE(window.WaitForEnd());
    const int after = window.GetProgress(kProgressBarId)->position;
    EXPECT_GT(after, 50);
    EXPECT_LE(after, 100);
  });
}

TEST_F(ComparisonDialogTest, ItsBarStandsBetweenTheTextAndTheButton) {
  TestSlowly([](headless::HeadlessDialog& window) {
    const platform::Rect bar = window.GetProgress(kProgressBarId)->bar.rect;
    const platform::Rect text = window.GetControlRect(resources::kComparisonTextId);
    const platform::Rect button = window.GetControlRect(kComparisonCancelId);
    EXPECT_GT(bar.top, text.bottom);
    EXPECT_GT(bar.bottom, bar.top);
    EXPECT_LT(bar.bottom, button.top);
  });
}

TEST_F(ComparisonDialogTest, TheCursorSaysWaitOnlyWhileThereIsNoBox) {
  TestSlowly([this](headless::HeadlessDialog& window) {
    EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
    EXPECT_TRUE(window.WaitForEnd());
  });
  EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
}

TEST_F(ComparisonDialogTest, CancelLeavesTheListEmptyAndSaysSo) {
  const Texts cancelled{
      u"The test was cancelled. Nothing is listed, since not all voice tags were compared."};
  EXPECT_EQ(TestSlowly([](headless::HeadlessDialog& window) { window.Press(kComparisonCancelId); }),
            Texts());
  EXPECT_FALSE(m_isComplete);
  EXPECT_EQ(GetMessages(), cancelled);
  EXPECT_EQ(TestQuickly().size(), 20U) << "The next test is a whole one.";
  EXPECT_TRUE(m_isComplete);
}

TEST_F(ComparisonDialogTest, ItsCloseBoxIsCancelToo) {
  EXPECT_EQ(TestSlowly([](headless::HeadlessDialog& window) { window.Close(); }), Texts());
  EXPECT_FALSE(m_isComplete);
}

TEST_F(ComparisonDialogTest, EnterIsNoAnswerToIt) {
  EXPECT_EQ(TestSlowly([](headless::HeadlessDialog& window) {
              window.PressEnter();
              EXPECT_EQ(window.GetResult(), std::nullopt);
              EXPECT_TRUE(window.WaitForEnd());
            }).size(),
            20U);
}

TEST_F(ComparisonDialogTest, WithoutAThreadAllIsComparedBeforeItIsShown) {
  support::WatchedClock clock;
  clock.SetTicks({0, 1000});
  support::WatchedThreads threads(m_machine.simulation);
  threads.Refuse({Made::kThread, Made::kEvent, Made::kMutex});
  EXPECT_EQ(TestOn(With(clock, threads), [](headless::HeadlessDialog&) {}), TestQuickly());
  EXPECT_EQ(m_boxes, 0);
}

TEST_F(ComparisonDialogTest, OnRealThreadsItEndsByItselfAndByCancel) {
  posix::PosixThreads threads("");
  m_machine.ui.UseThreads(threads);
  for (const bool isCancelled : {false, true}) {
    support::WatchedClock clock;
    clock.SetTicks({0, 1000});
    TestOn(With(clock, threads), [=](headless::HeadlessDialog& window) {
      if (isCancelled) {
        window.Press(kComparisonCancelId);
      } else {
        EXPECT_TRUE(window.WaitForEnd());
      }
    });
    // The thread may have ended before anybody could cancel.
    EXPECT_TRUE(m_isComplete || isCancelled);
  }
}

}  // namespace

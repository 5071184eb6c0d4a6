#include "host/applet/late_presentation.h"

#include <gtest/gtest.h>

#include <memory>

#include "backends/headless/headless_ui.h"
#include "tests/machine/simulation.h"

namespace {

/// Notes which clock slept: the one of the presentation or the plain one.
class NotingClock final : public platform::Clock {
 public:
  std::uint32_t GetTickCount() override { return 7; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return 0; }
  void Sleep(std::uint32_t milliseconds) override { m_slept += milliseconds; }

  std::uint32_t m_slept = 0;
};

class OnePresentation final : public applet::Presentation {
 public:
  OnePresentation(headless::HeadlessUi& ui, NotingClock& clock, platform::Threads& threads)
      : m_ui(ui), m_clock(clock), m_threads(threads) {}
  platform::Ui& GetUi() override { return m_ui; }
  platform::Clock& GetClock() override { return m_clock; }
  platform::Threads& GetThreads() override { return m_threads; }
  void Watch(int /*descriptor*/, std::function<void()> /*onReadable*/) override {}
  void BringForward(std::string_view /*activationToken*/) override {}

 private:
  headless::HeadlessUi& m_ui;
  NotingClock& m_clock;
  platform::Threads& m_threads;
};

class LatePresentation : public testing::Test {
 protected:
  headless::HeadlessUi m_ui;
  NotingClock m_plainClock;
  NotingClock m_shownClock;
  machine::Simulation m_plainThreads;
  machine::Simulation m_shownThreads;
  int m_made = 0;
  applet::LatePresentation m_late{[this](platform::Clock& clock, platform::Threads& threads) {
                                    ++m_made;
                                    EXPECT_EQ(&clock, &m_plainClock);
                                    EXPECT_EQ(&threads, &m_plainThreads);
                                    return std::make_unique<OnePresentation>(m_ui, m_shownClock,
                                                                             m_shownThreads);
                                  },
                                  m_plainClock, m_plainThreads};
};

TEST_F(LatePresentation, TimeAndThreadsAloneMakeNone) {
  m_late.Sleep(5);
  EXPECT_EQ(m_late.GetTickCount(), 7U);
  EXPECT_TRUE(m_late.CreateManualResetEvent());
  const platform::CreatedMutex held = m_late.CreateNamedMutex(u"name");
  EXPECT_TRUE(m_plainThreads.CreateNamedMutex(u"name").existed);
  EXPECT_TRUE(m_late.Start([] {}, platform::ThreadStart::kRunning));
  EXPECT_EQ(m_plainClock.m_slept, 5U);
  EXPECT_EQ(m_made, 0);
}

TEST_F(LatePresentation, WhatIsShownMakesOneAndFromThenOnWaitsAreItsOwn) {
  m_late.ShowMessage(platform::ApplicationBox(u"text"));
  m_late.ShowMessage(platform::ApplicationBox(u"text"));
  m_late.Beep(platform::Sound::kExclamation);
  m_late.SetCursor(platform::Cursor::kWait);
  EXPECT_EQ(m_made, 1);
  EXPECT_EQ(m_ui.GetMessages().size(), 2U);
  EXPECT_EQ(m_ui.CountBeeps(), 1);
  EXPECT_EQ(m_ui.GetCursor(), platform::Cursor::kWait);
  m_late.Sleep(5);
  EXPECT_EQ(m_shownClock.m_slept, 5U);
  EXPECT_EQ(m_plainClock.m_slept, 0U);
  const platform::CreatedMutex held = m_late.CreateNamedMutex(u"name");
  EXPECT_TRUE(m_shownThreads.CreateNamedMutex(u"name").existed);
  EXPECT_FALSE(m_plainThreads.CreateNamedMutex(u"name").existed);
}

}  // namespace

#include "maintenance/reinit_threads.h"

#include "tests/maintenance/session_fixture.h"

namespace {

/// A bar that remembers when it was moved on.
class NotedProgress final : public maintenance::ReinitProgress {
 public:
  explicit NotedProgress(machine::Simulation& simulation)
      : done(simulation.CreateManualResetEvent().value()), m_simulation(simulation) {}

  void Step() override { steps.push_back(m_simulation.GetElapsed()); }
  platform::Event& GetDoneEvent() override { return *done; }
  [[nodiscard]] bool IsGone() const override { return isGone; }
  void LetUserClose() override {}
  void End() override {}

  std::vector<std::uint64_t> steps;
  std::unique_ptr<platform::Event> done;
  bool isGone = false;

 private:
  machine::Simulation& m_simulation;
};

class ReinitMonitorTest : public SessionFixture {
 protected:
  void Run(std::int32_t tagCount, maintenance::TagSession* page) {
    maintenance::ReinitMonitor(m_machine.Get(), page, m_progress).Run(tagCount);
  }
  [[nodiscard]] bool IsDone() const {
    return m_progress.done->Wait(0) == platform::WaitResult::kSignalled;
  }
  /// A worker that sets the event `count` times, 300 ms apart, and notes when it began.
  void StartWorker(int count) {
    m_session.worker = m_machine.simulation
                           .Start(
                               [this, count] {
                                 m_began = m_machine.simulation.GetElapsed();
                                 for (int i = 0; i < count; ++i) {
                                   m_machine.simulation.Sleep(300);
                                   m_session.workerEvent->Set();
                                 }
                               },
                               platform::ThreadStart::kSuspended)
                           .value();
  }

  NotedProgress m_progress{m_machine.simulation};
  std::uint64_t m_began = 0;
};

TEST_F(ReinitMonitorTest, ResumesTheWorkerAfterASecond) {
  StartWorker(1);
  Run(1, &m_session);
  EXPECT_EQ(m_began, 1000U);
}

TEST_F(ReinitMonitorTest, StepsFirstAndThenWaitsForEachRecording) {
  StartWorker(3);
  Run(3, &m_session);
  EXPECT_EQ(m_progress.steps, (std::vector<std::uint64_t>{1000, 1300, 1600}));
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 1900U);
  EXPECT_TRUE(IsDone());
}

TEST_F(ReinitMonitorTest, WaitsForARecordingHoweverLongItTakes) {
  constexpr std::uint32_t kHour = 3'600'000;
  m_session.worker = m_machine.simulation
                         .Start(
                             [this] {
                               for (int i = 0; i < 2; ++i) {
                                 m_machine.simulation.Sleep(kHour);
                                 m_session.workerEvent->Set();
                               }
                             },
                             platform::ThreadStart::kSuspended)
                         .value();
  Run(2, &m_session);
  EXPECT_EQ(m_progress.steps, (std::vector<std::uint64_t>{1000, 1000 + kHour}));
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 1000U + 2 * kHour);
}

TEST_F(ReinitMonitorTest, ResetsTheEventAfterEachWait) {
  StartWorker(2);
  Run(2, &m_session);
  EXPECT_EQ(m_session.workerEvent->Wait(0), platform::WaitResult::kTimedOut);
}

TEST_F(ReinitMonitorTest, TwoSetsBeforeOneResetAreOneStep) {
  m_session.worker = m_machine.simulation
                         .Start(
                             [this] {
                               m_session.workerEvent->Set();
                               m_session.workerEvent->Set();
                               m_machine.simulation.Sleep(500);
                               m_session.workerEvent->Set();
                             },
                             platform::ThreadStart::kSuspended)
                         .value();
  Run(2, &m_session);
  EXPECT_EQ(m_progress.steps, (std::vector<std::uint64_t>{1000, 1000}));
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 1500U);
}

TEST_F(ReinitMonitorTest, WithoutTagsDoesNothing) {
  StartWorker(1);
  Run(0, &m_session);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 0U);
  EXPECT_TRUE(m_progress.steps.empty());
  EXPECT_FALSE(IsDone());
}

TEST_F(ReinitMonitorTest, AMissingPageIsReportedAndItGoesOn) {
  Run(2, nullptr);
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text, u"Error == 0");
  EXPECT_EQ(shown[0].caption, u"Zedra Voxtrel");
  EXPECT_EQ(shown[0].box.style, platform::MessageStyle::kTopmost);
  EXPECT_EQ(m_progress.steps.size(), 2U);
  EXPECT_TRUE(IsDone());
}

TEST_F(ReinitMonitorTest, LeavesWhenTheDialogGoes) {
  StartWorker(1);
  m_progress.isGone = true;
  Run(5, &m_session);
  EXPECT_TRUE(m_progress.steps.empty());
  EXPECT_TRUE(IsDone()) << "Nobody waits for what will not come.";
  // Resumed all the same, so that it can see for itself and end.
  EXPECT_EQ(m_session.worker->Wait(platform::kNoLimit), platform::WaitResult::kSignalled);
}

TEST_F(ReinitMonitorTest, LeavesIfNothingCanComeAnyMore) {
  StartWorker(1);
  Run(5, &m_session);
  EXPECT_EQ(m_progress.steps.size(), 2U);
  EXPECT_TRUE(IsDone());
}

}  // namespace

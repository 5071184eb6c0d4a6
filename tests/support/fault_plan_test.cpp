#include "tests/support/fault_plan.h"

#include <gtest/gtest.h>

#include <vector>

#include "audio/wave_header.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"
#include "tests/support/failing_contacts.h"
#include "tests/support/failing_wave.h"
#include "tests/support/watched_threads.h"

namespace {

using support::Failing;
using support::FaultPlan;

const platform::WaveFormat kFormat = audio::MonoPcm(audio::kRecordingBits, audio::kRecordingRate);

std::vector<bool> NextFour(FaultPlan& plan) {
  std::vector<bool> fails;
  for (int i = 0; i < 4; ++i) {
    fails.push_back(plan.NextFails());
  }
  return fails;
}

TEST(FaultPlan, LetsOneCallFailOrAllFromItOn) {
  FaultPlan plan;
  EXPECT_EQ(NextFour(plan), std::vector<bool>(4, false));
  plan.FailCall(2, Failing::kOnce);
  EXPECT_FALSE(plan.HasFailed());
  EXPECT_EQ(NextFour(plan), (std::vector{false, true, false, false}));
  EXPECT_TRUE(plan.HasFailed());
  plan.FailCall(2, Failing::kFromThenOn);
  EXPECT_EQ(NextFour(plan), (std::vector{false, true, true, true}));
  plan.FailCall(0, Failing::kFromThenOn);
  EXPECT_EQ(NextFour(plan), std::vector<bool>(4, false));
  EXPECT_FALSE(plan.HasFailed());
}

TEST(FailingWaveIn, CountsTheCallsOfInputAndDeviceTogether) {
  FaultPlan plan;
  machine::SimulatedWaveIn real;
  support::FailingWaveIn waveIn(real, plan);
  plan.FailCall(3, Failing::kOnce);
  EXPECT_EQ(waveIn.GetDeviceCount(), 1U);
  const auto opened = waveIn.Open(kFormat);
  ASSERT_TRUE(opened);
  EXPECT_EQ((*opened)->Reset(), platform::WaveResult::kFailed);
  plan.FailCall(1, Failing::kFromThenOn);
  EXPECT_EQ((*opened)->Close(), platform::WaveResult::kFailed);
  EXPECT_EQ(real.OpenDevices(), 0U) << "Given up all the same.";
  EXPECT_EQ(waveIn.GetDeviceCount(), 0U);
  EXPECT_FALSE(waveIn.Open(kFormat));
}

TEST(FailingWaveOut, AnOutputThatFailsIsNotOpened) {
  FaultPlan plan;
  machine::SimulatedWaveOut real;
  support::FailingWaveOut waveOut(real, plan);
  plan.FailCall(1, Failing::kOnce);
  EXPECT_FALSE(waveOut.Open(kFormat));
  EXPECT_TRUE(waveOut.Open(kFormat));
}

TEST(FailingContacts, AContactThatWasHandedOutCanFailToo) {
  FaultPlan plan;
  machine::SimulatedContacts real;
  real.Add({.oid = 3, .firstName = u"Ann"});
  support::FailingContacts contacts(real, plan);
  ASSERT_TRUE(contacts.Logon());
  const auto contact = contacts.GetItemFromOid(3);
  ASSERT_TRUE(contact);
  plan.FailCall(1, Failing::kOnce);
  EXPECT_FALSE((*contact)->GetFirstName());
  EXPECT_EQ((*contact)->GetFirstName(), u"Ann");
}

TEST(WatchedThreads, AThreadThatIsNotMadeNeverRuns) {
  FaultPlan plan;
  machine::Simulation real;
  support::WatchedThreads threads(real, plan);
  plan.FailCall(1, Failing::kOnce);
  int runs = 0;
  EXPECT_FALSE(threads.Start([&runs] { ++runs; }, platform::ThreadStart::kRunning));
  const auto thread = threads.Start([&runs] { ++runs; }, platform::ThreadStart::kRunning).value();
  EXPECT_EQ(thread->Wait(platform::kNoLimit), platform::WaitResult::kSignalled);
  EXPECT_EQ(runs, 1);
}

}  // namespace

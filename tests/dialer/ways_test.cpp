#include "dialer/ways.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using dialer::CallProblem;
using dialer::CallState;
using dialer::Way;

class Ways : public testing::Test {
 protected:
  machine::MemoryRegistry m_registry;
};

TEST_F(Ways, NoneIsChosenAtFirst) { EXPECT_EQ(dialer::ReadWay(m_registry), std::nullopt); }

TEST_F(Ways, AChosenWayIsRemembered) {
  for (const dialer::WayWord& way : dialer::kWays) {
    ASSERT_TRUE(dialer::ChooseWay(m_registry, way.way));
    EXPECT_EQ(dialer::ReadWay(m_registry), way.way);
    EXPECT_EQ(dialer::FindWay(way.word), way.way);
  }
}

TEST_F(Ways, AChoiceCanBeTakenBackAlsoIfThereIsNone) {
  ASSERT_TRUE(dialer::ChooseWay(m_registry, Way::kSerial));
  ASSERT_TRUE(dialer::ChooseWay(m_registry, std::nullopt));
  EXPECT_EQ(dialer::ReadWay(m_registry), std::nullopt);
  EXPECT_TRUE(dialer::ChooseWay(m_registry, std::nullopt));
}

TEST_F(Ways, AWordThatIsNoWayCountsAsNoChoice) {
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, dialer::kCallsKey, dialer::kWayValue,
                                              u"smoke signals")),
            std::nullopt);
  EXPECT_EQ(dialer::ReadWay(m_registry), std::nullopt);
}

TEST(CallWords, EveryStateAndProblemHasACodeAndASentenceOfItsOwn) {
  std::set<std::string> codes;
  std::set<std::string> sentences;
  std::size_t count = 0;
  for (int state = 0; state <= static_cast<int>(CallState::kShown); ++state, ++count) {
    codes.emplace(dialer::CodeOf(static_cast<CallState>(state)));
    sentences.insert(dialer::Explain(static_cast<CallState>(state)));
  }
  for (int problem = 0; problem <= static_cast<int>(CallProblem::kHangUpRefused);
       ++problem, ++count) {
    codes.emplace(dialer::CodeOf(static_cast<CallProblem>(problem)));
    sentences.insert(dialer::Explain({static_cast<CallProblem>(problem), "COM2:"}));
  }
  EXPECT_EQ(codes.size(), count);
  EXPECT_EQ(sentences.size(), count);
  EXPECT_EQ(codes.count(""), 0U);
}

TEST(CallWords, ASentenceNamesThePortItIsAbout) {
  EXPECT_EQ(dialer::Explain({CallProblem::kPortInUse, "/dev/ttyUSB0"}),
            "another program uses /dev/ttyUSB0");
}

// What a modem answered is final: another way might call the same number a second time.
TEST(CallWords, AnotherWayIsTriedOnlyIfNothingWasDialled) {
  EXPECT_TRUE(dialer::MayTryAnotherWay(CallProblem::kNoTelephoneProgram));
  EXPECT_TRUE(dialer::MayTryAnotherWay(CallProblem::kPortFailed));
  EXPECT_FALSE(dialer::MayTryAnotherWay(CallProblem::kBusy));
  EXPECT_FALSE(dialer::MayTryAnotherWay(CallProblem::kModemSilent));
  EXPECT_FALSE(dialer::MayTryAnotherWay(CallProblem::kStopped));
}

}  // namespace

#include "dialer/modem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/machine/simulated_serial_ports.h"
#include "tests/machine/simulation.h"

namespace {

using dialer::CallProblem;
using dialer::CallState;
using dialer::Modem;
using machine::ModemStep;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A user who wants to stop after a time, or never.
class PatientUser final : public dialer::Waiter {
 public:
  explicit PatientUser(platform::Clock& clock) : m_clock(clock) {}

  [[nodiscard]] bool Wait(std::uint32_t milliseconds) override {
    m_clock.Sleep(milliseconds);
    return m_clock.GetTickCount() < stopsAt;
  }

  std::uint32_t stopsAt = UINT32_MAX;

 private:
  platform::Clock& m_clock;
};

class ModemTest : public testing::Test {
 protected:
  static constexpr const char16_t* kDevice = u"/dev/modem";

  /// A modem with echo that says this some time after it was asked to dial, and "OK" to ATH.
  void Says(const std::string& answer, std::uint32_t after = 1000) {
    m_modem.answer = [=](std::string_view line) {
      const std::string echo = std::string(line) + "\r";
      return line == "ATH" ? std::vector<ModemStep>{{10, echo + "\r\nOK\r\n"}}
                           : std::vector<ModemStep>{{10, echo}, {after, answer}};
    };
  }

  [[nodiscard]] dialer::CallResult Dial(std::u16string_view stored = u"+1 202 555 0101") {
    auto port = m_ports.Open(kDevice, {});
    EXPECT_TRUE(port.has_value());
    const auto number = dialer::MakeNumber(stored);
    EXPECT_TRUE(number.has_value());
    return Modem(**port, m_clock, m_hangingUp).Dial(*number, m_user);
  }

  /// The problem of a call. Fails the test if there is a call.
  [[nodiscard]] CallProblem ProblemOf(const dialer::CallResult& result) {
    EXPECT_FALSE(result.has_value());
    return result ? CallProblem::kPortFailed : result.error().problem;
  }

  machine::Simulation m_clock;
  machine::SimulatedSerialPorts m_ports{m_clock};
  machine::SimulatedModem& m_modem = m_ports.Plug(kDevice);
  PatientUser m_user{m_clock};
  Modem::HangingUp m_hangingUp = Modem::HangingUp::kUsed;
};

TEST_F(ModemTest, IsSentTheNumberAndNothingElse) {
  Says("\r\nOK\r\n");
  EXPECT_EQ(Dial(u"+1 (202) 555-0101;ext=7"), CallState::kDialled);
  EXPECT_EQ(m_modem.received, "ATD+12025550101,7;\r");
}

TEST_F(ModemTest, ACallGoesOnAfterThePortIsClosed) {
  Says("\r\nOK\r\n");
  EXPECT_EQ(Dial(), CallState::kDialled);
  EXPECT_EQ(m_modem.openCount, 0);
  EXPECT_TRUE(m_modem.isLineUp);
  EXPECT_THAT(m_modem.received, Not(HasSubstr("ATH")));
}

TEST_F(ModemTest, EachAnswerHasItsMeaning) {
  struct Row {
    const char* says;
    CallProblem problem;
  };
  for (const Row& row :
       {Row{"\r\nBUSY\r\n", CallProblem::kBusy}, Row{"\r\nNO CARRIER\r\n", CallProblem::kNoCarrier},
        Row{"\r\nNO ANSWER\r\n", CallProblem::kNoAnswer},
        Row{"\r\nNO DIALTONE\r\n", CallProblem::kNoDialTone},
        Row{"\r\nNO DIAL TONE\r\n", CallProblem::kNoDialTone},
        Row{"\r\nERROR\r\n", CallProblem::kModemRefused},
        Row{"\r\n+CME ERROR: 30\r\n", CallProblem::kModemRefused},
        Row{"\r\nBLACKLISTED\r\n", CallProblem::kModemRefused}}) {
    Says(row.says);
    EXPECT_EQ(ProblemOf(Dial()), row.problem) << row.says;
  }
  Says("\r\nCONNECT 9600\r\n");
  EXPECT_EQ(Dial(), CallState::kAnswered);
  Says("\r\nCONNECT\r\n");
  EXPECT_EQ(Dial(), CallState::kAnswered);
}

TEST_F(ModemTest, AnswersMayBeNumbers) {
  Says("0\r");
  EXPECT_EQ(Dial(), CallState::kDialled);
  Says("7\r");
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kBusy);
  Says("3\r");
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kNoCarrier);
}

TEST_F(ModemTest, AnAnswerNeedsNoEndOfItsLineIfNothingFollows) {
  Says("\nOK");
  EXPECT_EQ(Dial(), CallState::kDialled);
  Says("BUSY");
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kBusy);
}

TEST_F(ModemTest, AnAnswerMayComeInPiecesWithLongPauses) {
  m_modem.answer = [](std::string_view) {
    return std::vector<ModemStep>{{0, "NO CAR"}, {3000, "RI"}, {6000, "ER\r"}};
  };
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kNoCarrier);
}

TEST_F(ModemTest, NewsThatNobodyAskedForAreNoAnswer) {
  Says("\r\nRING\r\n\r\n+CREG: 1\r\n\r\nOK\r\n");
  EXPECT_EQ(Dial(), CallState::kDialled);
}

TEST_F(ModemTest, WhatWasSaidBeforeIsNoAnswer) {
  m_modem.saysAtFirst = "\r\nNO CARRIER\r\n";
  Says("\r\nOK\r\n");
  EXPECT_EQ(Dial(), CallState::kDialled);
}

TEST_F(ModemTest, HangsUpIfThereIsNoCallInTheEnd) {
  Says("\r\nNO ANSWER\r\n");
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kNoAnswer);
  EXPECT_EQ(m_modem.received, "ATD+12025550101;\rATH\r");
  EXPECT_FALSE(m_modem.isLineUp);
}

TEST_F(ModemTest, DoesNotHangUpIfTheSettingsSayNotTo) {
  m_hangingUp = Modem::HangingUp::kNotUsed;
  Says("\r\nNO ANSWER\r\n");
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kNoAnswer);
  EXPECT_EQ(m_modem.received, "ATD+12025550101;\r");
}

TEST_F(ModemTest, AModemThatSaysNothingIsNotWaitedForLong) {
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemSilent);
  EXPECT_LT(m_clock.GetElapsed(), 30'000U);
}

TEST_F(ModemTest, AModemThatTakesNothingIsNotWaitedForLong) {
  m_modem.takesNothing = true;
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemSilent);
  EXPECT_LT(m_clock.GetElapsed(), 30'000U);
}

TEST_F(ModemTest, AModemThatHasUnderstoodMayTakeLonger) {
  Says("\r\nNO ANSWER\r\n", 80'000);
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kNoAnswer);
  Says("\r\nNO ANSWER\r\n", 1'000'000);
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemUndecided);
}

TEST_F(ModemTest, PausesInANumberTakeTheirTime) {
  m_modem.answer = [](std::string_view) { return std::vector<ModemStep>{{23'000, "\r\nOK\r\n"}}; };
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemSilent);
  EXPECT_EQ(Dial(u"5550101,4"), CallState::kDialled);
}

TEST_F(ModemTest, NoiseOfAWrongSpeedIsReportedAsSuch) {
  m_modem.answer = [](std::string_view) {
    return std::vector<ModemStep>{{10, "\xF8\x80\x1EO\xFEK\r\x8C\n"}};
  };
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemGarbled);
  EXPECT_LT(m_clock.GetElapsed(), 30'000U);
}

TEST_F(ModemTest, SomethingThatIsNoModemIsReportedAsSuch) {
  m_modem.answer = [](std::string_view) {
    return std::vector<ModemStep>{{10, "login: "}, {600, "\r\nPassword:\r\n"}};
  };
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemGarbled);
}

TEST_F(ModemTest, NoiseWithoutAnEndIsNoReasonToHang) {
  m_modem.saysAtFirst = std::string(100'000, '\xFF');
  m_modem.answer = [](std::string_view) {
    return std::vector<ModemStep>{{0, std::string(1'000'000, 'x')}};
  };
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kModemGarbled);
  EXPECT_LT(m_clock.GetElapsed(), 30'000U);
}

TEST_F(ModemTest, AModemThatIsUnpluggedEndsTheCallAndGetsNoMore) {
  m_modem.answer = [](std::string_view) { return std::vector<ModemStep>{{2000, "", true}}; };
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kPortLost);
  EXPECT_EQ(m_modem.received, "ATD+12025550101;\r");
}

TEST_F(ModemTest, TheUserCanStopTheCall) {
  Says("\r\nOK\r\n", 30'000);
  m_user.stopsAt = 5000;
  EXPECT_EQ(ProblemOf(Dial()), CallProblem::kStopped);
  EXPECT_THAT(m_modem.received, StartsWith("ATD+12025550101;\rATH\r"));
  EXPECT_LT(m_clock.GetElapsed(), 10'000U);
}

TEST_F(ModemTest, HangsUpOnceMoreIfTheModemWasStillDialling) {
  int commands = 0;
  m_modem.answer = [&](std::string_view) {
    return std::vector<ModemStep>{{10, ++commands == 1 ? "\r\nERROR\r\n" : "\r\nOK\r\n"}};
  };
  auto port = m_ports.Open(kDevice, {});
  ASSERT_TRUE(port);
  EXPECT_TRUE(Modem(**port, m_clock, m_hangingUp).HangUp());
  EXPECT_EQ(m_modem.received, "ATH\rATH\r");
}

TEST_F(ModemTest, AModemThatTakesNoHangUpIsReportedAsSuch) {
  m_modem.answer = [](std::string_view) { return std::vector<ModemStep>{{10, "\r\nERROR\r\n"}}; };
  auto port = m_ports.Open(kDevice, {});
  ASSERT_TRUE(port);
  const auto ended = Modem(**port, m_clock, m_hangingUp).HangUp();
  ASSERT_FALSE(ended);
  EXPECT_EQ(ended.error(), CallProblem::kHangUpRefused);
}

TEST_F(ModemTest, AHangUpThatIsNotConfirmedFails) {
  auto port = m_ports.Open(kDevice, {});
  ASSERT_TRUE(port);
  const auto ended = Modem(**port, m_clock, m_hangingUp).HangUp();
  ASSERT_FALSE(ended);
  EXPECT_EQ(ended.error(), CallProblem::kModemSilent);
}

}  // namespace

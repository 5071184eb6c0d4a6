#include "dialer/caller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "storage/registry_keys.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_serial_ports.h"
#include "tests/machine/simulation.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using dialer::CallProblem;
using dialer::CallState;
using dialer::Way;
using testing::ElementsAre;
using testing::IsEmpty;

class NobodyStops final : public dialer::Waiter {
 public:
  [[nodiscard]] bool Wait(std::uint32_t /*milliseconds*/) override { return true; }
};

class CallerTest : public testing::Test {
 protected:
  CallerTest() {
    for (const char16_t* device : {u"/dev/ttyUSB0", u"/dev/named"}) {
      m_ports.Plug(device).answer = [](std::string_view) {
        return std::vector<machine::ModemStep>{{10, "\r\nOK\r\n"}};
      };
    }
  }

  void Store(std::u16string_view name, std::u16string_view text) {
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, storage::kDialerKey, name, text)),
              std::nullopt);
  }

  [[nodiscard]] dialer::CallResult Call(const dialer::CallWish& wish = {}) {
    dialer::Caller caller(m_parts, wish);
    const auto result = caller.Call(*dialer::MakeNumber(u"+1 202 555 0101"), m_waiter);
    m_way = caller.GetWay();
    m_passedOver.clear();
    for (const dialer::PassedOverWay& passed : caller.GetPassedOver()) {
      m_passedOver.push_back(passed.fault.problem);
    }
    return result;
  }

  [[nodiscard]] static CallProblem ProblemOf(const dialer::CallResult& result) {
    return result ? CallProblem::kStopped : result.error().problem;
  }

  machine::Simulation m_clock;
  machine::MemoryRegistry m_registry;
  machine::SimulatedSerialPorts m_ports{m_clock};
  bool m_hasTelephone = false;
  std::vector<std::string> m_handedOver;
  dialer::CallerParts m_parts{
      .registry = m_registry,
      .serialPorts = m_ports,
      .clock = m_clock,
      .hasTelephoneProgram = [this] { return m_hasTelephone; },
      .handOver = [this](const std::string& uri) -> dialer::CallResult {
        if (!m_hasTelephone) {
          return platform::Failure(dialer::CallFault{CallProblem::kNoTelephoneProgram, {}});
        }
        m_handedOver.push_back(uri);
        return CallState::kHandedOver;
      },
      .findDevice = [](std::u16string_view port) -> std::u16string {
        return port == u"COM2:" ? u"/dev/ttyUSB0" : u"";
      }};
  NobodyStops m_waiter;
  Way m_way = Way::kTel;
  std::vector<CallProblem> m_passedOver;
};

TEST_F(CallerTest, TheDesktopsTelephoneProgramIsTheFirstChoice) {
  m_hasTelephone = true;
  Store(storage::kComPortValue, u"COM2:");
  EXPECT_EQ(Call(), CallState::kHandedOver);
  EXPECT_EQ(m_way, Way::kTel);
  EXPECT_THAT(m_handedOver, ElementsAre("tel:+12025550101"));
  EXPECT_THAT(m_passedOver, IsEmpty());
}

TEST_F(CallerTest, WithoutATelephoneProgramTheChosenPortDials) {
  Store(storage::kComPortValue, u"COM2:");
  EXPECT_EQ(Call(), CallState::kDialled);
  EXPECT_EQ(m_way, Way::kSerial);
  EXPECT_EQ(m_ports.Plug(u"/dev/ttyUSB0").received, "ATD+12025550101;\r");
  EXPECT_THAT(m_passedOver, ElementsAre(CallProblem::kNoTelephoneProgram));
}

TEST_F(CallerTest, APortThatNobodyChoseIsSentNothingAndTheNumberIsShown) {
  EXPECT_EQ(Call(), CallState::kShown);
  EXPECT_EQ(m_way, Way::kPrint);
  EXPECT_THAT(m_passedOver,
              ElementsAre(CallProblem::kNoTelephoneProgram, CallProblem::kNoPortChosen));
  EXPECT_EQ(m_ports.Plug(u"/dev/ttyUSB0").received, "");
}

TEST_F(CallerTest, WhatAModemAnsweredIsFinal) {
  Store(storage::kComPortValue, u"COM2:");
  m_ports.Plug(u"/dev/ttyUSB0").answer = [](std::string_view) {
    return std::vector<machine::ModemStep>{{10, "\r\nBUSY\r\n"}};
  };
  EXPECT_EQ(ProblemOf(Call()), CallProblem::kBusy);
  EXPECT_EQ(m_way, Way::kSerial);
}

TEST_F(CallerTest, AChosenWayIsTheOnlyOne) {
  EXPECT_EQ(ProblemOf(Call({.way = Way::kTel})), CallProblem::kNoTelephoneProgram);
  EXPECT_EQ(ProblemOf(Call({.way = Way::kSerial})), CallProblem::kNoPortChosen);
  EXPECT_EQ(Call({.way = Way::kPrint}), CallState::kShown);
  EXPECT_THAT(m_passedOver, IsEmpty());
}

TEST_F(CallerTest, AStoredWayIsTheOnlyOneUnlessTheCallHasItsOwn) {
  m_hasTelephone = true;
  ASSERT_TRUE(dialer::ChooseWay(m_registry, Way::kSerial));
  EXPECT_EQ(ProblemOf(Call()), CallProblem::kNoPortChosen);
  EXPECT_EQ(Call({.way = Way::kTel}), CallState::kHandedOver);
}

TEST_F(CallerTest, WhoNamesAModemWantsItToDial) {
  m_hasTelephone = true;
  ASSERT_TRUE(dialer::ChooseWay(m_registry, Way::kPrint));
  EXPECT_EQ(Call({.modem = u"/dev/named"}), CallState::kDialled);
  EXPECT_EQ(m_ports.Plug(u"/dev/named").received, "ATD+12025550101;\r");
  EXPECT_EQ(Call({.way = Way::kTel, .modem = u"/dev/named"}), CallState::kHandedOver);
}

TEST_F(CallerTest, ANamedModemIsUsedWithTheStoredSettings) {
  Store(storage::kBaudRateValue, u"115200");
  Store(storage::kDataBitsValue, u"7");
  Store(storage::kStopBitsValue, u"1.5");
  Store(storage::kFlowControlValue, u"hardware");
  EXPECT_EQ(Call({.modem = u"/dev/named"}), CallState::kDialled);
  const platform::SerialLine& line = m_ports.Plug(u"/dev/named").lines.front();
  EXPECT_EQ(line.baudRate, 115200U);
  EXPECT_EQ(line.dataBits, 7);
  EXPECT_EQ(line.stopBits, platform::StopBits::kOneAndHalf);
  EXPECT_EQ(line.flowControl, platform::FlowControl::kHardware);
}

TEST_F(CallerTest, SettingsThatNoLineHasAreReportedAndNothingIsOpened) {
  Store(storage::kBaudRateValue, u"fast");
  const auto result = Call({.modem = u"/dev/named"});
  ASSERT_EQ(ProblemOf(result), CallProblem::kLineSettings);
  EXPECT_EQ(result.error().subject, "fast, , , ");
  EXPECT_THAT(m_ports.Plug(u"/dev/named").lines, IsEmpty());
}

TEST_F(CallerTest, APortThatIsUnpluggedIsNamed) {
  Store(storage::kComPortValue, u"COM7:");
  const auto result = Call({.way = Way::kSerial});
  ASSERT_EQ(ProblemOf(result), CallProblem::kPortNotConnected);
  EXPECT_EQ(result.error().subject, "COM7:");
}

TEST_F(CallerTest, EachWayInWhichAPortCannotBeOpenedIsReported) {
  struct Row {
    platform::SerialError error;
    CallProblem problem;
  };
  for (const Row& row : {Row{platform::SerialError::kMissing, CallProblem::kPortMissing},
                         Row{platform::SerialError::kDenied, CallProblem::kPortDenied},
                         Row{platform::SerialError::kInUse, CallProblem::kPortInUse},
                         Row{platform::SerialError::kNoPort, CallProblem::kNoSerialPort},
                         Row{platform::SerialError::kUnsupported, CallProblem::kLineSettings},
                         Row{platform::SerialError::kFailed, CallProblem::kPortFailed}}) {
    m_ports.Refuse(u"/dev/broken", row.error);
    EXPECT_EQ(ProblemOf(Call({.modem = u"/dev/broken"})), row.problem);
  }
}

TEST_F(CallerTest, HangingUpFollowsTheSettings) {
  dialer::Caller caller(m_parts, {.modem = u"/dev/named"});
  EXPECT_TRUE(caller.MayHangUp());
  EXPECT_TRUE(caller.HangUp());
  EXPECT_EQ(m_ports.Plug(u"/dev/named").received, "ATH\r");
  Store(storage::kIsHangUpValue, u"1");
  EXPECT_FALSE(caller.MayHangUp());
}

TEST_F(CallerTest, ItIsKnownWhatIsInTheWayOfAWayBeforeAnybodyCalls) {
  const dialer::Caller caller(m_parts, {});
  EXPECT_EQ(caller.FindObstacle(Way::kTel)->problem, CallProblem::kNoTelephoneProgram);
  EXPECT_EQ(caller.FindObstacle(Way::kSerial)->problem, CallProblem::kNoPortChosen);
  EXPECT_FALSE(caller.FindObstacle(Way::kPrint).has_value());
  Store(storage::kComPortValue, u"COM2:");
  EXPECT_FALSE(caller.FindObstacle(Way::kSerial).has_value());
}

}  // namespace

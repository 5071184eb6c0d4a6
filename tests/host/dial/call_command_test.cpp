#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/host/dial/dial_fixture.h"
#include "tests/host/dial/phone_program.h"
#include "tests/host/dial/pty_modem.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class CallCommands : public DialFixture {
 protected:
  CallCommands() {
    std::ofstream(Contacts(), std::ios::app)
        << Card("Bern;Anna Lea", "WORK", "1-800-FLOWERS") << Card("Hook;Jim", "CELL", "5550\\nATH")
        << Card("Line;Tim", "CELL", "555\\n0101");
  }

  [[nodiscard]] support::ProgramRun Call(std::vector<std::string> arguments,
                                         std::vector<std::string> environment = {}) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root",    Path("root"),      "--contacts",
                                 Contacts(),      "--speaker", Path("heard.wav"), "dial"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const std::vector<std::string> ours = Environment();
    environment.insert(environment.end(), ours.begin(), ours.end());
    for (const auto& [name, value] : m_phone.GetVariables()) {
      environment.push_back(name + "=" + value);
    }
    return support::RunProgram(all, environment);
  }
  [[nodiscard]] support::ProgramRun CallAnna(std::vector<std::string> rest) const {
    rest.insert(rest.begin(), {"--to", "Anna Berg", "--yes"});
    return Call(std::move(rest));
  }

  static std::vector<json> Steps(const support::ProgramRun& run) {
    std::vector<json> steps;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
      steps.push_back(json::parse(line, nullptr, false));
      EXPECT_TRUE(steps.back().is_object()) << line;
    }
    return steps;
  }

  PhoneProgram m_phone{Path("desktop")};
};

TEST_F(CallCommands, TheTelephoneProgramGetsTheNumber) {
  m_phone.Put();
  const auto run = CallAnna({});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(m_phone.AwaitCalled(), "tel:+12025550101\n");
  EXPECT_THAT(run.out, HasSubstr("Anna Berg"));
}

TEST_F(CallCommands, WithoutATelephoneProgramOrAModemTheNumberIsShownWithTheReasons) {
  const auto run = CallAnna({});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("+1 202 555 0101"));
  EXPECT_THAT(run.err, HasSubstr("the desktop has no program for telephone calls"));
  EXPECT_THAT(run.err, HasSubstr("no serial port was chosen"));
}

TEST_F(CallCommands, AWayThatWasAskedForIsTheOnlyOne) {
  const auto run = CallAnna({"--way", "tel"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("the desktop has no program for telephone calls"));
  m_phone.Put("exit 3");
  EXPECT_EQ(CallAnna({"--way", "tel"}).exitCode, 1);
}

TEST_F(CallCommands, TheStoredWayIsTakenAndCanBeOverridden) {
  m_phone.Put();
  EXPECT_EQ(Run({"dial", "way", "use", "print"}).exitCode, 0);
  EXPECT_EQ(CallAnna({}).exitCode, 0);
  EXPECT_EQ(m_phone.GetCalled(), "");
  EXPECT_EQ(CallAnna({"--way", "tel"}).exitCode, 0);
  EXPECT_EQ(m_phone.AwaitCalled(), "tel:+12025550101\n");
}

TEST_F(CallCommands, EachStepIsAnObjectOfItsOwn) {
  m_phone.Put();
  const auto run = CallAnna({"--json"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  const auto steps = Steps(run);
  ASSERT_GE(steps.size(), 3U) << run.out;
  const auto way =
      std::ranges::find_if(steps, [](const json& step) { return step.value("step", "") == "way"; });
  ASSERT_NE(way, steps.end()) << run.out;
  EXPECT_EQ(*way, (json{{"step", "way"}, {"way", "tel"}, {"dialled", "tel:+12025550101"}}));
  EXPECT_EQ(steps.back()["step"], "called");
  EXPECT_EQ(steps.back()["result"], "handed-over");
  EXPECT_EQ(steps.back()["candidates"][0]["contact"], "Berg Anna");
  EXPECT_EQ(steps.back()["candidates"][0]["number"], "+1 202 555 0101");
}

TEST_F(CallCommands, AFailureIsAnErrorLikeAnyOther) {
  const auto run = CallAnna({"--way", "tel", "--json"});
  EXPECT_EQ(run.exitCode, 1);
  const auto steps = Steps(run);
  ASSERT_FALSE(steps.empty());
  EXPECT_EQ(steps.back()["error"]["code"], 1);
  EXPECT_THAT(steps.back()["error"]["message"].get<std::string>(),
              HasSubstr("the desktop has no program for telephone calls"));
}

TEST_F(CallCommands, SeveralContactsAreListedAndNobodyIsCalled) {
  m_phone.Put();
  const auto run = Call({"--to", "anna", "--yes"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("can mean each of these"));
  EXPECT_THAT(run.err, HasSubstr("Berg Anna"));
  EXPECT_THAT(run.err, HasSubstr("Bern Anna Lea"));
  EXPECT_EQ(m_phone.GetCalled(), "");
  EXPECT_EQ(Call({"--to", "Nobody", "--yes"}).exitCode, 1);
}

TEST_F(CallCommands, AnEmptyNameIsWrongUsageAndNoWishToHearOne) {
  EXPECT_EQ(Call({"--to", "", "--yes"}).exitCode, 2);
  EXPECT_EQ(Call({"--yes", "--to", ""}).exitCode, 2);
  EXPECT_EQ(Call({"--evaluate", ""}).exitCode, 2);
  EXPECT_EQ(support::RunProgram({VOXTREL_DIALER, "--to", ""}, Environment()).exitCode, 2);
}

TEST_F(CallCommands, ANumberThatAContactLacksIsNotReplacedByAnother) {
  const auto run = CallAnna({"--number", "Home"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("it has: Mobile"));
  EXPECT_EQ(CallAnna({"--number", "mobile", "--way", "print"}).exitCode, 0);
}

TEST_F(CallCommands, ATextThatIsNoNumberIsShownAndNotDialled) {
  m_phone.Put();
  const auto run = Call({"--to", "Bern", "--yes"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("1-800-FLOWERS"));
  EXPECT_EQ(m_phone.GetCalled(), "");
}

TEST_F(CallCommands, AHostileContactSendsNoCommandToTheModem) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  const auto run = Call({"--to", "Jim Hook", "--yes", "--modem", modem.GetName()});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(modem.End(), "");
}

TEST_F(CallCommands, ANumberInTwoLinesIsShownAndNotJoined) {
  const auto run = Call({"--to", "Tim Line", "--yes", "--way", "print"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("\"555\uFFFD0101\" is not dialled"));
}

TEST_F(CallCommands, TheModemDialsAndKeepsItsCall) {
  PtyModem modem([](const std::string& line) { return line + "\r\r\nOK\r\n"; });
  const auto run = CallAnna({"--modem", modem.GetName(), "--json"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(Steps(run).back()["result"], "dialled");
  EXPECT_EQ(modem.End(), "ATD+12025550101;|");
}

TEST_F(CallCommands, WhoCallsByModemLearnsHowToEndTheCallUnlessTheSettingsForbidIt) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  const std::string command = "voxtrel dial --hang-up --modem " + modem.GetName();
  EXPECT_THAT(CallAnna({"--modem", modem.GetName()}).out, HasSubstr(command));
  EXPECT_EQ(Run({"connection", "set", "no-hang-up=yes"}).exitCode, 0);
  EXPECT_THAT(CallAnna({"--modem", modem.GetName()}).out, Not(HasSubstr("--hang-up")));
  EXPECT_EQ(Call({"--hang-up", "--modem", modem.GetName()}).exitCode, 1);
}

TEST_F(CallCommands, WhoNamesAPersonAndHasNoTerminalIsNotWaitedFor) {
  const auto run = Call({"--to", "Anna Berg", "--way", "print"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("+1 202 555 0101"));
}

TEST_F(CallCommands, TheVariableNamesTheModemToo) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  const auto run = Call({"--to", "Anna Berg", "--yes"}, {"VOXTREL_MODEM=" + modem.GetName()});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(modem.End(), "ATD+12025550101;|");
}

TEST_F(CallCommands, EachAnswerOfAModemIsSaidInPlainWords) {
  struct Row {
    const char* says;
    const char* words;
  };
  for (const Row& row :
       {Row{"BUSY", "the line is busy"}, Row{"NO ANSWER", "nobody answers"},
        Row{"NO CARRIER", "there is no connection"}, Row{"NO DIALTONE", "there is no dial tone"},
        Row{"ERROR", "the modem does not dial this number"}}) {
    PtyModem modem([&row](const std::string& line) {
      return line == "ATH" ? std::string("\r\nOK\r\n") : "\r\n" + std::string(row.says) + "\r\n";
    });
    const auto run = CallAnna({"--modem", modem.GetName()});
    EXPECT_EQ(run.exitCode, 1) << row.says;
    EXPECT_THAT(run.err, HasSubstr(row.words));
    EXPECT_EQ(modem.End(), "ATD+12025550101;|ATH|");
  }
}

TEST_F(CallCommands, TheSettingsCanForbidToHangUp) {
  EXPECT_EQ(Run({"connection", "set", "no-hang-up=yes"}).exitCode, 0);
  PtyModem modem([](const std::string&) { return "\r\nBUSY\r\n"; });
  EXPECT_EQ(CallAnna({"--modem", modem.GetName()}).exitCode, 1);
  EXPECT_EQ(modem.End(), "ATD+12025550101;|");
}

TEST_F(CallCommands, ACallIsEndedByACommand) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  const auto run = Call({"--hang-up", "--modem", modem.GetName()});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(modem.End(), "ATH|");
}

TEST_F(CallCommands, AModemThatRefusesToHangUpIsReportedInItsOwnWords) {
  PtyModem modem([](const std::string&) { return "\r\nERROR\r\n"; });
  const auto run = Call({"--hang-up", "--modem", modem.GetName()});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("the modem did not hang up: the modem does not take the command"));
}

TEST_F(CallCommands, AModemThatVanishesIsReported) {
  PtyModem modem([](const std::string&) { return PtyModem::kUnplug; });
  const auto run = CallAnna({"--modem", modem.GetName()});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("the modem was unplugged"));
}

TEST_F(CallCommands, APortInUseIsReportedAndLeftAlone) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  const int other = ::open(modem.GetName().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
  const auto run = CallAnna({"--modem", modem.GetName()});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("another program uses " + modem.GetName()));
  EXPECT_EQ(modem.End(), "");
  ::close(other);
}

TEST_F(CallCommands, AStoredPortLeadsToTheDeviceOfTheActiveDriver) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  std::ofstream(Path("port.reg"))
      << "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\Drivers\\Active\\77]\r\n\"Name\"=\"COM77:\"\r\n"
      << "\"Device\"=\"" << modem.GetName() << "\"\r\n\r\n"
      << "[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Dialer]\r\n\"Com_port\"=\"COM77:\"\r\n";
  EXPECT_EQ(Run({"registry", "import", Path("port.reg")}).exitCode, 0);
  const auto run = CallAnna({"--way", "serial"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(modem.End(), "ATD+12025550101;|");
}

TEST_F(CallCommands, NothingIsWrittenToTheStore) {
  const auto before = std::filesystem::exists(Path("root"));
  EXPECT_EQ(CallAnna({"--way", "print"}).exitCode, 0);
  EXPECT_EQ(std::filesystem::exists(Path("root")), before);
}

}  // namespace

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/host/cli/command_fixture.h"

namespace {

constexpr const char* kContacts = VOXTREL_SAMPLES_DIR "/contacts.vcf";
constexpr const char* kRecording = VOXTREL_SAMPLES_DIR "/anna_1.wav";

/// Without a desktop session and without a sound server.
class StatusCommands : public CommandFixture {
 protected:
  [[nodiscard]] support::ProgramRun Status(std::vector<std::string> arguments) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("root"), "status"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(
        all, {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + Path("no-bus"), "HOME=" + Path(""),
              "PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8"});
  }

  [[nodiscard]] std::string SettingsLine() const {
    return "Settings: " + NameOfStore(Path("root")) + "\n";
  }
};

TEST_F(StatusCommands, SayWhereTheSettingsAre) {
  EXPECT_THAT(Status({}).out, testing::EndsWith(SettingsLine()));
  EXPECT_FALSE(std::filesystem::exists(Path("root"))) << "Nothing is made to be looked at.";
}

TEST_F(StatusCommands, SayWhatThereIs) {
  const auto run = Status({"--contacts", kContacts, "--microphone", kRecording});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "Contacts with a telephone number: 8\nMicrophones: 1\n" + SettingsLine());
}

TEST_F(StatusCommands, SayWhatIsMissingAndWhatHelps) {
  const auto run = Status({});
  EXPECT_EQ(run.exitCode, 0) << "it was asked for and told";
  EXPECT_THAT(run.out, testing::HasSubstr("Contacts: there are no contacts: "));
  EXPECT_THAT(run.out, testing::HasSubstr(NameOfContacts(Path("root"))));
  EXPECT_THAT(run.out, testing::HasSubstr("No microphone: plug one in"));
}

TEST_F(StatusCommands, NameWhatIsDamagedInTheAddressBook) {
  const std::string file = Path("all.vcf");
  std::ofstream(file) << "BEGIN:VCARD\nN:A;;;;\nTEL:1\nEND:VCARD\nBEGIN:VCARD\nN:B;;;;\n";
  const std::string remark = file + ":5: the card that begins here has no end and is passed over";
  const auto run = Status({"--contacts", file, "--microphone", kRecording});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "Contacts with a telephone number: 1\n    " + remark + "\nMicrophones: 1\n" +
                         SettingsLine());
  const auto printed = nlohmann::json::parse(Status({"--json", "--contacts", file}).out);
  EXPECT_EQ(printed["contacts"]["remarks"], nlohmann::json::array({remark}));
}

TEST_F(StatusCommands, PrintJson) {
  const auto full = Status({"--json", "--contacts", kContacts, "--microphone", kRecording});
  EXPECT_EQ(full.out,
            "{\"contacts\":{\"count\":8,\"problem\":\"\"},\"microphones\":1,\"settings\":" +
                nlohmann::json(NameOfStore(Path("root"))).dump() + "}\n");
  const auto empty = nlohmann::json::parse(Status({"--json", "--contacts", "/no.vcf"}).out);
  EXPECT_EQ(empty["contacts"]["count"], 0);
  EXPECT_THAT(empty["contacts"]["problem"], testing::HasSubstr("is missing"));
  EXPECT_THAT(empty["contacts"]["problem"], testing::HasSubstr("--contacts"));
  EXPECT_THAT(empty["contacts"]["reason"], testing::HasSubstr("is missing"));
  EXPECT_THAT(empty["contacts"]["reason"], testing::Not(testing::HasSubstr("--contacts")))
      << "A window has options of its own.";
  EXPECT_EQ(empty["microphones"], 0);
}

}  // namespace

#include <filesystem>
#include <fstream>

#include "tests/host/cli/tags_fixture.h"
#include "tests/support/briefly.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

using Command = std::vector<std::string>;

/// Each command must be usable by a script, whatever it does.
class JsonOutput : public TagsFixture {
 protected:
  JsonOutput() {
    LookForLeaks();
    m_wave = CopySample("anna_1.wav");
    EXPECT_EQ(Run({"template", "process", m_wave, Path("a.st")}).exitCode, 0);
    EXPECT_EQ(Run({"language", "template", Path("a.lng")}).exitCode, 0);
  }

  /// Standard output has one JSON value on one line. If the command failed, an object has the error
  /// that standard error says.
  static void ExpectOneValue(const support::ProgramRun& run, const std::string& name) {
    EXPECT_TRUE(run.exitCode == 0 || run.exitCode == 1) << name << run.exitCode;
    // What was done all the same may say what it was done without.
    const bool isWarning =
        run.err.starts_with("voxtrel: the tags are used without their contacts") ||
        run.err.starts_with("voxtrel: warning: ");
    EXPECT_TRUE(run.exitCode == 0 ? run.err.empty() || isWarning : !run.err.empty())
        << name << run.err;
    EXPECT_THAT(run.err, Not(HasSubstr("json.exception"))) << name;
    EXPECT_EQ(std::ranges::count(run.out, '\n'), 1) << name << run.out;
    EXPECT_TRUE(run.out.ends_with('\n')) << name;
    const json value = json::parse(run.out, nullptr, false);
    EXPECT_TRUE(value.is_structured()) << name << run.out;
    EXPECT_TRUE(value.is_array() || value.contains("error") == (run.exitCode != 0))
        << name << value;
    if (value.is_object() && run.exitCode != 0) {
      ExpectError(run, value["error"]);
    }
  }

  [[nodiscard]] std::vector<Command> Commands() const {
    const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_2.wav";
    const std::string heard = Path("heard.wav");
    return {
        {"--microphone", sample, "wave", "record", Path("r.wav"), "--milliseconds", "9"},
        {"--microphone", Path("none.wav"), "wave", "record", Path("r.wav")},
        {"--speaker", heard, "wave", "play", m_wave},
        {"wave", "play", Path("none.wav")},
        {"wave", "check", m_wave},
        {"wave", "check", Path("none.wav")},
        {"template", "learn", m_wave, Path("b.st")},
        {"template", "learn", Path("none.wav"), Path("b.st")},
        {"template", "process", m_wave, Path("b.st")},
        {"template", "show", Path("a.st")},
        {"template", "show", Path("none.st")},
        {"template", "compare", Path("a.st"), Path("a.st")},
        {"template", "compare", Path("a.st"), Path("none.st")},
        {"language", "check", Path("a.lng")},
        {"language", "check", Path("none.lng")},
        {"language", "show", Path("a.lng")},
        {"language", "show", Path("none.lng")},
        {"language", "template"},
        {"language", "template", Path("b.lng")},
        {"registry", "export", Path("a.reg")},
        {"registry", "export", Path("none/a.reg")},
        {"registry", "import", Path("a.reg")},
        {"registry", "import", Path("none.reg")},
        {"contacts", "list"},
        {"connection"},
        {"connection", "show"},
        {"connection", "set", "port=COM1:"},
        {"status"},
        {"--microphone", sample, "tags", "learn", "--contact", "Nobody"},
        {"tags", "list"},
        {"tags", "test"},
        {"--speaker", heard, "tags", "play", "100"},
        {"tags", "play", "1"},
        {"check"},
        {"check", "--repair"},
        {"reinit"},
        {"tags", "delete", "200"},
        {"--yes", "tags", "delete", "200"},
        {"--yes", "tags", "delete", "1"},
        {"--yes", "tags", "delete-all"},
        {"--yes", "tags", "delete-all"},
    };
  }

  /// Those that open a window if they can.
  [[nodiscard]] static std::vector<Command> WindowCommands() { return {{"open"}, {"panel"}}; }

  /// Those that take seconds, since they wait as the applet does.
  [[nodiscard]] std::vector<Command> SlowCommands() const {
    return {{"--microphone", m_wave, "--speaker", Path("heard.wav"), "tags", "learn", "--contact",
             "Ann Lee"},
            {"reinit", "--force"}};
  }
  void ExpectOneValueOfEach(const std::string& root, const std::vector<Command>& commands) const {
    for (const Command& command : commands) {
      ExpectOneValue(RunIn(root, command), Line(command));
    }
  }

  /// Without a screen, so that no window opens.
  [[nodiscard]] support::ProgramRun RunIn(const std::string& root, Command command) const {
    command.insert(command.begin(), {VOXTREL_PROGRAM, "--json", "--root", root});
    return support::RunProgram(command, {"PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8",
                                         "DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM="});
  }
  [[nodiscard]] static std::string Line(const Command& command) {
    std::string line;
    for (const std::string& word : command) {
      line += word + ' ';
    }
    return line;
  }

  std::string m_wave;
};

TEST_F(JsonOutput, OfEachCommandIsOneValueWithTheErrorIfItFailed) {
  PutThreeTags();
  ExpectOneValueOfEach(Path("root"), SlowCommands());
  ExpectOneValueOfEach(Path("root"), Commands());
}

TEST_F(JsonOutput, OfEachCommandIsOneValueAlsoWithoutContacts) {
  SKIP_IF_BRIEF();
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  ExpectOneValueOfEach(Path("root"), SlowCommands());
  ExpectOneValueOfEach(Path("root"), Commands());
}

TEST_F(JsonOutput, OfEachCommandIsOneValueAlsoWithADamagedStore) {
  PutThreeTags();
  const fs::path store = NameOfStore(Path("root"));
  std::ofstream(store, std::ios::binary) << std::string(5000, 'x');
  ExpectOneValueOfEach(Path("root"), SlowCommands());
  ExpectOneValueOfEach(Path("root"), Commands());
}

TEST_F(JsonOutput, OfACommandThatHasNoScreenForItsWindowIsOneValue) {
  PutThreeTags();
  ExpectOneValueOfEach(Path("root"), WindowCommands());
  fs::remove(Path("all.vcf"));
  ExpectOneValueOfEach(Path("root"), WindowCommands());
  std::ofstream(NameOfStore(Path("root")), std::ios::binary) << std::string(5000, 'x');
  ExpectOneValueOfEach(Path("root"), WindowCommands());
}

TEST_F(JsonOutput, OfEachCommandIsOneValueAlsoIfTheRootIsNoUtf8) {
  SKIP_IF_BRIEF();
  PutThreeTags();
  const std::string root = Path("bad\xff root");
  fs::rename(Path("root"), root);
  ExpectOneValueOfEach(root, Commands());
}

TEST_F(JsonOutput, SaysOfARootThatIsNoUtf8WhatItSaysOfAnother) {
  PutThreeTags();
  const json before = List();
  const std::string root = Path("bad\xff");
  fs::rename(Path("root"), root);
  const auto listed = RunIn(root, {"tags", "list"});
  EXPECT_EQ(listed.exitCode, 0) << listed.err;
  const json list = json::parse(listed.out, nullptr, false);
  ASSERT_EQ(list.size(), before.size());
  EXPECT_EQ(list[2]["text"], before[2]["text"]);
  EXPECT_THAT(list[2]["wave"], HasSubstr("/bad\xEF\xBF\xBD/Program Files/"));
  const auto learned = RunIn(root, {"--microphone", m_wave, "--speaker", Path("heard.wav"), "tags",
                                    "learn", "--contact", "Ann Lee"});
  EXPECT_EQ(learned.exitCode, 0) << learned.err;
  fs::remove(Path("all.vcf"));
  const auto status = RunIn(root, {"status"});
  EXPECT_EQ(status.exitCode, 0) << status.err;
  const fs::path damaged = NameOfStore(root);
  std::ofstream(damaged, std::ios::binary) << std::string(5000, 'x');
  const json check = json::parse(RunIn(root, {"check"}).out, nullptr, false);
  EXPECT_THAT(check["findings"][0]["text"], HasSubstr("damaged"));
}

TEST_F(JsonOutput, OfAnExportNeedsAFile) {
  const auto run = RunIn(Path("root"), {"registry", "export"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(json::parse(run.out, nullptr, false)["error"]["code"], 2);
  EXPECT_THAT(run.err, HasSubstr("--json needs a file to export to"));
  EXPECT_EQ(RunJson({"registry", "export", Path("a.reg")}, 0), (json{{"result", 0}}));
  EXPECT_EQ(RunJson({"registry", "import", Path("a.reg")}, 0), (json{{"result", 0}}));
}

TEST_F(JsonOutput, OfACommandThatPrintsNothingElseIsItsError) {
  const auto run = RunIn(Path("root"), {"tags", "play", "1"});
  EXPECT_EQ(run.exitCode, 1);
  const std::string message = "there is no tag 1; `voxtrel tags list` shows them";
  EXPECT_EQ(json::parse(run.out, nullptr, false),
            (json{{"error", {{"code", 1}, {"message", message}}}}));
  EXPECT_EQ(run.err, "voxtrel: " + message + "\n");
}

TEST_F(JsonOutput, OfACommandThatPrintsAnObjectHasItsErrorToo) {
  const auto run = RunIn(Path("root"), {"wave", "check", Path("none.wav")});
  EXPECT_EQ(run.exitCode, 1);
  const json value = json::parse(run.out, nullptr, false);
  EXPECT_EQ(value["code"], -1);
  EXPECT_EQ(value["error"]["code"], 1);
  EXPECT_EQ(value["error"]["message"], Path("none.wav") + ": there is no such file");
}

TEST_F(JsonOutput, OfAMessageBoxIsPartOfTheError) {
  fs::remove(Path("all.vcf"));
  const auto run = RunIn(Path("root"), {"contacts", "list"});
  EXPECT_EQ(run.exitCode, 1);
  const std::string message = json::parse(run.out, nullptr, false)["error"]["message"];
  EXPECT_EQ(std::ranges::count(message, '\n'), 1) << message;
  EXPECT_THAT(run.err, testing::StartsWith(message.substr(0, message.find('\n')) + "\n"));
}

TEST_F(JsonOutput, OfATestNamesTagsLeftOutOnlyIfThereAreAny) {
  PutThreeTags();
  const json result = RunJson({"tags", "test"}, 0);
  EXPECT_EQ(result.size(), 2U) << result;
  EXPECT_TRUE(result.contains("lines") && result.contains("pairs"));
}

/// A card whose name would turn a terminal's letters red, by the short form of the command.
constexpr const char* kRedCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:r\r\nN:\u009B31mRed\u0085Dye;;;;\r\nTEL;TYPE=CELL:5551\r\n"
    "END:VCARD\r\n";

TEST_F(JsonOutput, OfNamesEscapesWhatATerminalMightTakeForACommand) {
  std::ofstream(Path("all.vcf"), std::ios::binary) << kRedCard;
  const auto run = RunIn(Path("root"), {"contacts", "list"});
  EXPECT_THAT(run.out, Not(HasSubstr("\u009B")));
  EXPECT_EQ(json::parse(run.out, nullptr, false)[0]["name"], "\u009B31mRed\u0085Dye");
}

/// A card whose name is written in Hebrew, with marks of direction, and hides commands.
constexpr const char* kHebrewCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:h\r\n"
    "N:\u200Fדנה\u202E\u2066\u2028\x7Fלוי\u061C;;;;\r\nTEL;TYPE=CELL:054\x1B[31m\r\n"
    "END:VCARD\r\n";

TEST_F(JsonOutput, OfNamesEscapesMarksOfDirectionAndKeepsTheName) {
  std::ofstream(Path("all.vcf"), std::ios::binary) << kHebrewCard;
  const auto run = RunIn(Path("root"), {"contacts", "list"});
  for (const char* command : {"\u200F", "\u202E", "\u2066", "\u2028", "\x7F", "\u061C", "\x1B"}) {
    EXPECT_THAT(run.out, Not(HasSubstr(command)));
  }
  EXPECT_THAT(run.out, HasSubstr("\\u200fדנה\\u202e\\u2066\\u2028\\u007fלוי\\u061c"));
  EXPECT_EQ(json::parse(run.out, nullptr, false)[0]["name"],
            "\u200Fדנה\u202E\u2066\u2028\x7Fלוי\u061C");
}

using TextOutput = TagsFixture;

TEST_F(TextOutput, ShowsAHebrewNameWithoutItsMarksOfDirection) {
  std::ofstream(Path("all.vcf"), std::ios::binary) << kHebrewCard;
  const auto run = Run({"contacts", "list"});
  EXPECT_THAT(run.out, HasSubstr("  דנה  לוי\n"));
  for (const char* command : {"\u200F", "\u202E", "\u2066", "\u2028", "\x7F", "\u061C", "\x1B"}) {
    EXPECT_THAT(run.out, Not(HasSubstr(command)));
  }
}

TEST_F(TextOutput, OfWrongUsageQuotesNoCommands) {
  const std::string odd = "\x1B]0;x\x07\u202E\u009B\x9B\r";
  const std::vector<Command> wrong = {{odd},
                                      {"--" + odd},
                                      {"tags", odd},
                                      {"wave", "record", "a.wav", "--milliseconds", odd},
                                      {"tags", "list", odd},
                                      {"connection", "set", odd},
                                      {"connection", "set", "port=" + odd},
                                      {"--json", "tags", odd}};
  for (const Command& command : wrong) {
    const auto run = Run(command);
    EXPECT_EQ(run.exitCode, 2) << command.back();
    for (const char* unsafe : {"\x1B", "\x07", "\u202E", "\u009B", "\x9B", "\r"}) {
      EXPECT_THAT(run.out + run.err, Not(HasSubstr(unsafe)));
    }
  }
}

TEST_F(TextOutput, OfWrongUsageQuotesTheArgumentWithBlanks) {
  EXPECT_THAT(Run({"tags", "list", "\x1B]0;x\x07"}).err, HasSubstr(" ]0;x "));
  EXPECT_THAT(Run({"connection", "set", "port=\x1B]0;x\x07"}).err, HasSubstr(" ]0;x "));
}

TEST_F(TextOutput, OfFilesThatFailNamesThemWithoutCommands) {
  const std::string odd = Path("\x1B]0;x\x07\u202E");
  for (const Command& command : std::vector<Command>{{"wave", "play", odd},
                                                     {"template", "show", odd},
                                                     {"language", "show", odd},
                                                     {"registry", "import", odd},
                                                     {"--contacts", odd, "contacts", "list"}}) {
    const auto run = Run(command);
    EXPECT_EQ(run.exitCode, 1) << command.front();
    EXPECT_THAT(run.err, Not(HasSubstr("\x1B")));
    EXPECT_THAT(run.err, Not(HasSubstr("\u202E")));
  }
}

TEST_F(TextOutput, HasBlanksInThePlaceOfControlCharacters) {
  std::ofstream(Path("all.vcf"), std::ios::binary) << kRedCard;
  const auto run = Run({"contacts", "list"});
  EXPECT_THAT(run.out, HasSubstr("   1   31mRed Dye\n"));
  const auto learn = Run({"tags", "learn", "--contact", "Red\u009B\x1B[31m\x7F"});
  EXPECT_THAT(learn.err, HasSubstr("is called \"Red  [31m \""));
}

}  // namespace

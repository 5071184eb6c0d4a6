#include <fstream>
#include <iterator>

#include "tests/host/cli/command_fixture.h"
#include "tests/language/language_bytes.h"
#include "tests/support/host_files.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

class LanguageCommands : public CommandFixture {
 protected:
  /// A language file of these bytes.
  [[nodiscard]] std::string Write(const std::vector<std::byte>& bytes) const {
    const std::string path = Path("file.lng");
    std::ofstream stream(path, std::ios::binary);
    for (const std::byte byte : bytes) {
      stream.put(static_cast<char>(byte));
    }
    return path;
  }

  /// The language file that the applet uses.
  [[nodiscard]] std::string InPlace() const {
    return support::Exactly(Path("root/Program Files/Zedra Tech./Zedra Voxtrel/Voxtrel.lng"))
        .string();
  }

  [[nodiscard]] static std::string Read(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
};

const std::string kLanguages = VOXTREL_LANGUAGES_DIR;

TEST_F(LanguageCommands, ListAndChooseTheInstalledLanguages) {
  const std::string inPlace = InPlace();
  EXPECT_EQ(Run({"language", "list"}).out, "* en\n  de\n  es\n  fr\n  ru\n  zh-Hans\n");
  EXPECT_FALSE(std::filesystem::exists(Path("root"))) << "A list makes nothing.";
  EXPECT_EQ(RunJson({"language", "use", "de"}, 0), json({{"used", "de"}}));
  EXPECT_EQ(Read(inPlace), Read(kLanguages + "/Voxtrel.de.lng"));
  EXPECT_EQ(RunJson({"language", "list"}, 0)["used"], "de");
  EXPECT_EQ(Run({"language", "use", "en"}).exitCode, 0);
  EXPECT_FALSE(std::filesystem::exists(inPlace));
  EXPECT_THAT(Run({"language", "use", "tlh"}).err, HasSubstr("tlh: there is no such language"));
}

TEST_F(LanguageCommands, ReplaceAFileOfTheUsersOwnOnlyIfToldToAndKeepIt) {
  const std::string inPlace = InPlace();
  ASSERT_EQ(Run({"language", "use", "de"}).exitCode, 0);
  std::ofstream(inPlace) << "mine";
  EXPECT_TRUE(RunJson({"language", "list"}, 0)["used"].is_null());
  const auto refused = Run({"language", "use", "fr"});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.err, HasSubstr("is your own, and stays"));
  EXPECT_EQ(Read(inPlace), "mine");
  const json used = RunJson({"--yes", "language", "use", "fr"}, 0);
  EXPECT_EQ(used["kept"], support::Shown(inPlace + ".own1"));
  EXPECT_EQ(Read(inPlace + ".own1"), "mine");
}

TEST_F(LanguageCommands, FindNothingToMendInAShippedTranslation) {
  const std::string file = kLanguages + "/Voxtrel.de.lng";
  const auto run = Run({"language", "check", file});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, file + ": every key has its text\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(RunJson({"language", "check", file}, 0), json({{"findings", json::array()}}));
}

TEST_F(LanguageCommands, SayWhatToMendWithItsLine) {
  const std::string file = Write(FileOf(u"// c\r\nID_TAB_2 An/Aus\r\n"));
  const auto run = Run({"language", "check", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr(file + ":2: ID_TAB_2: the text ends at its first"));
  EXPECT_THAT(run.out, HasSubstr(file + ": ID_TAB_3: the key is missing"));
  EXPECT_EQ(run.err, "voxtrel: " + file + ": 54 to mend\n");
}

TEST_F(LanguageCommands, SayWhatToMendToOtherPrograms) {
  const std::string file = Write(FileOf(u"// c\r\nID_TAB_2 An/Aus\r\n"));
  const json findings = RunJson({"language", "check", file}, 1).at("findings");
  ASSERT_EQ(findings.size(), 54U);
  EXPECT_EQ(findings[0].at("kind"), "text-cut");
  EXPECT_EQ(findings[0].at("line"), 2);
  EXPECT_EQ(findings[0].at("key"), "ID_TAB_2");
  EXPECT_EQ(findings[1].at("kind"), "missing-key");
  EXPECT_TRUE(findings[1].at("line").is_null());
}

TEST_F(LanguageCommands, FailForAFileThatIsNotThere) {
  for (const char* const command : {"check", "show"}) {
    const auto run = Run({"language", command, Path("none.lng")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("none.lng: there is no such file"));
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(LanguageCommands, ShowTheEntriesInFileOrderWithDuplicates) {
  const std::string file = Write(FileOf(u"ID_B \u0414\u0430 / c\r\nID_A x\r\nID_B \xD800\r\n"));
  EXPECT_EQ(Run({"language", "show", file, "--json"}).out,
            "{\"entries\":[[\"ID_B\",\"\xD0\x94\xD0\xB0\"],[\"ID_A\",\"x\"],"
            "[\"ID_B\",\"\xEF\xBF\xBD\"]]}\n");
  EXPECT_THAT(Run({"language", "show", file}).out, HasSubstr("ID_A                  x\n"));
}

TEST_F(LanguageCommands, ShowNoControlCharacterToATerminal) {
  const std::string file = Write(FileOf(u"ID_A x\x1B[2Jy\u009Bz\r\n"));
  EXPECT_EQ(Run({"language", "show", file}).out,
            "ID_A                  x\xEF\xBF\xBD[2Jy\xEF\xBF\xBDz\n");
}

TEST_F(LanguageCommands, ShowNothingOfAFileInAWrongEncoding) {
  const std::string file = Write(Bytes("ID_A x\r\n"));
  EXPECT_EQ(RunJson({"language", "show", file}, 0), json({{"entries", json::array()}}));
}

TEST_F(LanguageCommands, WriteTheTemplateToAFileOrToStandardOutput) {
  const std::string shipped = Read(kLanguages + "/Voxtrel.lng");
  const auto run = Run({"language", "template", Path("new.lng")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_TRUE(Read(Path("new.lng")) == shipped);
  EXPECT_TRUE(Run({"language", "template"}).out == shipped);
  EXPECT_EQ(RunJson({"language", "template"}, 0).at("entries").size(), 54U);
  std::ofstream(Path("empty.lng")).close();
  EXPECT_EQ(Run({"language", "template", Path("empty.lng")}).exitCode, 0);
  EXPECT_TRUE(Read(Path("empty.lng")) == shipped);
}

TEST_F(LanguageCommands, LeaveATranslationAloneThatHasTheTemplatesName) {
  const std::string file = Write(Bytes("ID_A Aufnehmen\r\n"));
  const std::string before = Read(file);
  const auto run = Run({"language", "template", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr(file + ": there is such a file already"));
  EXPECT_EQ(Read(file), before);
}

TEST_F(LanguageCommands, LeaveNoTornTemplateOnAFullDisk) {
  // Files of at most half a KiB.
  const auto run = support::RunProgram(
      {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 1; exec \"$PROGRAM\" language template \"$FILE\""},
      {"PROGRAM=" + std::string(VOXTREL_PROGRAM), "FILE=" + Path("new.lng")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("new.lng: it cannot be written"));
  EXPECT_FALSE(std::filesystem::exists(Path("new.lng")));
}

TEST_F(LanguageCommands, FailIfTheTemplateCannotBeWritten) {
  const auto run = Run({"language", "template", Path("none") + "/new.lng"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("new.lng: it cannot be written"));
}

TEST_F(LanguageCommands, NameTheirUsage) {
  EXPECT_EQ(Run({"language"}).exitCode, 2);
  EXPECT_EQ(Run({"language", "check"}).exitCode, 2);
  EXPECT_EQ(Run({"language", "show", "a", "b"}).exitCode, 2);
}

}  // namespace

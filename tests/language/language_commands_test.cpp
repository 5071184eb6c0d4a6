#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/cli/command_line.h"
#include "tests/language/language_bytes.h"
#include "tests/language/source_files.h"
#include "tests/support/temp_folder.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

struct Outcome {
  int exitCode = 0;
  std::string output;
  std::string errors;
};

class LanguageCommands : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::vector<std::byte>& bytes) {
    const std::string path = (m_folder.Path() / name).string();
    std::ofstream stream(path, std::ios::binary);
    for (const std::byte byte : bytes) {
      stream.put(static_cast<char>(byte));
    }
    return path;
  }

  Outcome Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"voxtrel", "--root", m_folder.Path().string()});
    std::vector<const char*> argv;
    for (const std::string& argument : arguments) {
      argv.push_back(argument.c_str());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Outcome outcome;
    outcome.exitCode = cli::RunCommandLine(static_cast<int>(argv.size()), argv.data());
    outcome.output = testing::internal::GetCapturedStdout();
    outcome.errors = testing::internal::GetCapturedStderr();
    return outcome;
  }

  support::TempFolder m_folder;
};

TEST_F(LanguageCommands, FindNothingToMendInAShippedTranslation) {
  const std::string file = Write("de.lng", ReadSourceFile("resources/languages/Voxtrel.de.lng"));
  const Outcome outcome = Run({"language", "check", file});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.output, file + ": every key has its text\n");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Run({"language", "check", file, "--json"}).output, "{\"findings\":[]}\n");
}

TEST_F(LanguageCommands, TellWhatToMendWithItsLine) {
  const std::string file = Write("bad.lng", FileOf(u"// c\r\nID_TAB_2 An/Aus\r\n"));
  const Outcome outcome = Run({"language", "check", file});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr(file + ":2: ID_TAB_2: the text ends at its first"));
  EXPECT_THAT(outcome.output, HasSubstr(file + ": ID_TAB_3: the key is missing"));
  EXPECT_EQ(outcome.errors, "voxtrel: " + file + ": 54 to mend\n");
}

TEST_F(LanguageCommands, TellWhatToMendToOtherPrograms) {
  const std::string file = Write("bad.lng", FileOf(u"// c\r\nID_TAB_2 An/Aus\r\n"));
  const Outcome outcome = Run({"language", "check", "--json", file});
  EXPECT_EQ(outcome.exitCode, 1);
  const json findings = json::parse(outcome.output).at("findings");
  ASSERT_EQ(findings.size(), 54U);
  EXPECT_EQ(findings[0].at("kind"), "text-cut");
  EXPECT_EQ(findings[0].at("line"), 2);
  EXPECT_EQ(findings[0].at("key"), "ID_TAB_2");
  EXPECT_EQ(findings[1].at("kind"), "missing-key");
  EXPECT_TRUE(findings[1].at("line").is_null());
}

TEST_F(LanguageCommands, FailForAFileThatCannotBeOpened) {
  for (const char* const command : {"check", "show"}) {
    const Outcome outcome = Run({"language", command, (m_folder.Path() / "none.lng").string()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("none.lng: it cannot be opened"));
    EXPECT_EQ(outcome.output, "");
  }
}

TEST_F(LanguageCommands, ShowTheEntriesInFileOrderWithDuplicates) {
  const std::string file =
      Write("a.lng", FileOf(u"ID_B \u0414\u0430 / c\r\nID_A x\r\nID_B \xD800\r\n"));
  EXPECT_EQ(Run({"language", "show", file, "--json"}).output,
            "{\"entries\":[[\"ID_B\",\"\xD0\x94\xD0\xB0\"],[\"ID_A\",\"x\"],"
            "[\"ID_B\",\"\xEF\xBF\xBD\"]]}\n");
  EXPECT_THAT(Run({"language", "show", file}).output, HasSubstr("ID_A                  x\n"));
}

TEST_F(LanguageCommands, ShowNoControlCharacterToATerminal) {
  const std::string file = Write("a.lng", FileOf(u"ID_A x\x1B[2Jy\u009Bz\r\n"));
  EXPECT_EQ(Run({"language", "show", file}).output,
            "ID_A                  x\xEF\xBF\xBD[2Jy\xEF\xBF\xBDz\n");
}

TEST_F(LanguageCommands, ShowNothingOfAFileInAWrongEncoding) {
  const std::string file = Write("a.lng", Bytes("ID_A x\r\n"));
  const Outcome outcome = Run({"language", "show", file, "--json"});
  EXPECT_EQ(outcome.output, "{\"entries\":[]}\n");
  EXPECT_EQ(outcome.exitCode, 0);
}

TEST_F(LanguageCommands, WriteTheTemplateToAFileOrToStandardOutput) {
  const std::vector<std::byte> shipped = ReadSourceFile("resources/languages/Voxtrel.lng");
  const std::string file = (m_folder.Path() / "new.lng").string();
  const Outcome written = Run({"language", "template", file});
  EXPECT_EQ(written.exitCode, 0);
  EXPECT_EQ(written.output, "");
  EXPECT_TRUE(ReadSourceFile(file) == shipped);
  EXPECT_TRUE(Bytes(Run({"language", "template"}).output) == shipped);
}

TEST_F(LanguageCommands, FailWhereTheTemplateCannotBeWritten) {
  const Outcome outcome =
      Run({"language", "template", (m_folder.Path() / "none" / "new.lng").string()});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("new.lng: it cannot be written"));
}

TEST_F(LanguageCommands, NameTheirUsage) {
  EXPECT_EQ(Run({"language"}).exitCode, 2);
  EXPECT_EQ(Run({"language", "check"}).exitCode, 2);
  EXPECT_EQ(Run({"language", "show", "a", "b"}).exitCode, 2);
}

}  // namespace

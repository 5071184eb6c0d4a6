#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/host/cli/tags_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class BackupCommands : public TagsFixture {
 protected:
  [[nodiscard]] std::string File() const { return Path("voice.tar"); }

  /// As Run, but in another root folder.
  [[nodiscard]] support::ProgramRun RunThere(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("there")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all, {"PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8"});
  }
  [[nodiscard]] json JsonThere(std::vector<std::string> arguments) const {
    arguments.emplace_back("--json");
    return json::parse(RunThere(arguments).out, nullptr, false);
  }

  static std::vector<std::string> TextsOf(const json& tags) {
    std::vector<std::string> texts;
    for (const json& tag : tags) {
      texts.push_back(tag.value("text", ""));
    }
    return texts;
  }

  void BackUp() const {
    const auto run = Run({"backup", File()});
    ASSERT_EQ(run.exitCode, 0) << run.err;
  }
  static void Put(const fs::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
  }
};

TEST_F(BackupCommands, AnEmptyFolderGetsTagsContactsAndSettings) {
  PutThreeTags();
  ASSERT_EQ(Run({"connection", "set", "baud-rate=19200"}).exitCode, 0);
  Put(Folder("Voxtrel.lng"), "texts");
  const json made = RunJson({"backup", File()}, 0);
  EXPECT_EQ(made, json({{"result", 0}, {"tags", 3}}));

  const json restored = JsonThere({"restore", File()});
  EXPECT_EQ(restored["restored"], json({"100", "200", "300"}));
  EXPECT_EQ(restored["connection"], "restored");
  EXPECT_EQ(restored["language"], "restored");
  EXPECT_EQ(TextsOf(JsonThere({"tags", "list"})), TextsOf(List()))
      << "Each tag finds its contact again.";
  EXPECT_THAT(RunThere({"connection", "show"}).out, HasSubstr("19200"));
  EXPECT_EQ(RunThere({"check"}).exitCode, 0);
}

TEST_F(BackupCommands, WhatIsRestoredBelongsToTheUserAlone) {
  PutThreeTags();
  BackUp();
  ASSERT_EQ(RunThere({"restore", File()}).exitCode, 0);
  for (const auto& each : fs::recursive_directory_iterator(Path("there"))) {
    EXPECT_EQ(each.status().permissions() & (fs::perms::group_all | fs::perms::others_all),
              fs::perms::none)
        << each.path();
  }
}

TEST_F(BackupCommands, AnyToolUnpacksABackup) {
  PutThreeTags();
  BackUp();
  const auto run = support::RunProgram({"/bin/tar", "-xOf", File(), "tags/200/recording.wav"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, Content(Wave("200")));
}

TEST_F(BackupCommands, ASecondRestorationFindsEverythingThere) {
  PutThreeTags();
  BackUp();
  const json restored = RunJson({"restore", File()}, 0);
  EXPECT_EQ(restored["same"], json({"100", "200", "300"}));
  EXPECT_EQ(restored["restored"], json::array());
}

TEST_F(BackupCommands, OnlyWhatIsMissingComesBackWithoutAQuestion) {
  PutThreeTags();
  BackUp();
  ASSERT_EQ(Run({"--yes", "tags", "delete", "200"}).exitCode, 0);
  PutTag("400", "sophie_1.wav", m_ann, u"Mobile");
  const auto run = Run({"restore", File()});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(GetNames(), UnorderedElementsAre("100", "200", "300", "400"));
}

TEST_F(BackupCommands, WhatDiffersStaysUnlessTheUserAgrees) {
  PutThreeTags();
  ASSERT_EQ(Run({"connection", "set", "baud-rate=19200"}).exitCode, 0);
  BackUp();
  const std::string first = Content(Wave("100"));
  const std::string second = Content(Wave("200"));
  CopyOver(Wave("100"), Wave("200"));
  ASSERT_EQ(Run({"connection", "set", "baud-rate=9600"}).exitCode, 0);

  const auto refused = Run({"restore", File()});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.err, HasSubstr("Bob Ray")) << "The question names the tag.";
  EXPECT_THAT(refused.err, HasSubstr("the connection settings"));
  EXPECT_THAT(refused.err, HasSubstr("--yes"));
  EXPECT_EQ(Content(Wave("200")), first);
  EXPECT_THAT(Run({"connection", "show"}).out, HasSubstr("9600"));
  const json left = RunJson({"restore", File()}, 1);
  EXPECT_EQ(left["left"], json({{{"name", "200"}, {"reason", "kept"}}}));
  EXPECT_EQ(left["connection"], "kept");

  const json replaced = RunJson({"--yes", "restore", File()}, 0);
  EXPECT_EQ(replaced["replaced"], json({"200"}));
  EXPECT_EQ(replaced["connection"], "replaced");
  EXPECT_EQ(Content(Wave("200")), second);
  EXPECT_THAT(Run({"tags", "trash"}).out, HasSubstr("replace"));
  EXPECT_EQ(Run({"restore", replaced["saved"], "--yes"}).exitCode, 0)
      << "The settings that were replaced can be had again.";
  EXPECT_THAT(Run({"connection", "show"}).out, HasSubstr("9600"));
}

TEST_F(BackupCommands, AFileThatIsNoBackupChangesNothing) {
  Put(Path("foreign"), "hello");
  PutThreeTags();
  BackUp();
  const std::string whole = Content(File());
  Put(Path("torn"), whole.substr(0, whole.size() / 2));
  for (const char* file : {"foreign", "torn", "missing"}) {
    const auto run = RunThere({"restore", Path(file)});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr(Path(file)));
    EXPECT_FALSE(fs::exists(Path("there"))) << "No folder is made for it.";
  }
}

TEST_F(BackupCommands, ABackupThatIsNotThereIsCalledAMissingFile) {
  EXPECT_EQ(RunThere({"restore", Path("missing")}).err,
            "voxtrel: " + Path("missing") + ": there is no such file\n");
}

TEST_F(BackupCommands, ABackupReplacesABackupAndNothingElse) {
  PutThreeTags();
  BackUp();
  BackUp();
  Put(Path("letter"), "dear Ann");
  const auto run = Run({"backup", Path("letter")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("is no backup"));
  EXPECT_EQ(Content(Path("letter")), "dear Ann");
  EXPECT_EQ(Run({"--yes", "backup", Path("letter")}).exitCode, 0);
  EXPECT_EQ(JsonThere({"restore", Path("letter")})["restored"].size(), 3U);
}

TEST_F(BackupCommands, ABackupNeverReplacesAFileOfTheStore) {
  PutThreeTags();
  std::ofstream(Path("root/contacts.vcf"), std::ios::binary) << kAnnsCard;
  for (const fs::path& file : {fs::path(Path("root/contacts.vcf")), Wave("100")}) {
    const std::string before = Content(file);
    const auto run = Run({"--yes", "backup", support::Shown(file)});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("in the folder of the voice tags"));
    EXPECT_EQ(Content(file), before);
  }
}

TEST_F(BackupCommands, ABackupNeverReplacesTheFileOfTheSettings) {
  PutThreeTags();
  const std::string store = NameOfStore(Path("root"));
  const std::string before = Content(store);
  const auto run = Run({"--yes", "backup", store});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("in the folder of the voice tags"));
  EXPECT_EQ(Content(store), before);
}

TEST_F(BackupCommands, WithoutAFolderThereIsNothingToBackUp) {
  const auto run = RunThere({"backup", File()});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("nothing to back up"));
  EXPECT_FALSE(fs::exists(Path("there")));
  EXPECT_FALSE(fs::exists(File()));
}

TEST_F(BackupCommands, AFullDiskLeavesTheEarlierBackup) {
  PutThreeTags();
  BackUp();
  const std::string earlier = Content(File());
  PutTag("400", "sophie_1.wav", m_ann, u"Mobile");
  EXPECT_NE(RunOnFullDisk(80, {"backup", File()}).exitCode, 0);
  EXPECT_EQ(Content(File()), earlier);
}

TEST_F(BackupCommands, TheStandardStreamsTakeABackup) {
  PutThreeTags();
  const std::string pipe = std::string("'") + VOXTREL_PROGRAM + "' --root '" + Path("root") +
                           "' backup - | '" + VOXTREL_PROGRAM + "' --root '" + Path("there") +
                           "' restore - --json";
  const auto run = support::RunProgram({"/bin/sh", "-c", pipe});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(json::parse(run.out, nullptr, false)["restored"].size(), 3U);
  EXPECT_EQ(Run({"backup", "-", "--json"}).exitCode, 2);
}

TEST_F(BackupCommands, WithAnotherAddressBookTagsFindTheSamePeople) {
  PutThreeTags();
  BackUp();
  // The same people, from another program: other UIDs for none of them, another order, one more.
  std::ofstream(Path("moved.vcf"), std::ios::binary)
      << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:x\r\nN:Zed;Zoe;;;\r\nTEL;TYPE=CELL:1\r\nEND:VCARD\r\n"
      << kBobsCard << kAnnsCard;
  ASSERT_EQ(RunThere({"--contacts", Path("moved.vcf"), "reinit"}).exitCode, 0);
  const json restored = JsonThere({"restore", File()});
  EXPECT_EQ(restored["restored"], json({"100", "200", "300"})) << restored;
  const json there = JsonThere({"tags", "list"});
  EXPECT_EQ(TextsOf(there), TextsOf(List()));
  EXPECT_NE(there.at(0).value("contact", 0), m_ann) << "Another book gave another number.";
}

TEST_F(BackupCommands, ATagOfSomebodyWhoIsNoContactHereIsNotRestored) {
  PutThreeTags();
  BackUp();
  std::ofstream(Path("ann.vcf"), std::ios::binary) << kAnnsCard;
  ASSERT_EQ(RunThere({"--contacts", Path("ann.vcf"), "reinit"}).exitCode, 0);
  const auto run = RunThere({"restore", File()});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("contact"));
  EXPECT_EQ(JsonThere({"tags", "list"}).size(), 1U);
  EXPECT_EQ(RunThere({"tags", "test"}).exitCode, 0) << "The log-on works as before.";
}

}  // namespace

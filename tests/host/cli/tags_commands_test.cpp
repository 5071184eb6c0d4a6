#include <filesystem>
#include <fstream>
#include <vector>

#include "host/machine/system.h"
#include "tests/host/cli/tags_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

using TagsCommands = TagsFixture;

TEST_F(TagsCommands, ListShowsTheListBoxAndTheCount) {
  PutThreeTags();
  const auto run = Run({"tags", "list"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out,
            "        100  Ann Lee 5551234 M\n"
            "        200  Bob Ray 5550001 H\n"
            "        300  Bob Ray 5550001 H\n"
            "Learned commands: 3\n");
}

TEST_F(TagsCommands, ListAsJsonHasWhatIsStoredAndWhere) {
  PutThreeTags();
  const auto run = Run({"tags", "list", "--json"});
  EXPECT_EQ(std::ranges::count(run.out, '\n'), 1);
  EXPECT_TRUE(run.out.starts_with(R"([{"name":"100","contact":)" + std::to_string(m_ann) +
                                  R"(,"phoneType":"Mobile","text":"Ann Lee 5551234 M","wave":")"));
  json list = List();
  ASSERT_EQ(list.size(), 3U);
  list[1].erase("quality");  // See quality_commands_test.cpp.
  EXPECT_EQ(list[1], (json{{"name", "200"},
                           {"contact", m_bob},
                           {"phoneType", "Home"},
                           {"text", "Bob Ray 5550001 H"},
                           {"wave", support::Shown(Wave("200"))},
                           {"template", support::Shown(Template("200"))},
                           {"stale", false}}));
}

TEST_F(TagsCommands, WhatAListNamesIsAFileForOtherCommands) {
  PutThreeTags();
  const json tag = List()[0];
  EXPECT_EQ(Run({"wave", "check", tag["wave"]}).exitCode, 0);
  EXPECT_EQ(Run({"template", "show", tag["template"]}).exitCode, 0);
  EXPECT_EQ(Run({"--microphone", tag["wave"], "wave", "record", Path("new.wav")}).exitCode, 0);
}

TEST_F(TagsCommands, ListWithoutTagsIsEmptyAndNoFailure) {
  EXPECT_EQ(List(), json::array());
  EXPECT_EQ(Run({"tags", "list"}).out, "Learned commands: 0\n");
}

TEST_F(TagsCommands, ATagOfAContactThatIsGoneIsListedAsStaleAndDeletedByACommandThatMayChangeTags) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kBobsCard;
  for (int i = 0; i < 2; ++i) {
    const auto run = Run({"tags", "list"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "        100  100  (its contact does not exist any more)\n"
              "        200  Bob Ray 5550001 H\n        300  Bob Ray 5550001 H\n"
              "Learned commands: 3\n");
  }
  EXPECT_EQ(List()[0]["stale"], true);
  EXPECT_EQ(List()[0]["contact"], m_ann);
  EXPECT_EQ(List()[1]["stale"], false);
  EXPECT_TRUE(HasFiles("100"));
  EXPECT_TRUE(HasEntry("100"));
  EXPECT_EQ(Run({"--speaker", Path("heard.wav"), "tags", "play", "200"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(Wave("100")));
  EXPECT_FALSE(fs::exists(Template("100")));
  EXPECT_FALSE(HasEntry("100"));
  EXPECT_THAT(Run({"tags", "list"}).out, HasSubstr("Learned commands: 2\n"));
}

TEST_F(TagsCommands, AStaleTagWithoutARecordingHidesNoOther) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard;
  fs::remove(Wave("200"));
  EXPECT_THAT(GetNames(), ElementsAre("100", "200", "300"));
}

TEST_F(TagsCommands, PlayIsHeard) {
  PutThreeTags();
  const std::string heard = Path("heard.wav");
  EXPECT_EQ(RunJson({"--speaker", heard, "tags", "play", "300"}, 0), (json{{"result", 0}}));
  const std::string recording = Content(Wave("300"));
  ASSERT_GT(recording.size(), 44U);
  EXPECT_EQ(Content(heard).substr(44), recording.substr(44));
}

TEST_F(TagsCommands, PlayOfATagWhoseRecordingIsGoneSaysSo) {
  PutThreeTags();
  fs::remove(Wave("200"));
  const std::string heard = Path("heard.wav");
  EXPECT_EQ(RunJson({"--speaker", heard, "tags", "play", "200"}, 1), (json{{"result", 1}}));
  const auto run = Run({"--speaker", heard, "tags", "play", "200"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, testing::StartsWith("voxtrel: tag 200 was not played: the file could not"));
  EXPECT_FALSE(fs::exists(heard));
}

TEST_F(TagsCommands, PlayWithoutALoudspeakerSaysSo) {
  PutThreeTags();
  EXPECT_EQ(RunJson({"tags", "play", "100"}, 1), (json{{"result", 8}}));
  EXPECT_THAT(Run({"tags", "play", "100"}).err, HasSubstr("there is no sound server"));
}

TEST_F(TagsCommands, AnUnknownTagIsNotPlayedNorDeleted) {
  PutThreeTags();
  for (const std::string command : {"play", "delete"}) {
    const auto run = Run({"--yes", "tags", command, "10", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    ExpectOnlyAnError(run);
    EXPECT_EQ(run.err, "voxtrel: there is no tag 10; `voxtrel tags list` shows them\n");
  }
  EXPECT_THAT(GetNames(), ElementsAre("100", "200", "300"));
}

TEST_F(TagsCommands, WhileAWindowHasTheTagsCommandsOnlyReadThem) {
  PutThreeTags();
  {
    const auto window = machine::MakeThreads(Path("root"));
    const platform::CreatedMutex held = window->CreateNamedMutex(u"ZedraD");
    ASSERT_TRUE(held);
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"tags", "learn", "--contact", "Ann", "--json"},
                                               {"tags", "play", "100", "--json"},
                                               {"--yes", "tags", "delete", "100", "--json"},
                                               {"--yes", "tags", "delete-all", "--json"}}) {
      const auto run = Run(command);
      EXPECT_EQ(run.exitCode, 1);
      ExpectOnlyAnError(run);
      EXPECT_EQ(run.err,
                "voxtrel: the tags are in use by another Voxtrel; close it and try again\n");
    }
    EXPECT_THAT(GetNames(), ElementsAre("100", "200", "300")) << "To read is allowed.";
    EXPECT_EQ(Run({"tags", "test"}).exitCode, 0);
  }
  EXPECT_THAT(GetNames(), ElementsAre("100", "200", "300"));
}

TEST_F(TagsCommands, WithoutContactsTheListShowsWhatTheStoreKnowsAndSaysWhy) {
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  const auto run = Run({"tags", "list", "--json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("voxtrel: the tags are used without their contacts: the chosen "
                                 "address book is missing"));
  const json list = json::parse(run.out, nullptr, false);
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list[1]["name"], "200");
  EXPECT_EQ(list[1]["text"], "200");
  EXPECT_EQ(list[1]["phoneType"], "Home");
  EXPECT_EQ(list[1]["contact"], m_bob);
  EXPECT_EQ(list[1]["stale"], false);
  EXPECT_THAT(Run({"tags", "list"}).out, HasSubstr("        200  200  (Home)\n"));
  EXPECT_EQ(Run({"tags", "test"}).exitCode, 0);
}

TEST_F(TagsCommands, WithoutContactsTagsArePlayedAndDeletedAndNoneCountsAsStale) {
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  const std::string heard = Path("heard.wav");
  const auto played = Run({"--speaker", heard, "tags", "play", "200", "--json"});
  EXPECT_EQ(played.exitCode, 0);
  EXPECT_EQ(played.out, "{\"result\":0}\n");
  EXPECT_THAT(played.err, HasSubstr("the tags are used without their contacts: "));
  EXPECT_EQ(Run({"--yes", "tags", "delete", "200"}).exitCode, 0);
  EXPECT_FALSE(HasEntry("200"));
  EXPECT_TRUE(HasEntry("100"));
  EXPECT_TRUE(HasFiles("100"));
  EXPECT_EQ(Run({"--yes", "tags", "delete-all"}).exitCode, 0);
  EXPECT_FALSE(HasEntry("100"));
  EXPECT_FALSE(HasFiles("100"));
}

TEST_F(TagsCommands, TagsOfAnotherAddressBookCanBeDeletedAsTheMessageAdvises) {
  PutThreeTags();
  std::ofstream(Path("other.vcf"), std::ios::binary) << kBobsCard;
  EXPECT_THAT(Run({"--contacts", Path("other.vcf"), "contacts", "list"}).err,
              HasSubstr("or delete the tags"));
  EXPECT_EQ(Run({"--yes", "--contacts", Path("other.vcf"), "tags", "delete-all"}).exitCode, 0);
  EXPECT_FALSE(HasEntry("100"));
  EXPECT_EQ(Run({"--contacts", Path("other.vcf"), "contacts", "list"}).exitCode, 0);
}

TEST_F(TagsCommands, WhoseContactsAreAwayAreNotLearned) {
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  const auto run = Run({"tags", "learn", "--contact", "Ann"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("Zedra Voxtrel: Failed to logon to Pocket Outlook\n"));
  EXPECT_THAT(run.err, HasSubstr("voxtrel: the chosen address book is missing"));
}

TEST_F(TagsCommands, WrongUsageIsTwo) {
  EXPECT_EQ(Run({"tags"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "play"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "delete"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "delete", "1", "2"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "delete-all", "1"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "list", "1"}).exitCode, 2);
}

TEST_F(TagsCommands, ARootFolderWithAMistypedNameIsNotMadeByACommandThatOnlyReads) {
  const std::vector<std::vector<std::string>> commands{{"tags", "list"},
                                                       {"tags", "test"},
                                                       {"tags", "trash"},
                                                       {"tags", "play", "100"},
                                                       {"contacts", "list"},
                                                       {"status"},
                                                       {"check"},
                                                       {"check", "--repair"},
                                                       {"connection", "show"},
                                                       {"registry", "export", Path("a.reg")},
                                                       {"registry", "import", Path("none.reg")}};
  const auto run = [this](const std::vector<std::string>& command) {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("rot")};
    all.insert(all.end(), command.begin(), command.end());
    return support::RunProgram(all, {"PULSE_SERVER=unix:" + Path("no-server")});
  };
  for (const std::vector<std::string>& command : commands) {
    EXPECT_NE(run(command).exitCode, 2);
    EXPECT_FALSE(fs::exists(Path("rot"))) << command.front() << ' ' << command.back();
  }
  const auto play = run({"tags", "play", "100"});
  EXPECT_EQ(play.exitCode, 1);
  EXPECT_EQ(play.err, "voxtrel: there is no tag 100; `voxtrel tags list` shows them\n");
}

}  // namespace

#include <filesystem>
#include <fstream>

#include "storage/registry_keys.h"
#include "tests/host/cli/maintenance_fixture.h"
#include "tests/support/registry_access.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

class MaintenanceCommands : public MaintenanceFixture {
 protected:
  /// What is printed if nothing is wrong and each tag has its recording.
  [[nodiscard]] static json Reinit(bool hasRun, int tags) {
    return {{"ran", hasRun},
            {"tags", tags},
            {"recordings", tags},
            {"withoutRecording", json::array()},
            {"messages", json::array()},
            {"problem", ""}};
  }
};

TEST_F(MaintenanceCommands, TestPrintsTheLinesOfTheDialog) {
  PutThreeTags();
  const auto run = Run({"tags", "test"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(run.out, HasSubstr("%; 2; Ann Lee 5551234 M;  Bob Ray 5550001 H\n"));
  EXPECT_EQ(std::ranges::count(run.out, '\n'), 3);
}

TEST_F(MaintenanceCommands, TestAsJsonHasTheLinesAndThePairs) {
  PutThreeTags();
  const json result = RunJson({"tags", "test"}, 0);
  ASSERT_EQ(result["lines"].size(), 3U);
  ASSERT_EQ(result["pairs"].size(), 3U);
  const json& first = result["pairs"][0];
  EXPECT_EQ(first["tag"], "100");
  EXPECT_EQ(first["neighbour"], "200");
  EXPECT_EQ(first["confusions"], 2);
  const double distance = first["distance"];
  EXPECT_EQ(first["score"], static_cast<int>(100.0 - distance * 100.0));
  const std::string line = result["lines"][0];
  EXPECT_TRUE(line.starts_with(std::to_string(first["score"].get<int>()) + "%; 2; Ann Lee"));
  EXPECT_EQ(result["pairs"][2]["tag"], "300");
}

TEST_F(MaintenanceCommands, TestOfLessThanTwoTagsSaysSo) {
  EXPECT_THAT(Run({"tags", "test"}).out, HasSubstr("nothing to compare"));
  PutTag("100", "anna_1.wav", m_ann, u"Mobile");
  PutVersion(u"3");
  const json result = RunJson({"tags", "test"}, 0);
  EXPECT_TRUE(result["lines"].empty());
  EXPECT_TRUE(result["pairs"].empty());
}

TEST_F(MaintenanceCommands, TestNamesTagsWithoutATemplateAndListsTheOthers) {
  PutThreeTags();
  fs::remove(Template("200"));
  const auto run = Run({"tags", "test"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(std::ranges::count(run.out, '\n'), 2);
  EXPECT_THAT(run.err, HasSubstr("Bob Ray 5550001 H"));
  EXPECT_THAT(run.err, HasSubstr("recordings: voxtrel check --repair"));
}

TEST_F(MaintenanceCommands, TheAdviceAboutUnreadableTemplatesPutsThemRight) {
  PutThreeTags();
  const auto good = GetFiles();
  fs::remove(Template("200"));
  ASSERT_THAT(Run({"tags", "test"}).err, HasSubstr("voxtrel check --repair"));
  const auto repair = Run({"check", "--repair"});
  EXPECT_EQ(repair.exitCode, 0) << repair.err;
  EXPECT_TRUE(GetFiles() == good);
  const auto again = Run({"tags", "test"});
  EXPECT_EQ(again.exitCode, 0) << again.err;
  EXPECT_THAT(again.err, IsEmpty());
  EXPECT_EQ(std::ranges::count(again.out, '\n'), 3);
}

TEST_F(MaintenanceCommands, TestReportsTagsBeyondThoseThatAreCompared) {
  PutThreeTags();
  for (int tag = 1000; tag < 1098; ++tag) {
    PutEntry(std::to_string(tag), m_ann, u"Mobile");
    fs::copy_file(Template("100"), Template(std::to_string(tag)));
  }
  const auto run = Run({"tags", "test"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(std::ranges::count(run.out, '\n'), 100);
  EXPECT_THAT(run.err, HasSubstr("only the first 100 of 101 voice tags were compared"));
  const json result = RunJson({"tags", "test"}, 1);
  EXPECT_EQ(result["beyond"], 1);
  EXPECT_EQ(result["pairs"].size(), 100U);
}

TEST_F(MaintenanceCommands, TestLeavesOutTagsWhoseContactIsGoneAndDeletesNone) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kBobsCard;
  const auto before = GetFiles();
  const json result = RunJson({"tags", "test"}, 0);
  ASSERT_EQ(result["pairs"].size(), 2U);
  EXPECT_NE(result["pairs"][0]["tag"], "100");
  EXPECT_NE(result["pairs"][1]["tag"], "100");
  EXPECT_TRUE(GetFiles() == before);
  EXPECT_TRUE(HasEntry("100"));
}

TEST_F(MaintenanceCommands, ReinitDoesNothingIfTheVersionIsCurrent) {
  PutThreeTags();
  const auto before = GetFiles();
  EXPECT_EQ(RunJson({"reinit"}, 0), Reinit(false, 3));
  EXPECT_TRUE(GetFiles() == before);
}

TEST_F(MaintenanceCommands, ReinitComputesEveryTemplateAfterAChangeOfTheVersion) {
  PutThreeTags();
  const auto expected = GetExpected();
  std::ofstream(Template("100"), std::ios::binary) << "old";
  fs::remove(Template("300"));
  PutVersion(u"2");
  EXPECT_EQ(RunJson({"reinit"}, 0), Reinit(true, 3));
  EXPECT_TRUE(GetFiles() == expected);
  EXPECT_EQ(RunJson({"reinit"}, 0)["ran"], false) << "Once.";
}

TEST_F(MaintenanceCommands, AnyCommandThatMayChangeTagsDoesItFirstAndAListDoesNot) {
  PutThreeTags();
  fs::remove(Template("200"));
  PutVersion(u"");
  EXPECT_EQ(Run({"tags", "list"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(Template("200")));
  EXPECT_EQ(Run({"--speaker", Path("heard.wav"), "tags", "play", "100"}).exitCode, 0);
  EXPECT_TRUE(fs::exists(Template("200")));
}

TEST_F(MaintenanceCommands, ForceComputesThemWhateverTheVersionSays) {
  PutThreeTags();
  const auto expected = GetExpected();
  fs::remove(Template("200"));
  const auto run = Run({"reinit", "--force"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("computed again"));
  EXPECT_TRUE(GetFiles() == expected);
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_EQ(support::BytesOf(registry, storage::kSetupKey, u"Version_Math").size(), 8U);
}

TEST_F(MaintenanceCommands, ForceIsDoneOnceIfTheVersionHasChangedAsWell) {
  PutThreeTags();
  PutVersion(u"2");
  EXPECT_EQ(RunJson({"reinit", "--force"}, 0)["ran"], true);
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_EQ(support::BytesOf(registry, storage::kSetupKey, u"Version_Math").size(), 32U);
}

TEST_F(MaintenanceCommands, ReinitWithoutTagsSaysSo) {
  EXPECT_EQ(RunJson({"reinit", "--force"}, 0), Reinit(false, 0));
  EXPECT_THAT(Run({"reinit"}).out, HasSubstr("no voice tags"));
}

TEST_F(MaintenanceCommands, ReinitWithoutAnyRecordingEndsWithItsMessage) {
  PutEntry("100", m_ann, u"Mobile");
  PutVersion(u"2");
  const auto run = Run({"reinit"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.err.starts_with("Zedra Voxtrel: Error\n"));
  EXPECT_THAT(run.err,
              HasSubstr("have no recording, and so no new template: 100 (Ann Lee 5551234"));
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{"reinit"}, {"reinit", "--force"}}) {
    PutVersion(u"2");
    const json result = RunJson(command, 1);
    EXPECT_EQ(result["ran"], true);
    EXPECT_EQ(result["tags"], 1);
    EXPECT_EQ(result["recordings"], 0);
    EXPECT_EQ(result["withoutRecording"],
              json::array({{{"tag", "100"}, {"listText", "Ann Lee 5551234 M"}}}));
    EXPECT_EQ(result["messages"], json::array({"Error"}));
    EXPECT_THAT(result["problem"], HasSubstr("have no recording"));
  }
}

TEST_F(MaintenanceCommands, ATemplateThatCannotBeMadeEndsTheWaitAndIsReported) {
  PutThreeTags();
  fs::remove(Template("200"));
  fs::create_directory(Template("200"));  // A folder in its place.
  PutVersion(u"2");
  const auto run = Run({"reinit"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("ERROR in CreateFile"));
  EXPECT_THAT(run.err, HasSubstr("Bob Ray 5550001 H"));
  EXPECT_THAT(run.err, HasSubstr("voxtrel check"));
  EXPECT_THAT(run.err, HasSubstr("voxtrel reinit --force"));
  const json result = RunJson({"reinit", "--force"}, 1);
  EXPECT_EQ(result["ran"], true);
  EXPECT_THAT(result["messages"][0], HasSubstr("ERROR in CreateFile"));
  EXPECT_THAT(result["problem"], HasSubstr("not every voice template"));
}

TEST_F(MaintenanceCommands, TheAdviceAboutAFolderThatIsGonePutsItRight) {
  PutThreeTags();
  support::RemoveTree(Folder("Voxtrel_stor"));
  const auto run = Run({"reinit", "--force"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("or the folder Voxtrel_stor is missing. Make room"));
  EXPECT_THAT(run.err, HasSubstr("make it first: voxtrel check --repair"));
  EXPECT_EQ(Run({"check", "--repair"}).exitCode, 0);
  EXPECT_EQ(Run({"reinit", "--force"}).exitCode, 0);
  EXPECT_EQ(Check({}, 0), std::vector<std::string>());
}

TEST_F(MaintenanceCommands, ReinitNamesTagsWithoutARecording) {
  PutThreeTags();
  fs::remove(Wave("200"));
  fs::copy_file(fs::path(VOXTREL_SAMPLES_DIR) / "sophie_1.wav", Wave("900"));
  const auto run = Run({"reinit", "--force"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("have no recording, and so no new template: "
                                 "200 (Bob Ray 5550001 H)\n"));
  const json result = RunJson({"reinit", "--force"}, 1);
  EXPECT_EQ(result["ran"], true);
  EXPECT_EQ(result["tags"], 3);
  EXPECT_EQ(result["recordings"], 3) << "One of no tag.";
  EXPECT_EQ(result["withoutRecording"],
            json::array({{{"tag", "200"}, {"listText", "Bob Ray 5550001 H"}}}));
}

TEST_F(MaintenanceCommands, AStaleTemplateIsReportedWithWhatComputesItAgain) {
  PutThreeTags();
  CopyOver(Template("300"), Template("100"));
  ASSERT_EQ(Check({}, 1), std::vector<std::string>{"template-stale 100"});
  EXPECT_THAT(Run({"check"}).out, HasSubstr("`voxtrel reinit --force`"));
  ASSERT_EQ(Run({"reinit", "--force"}).exitCode, 0);
  EXPECT_EQ(Check({}, 0), std::vector<std::string>());
}

TEST_F(MaintenanceCommands, ReinitWithContactsAwayLeavesTheVersionAlone) {
  PutThreeTags();
  PutVersion(u"2");
  fs::remove(Path("all.vcf"));
  const json result = RunJson({"reinit", "--force"}, 1);
  EXPECT_EQ(result["ran"], false);
  EXPECT_THAT(result["problem"], HasSubstr("address book is missing"));
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_EQ(support::BytesOf(registry, storage::kSetupKey, u"Version_Math"),
            support::Utf16Bytes(std::u16string(u"2") + u'\0'));
}

}  // namespace

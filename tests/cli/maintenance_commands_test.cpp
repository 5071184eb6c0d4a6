#include <filesystem>
#include <fstream>
#include <map>

#include "storage/registry_keys.h"
#include "tests/cli/tags_fixture.h"
#include "tests/support/registry_access.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

/// Tags as the applet leaves them, of which some are spoiled.
class MaintenanceCommands : public TagsFixture {
 protected:
  /// Every recording and every template.
  [[nodiscard]] std::map<std::string, std::string> GetFiles() const {
    std::map<std::string, std::string> files;
    for (const std::string folder : {"Voxtrel_wav", "Voxtrel_stor"}) {
      for (const auto& entry : fs::directory_iterator(Folder(folder))) {
        files[entry.path().filename().string()] = Content(entry.path());
      }
    }
    return files;
  }
  /// Every file as a reinitialization leaves it: trimmed once more, and the template of all of it.
  [[nodiscard]] std::map<std::string, std::string> GetExpected() const {
    std::map<std::string, std::string> files;
    for (const std::string tag : {"100", "200", "300"}) {
      const std::string wave = Path("expected.wav");
      fs::copy_file(Wave(tag), wave, fs::copy_options::overwrite_existing);
      EXPECT_EQ(Run({"template", "learn", wave, Path("first.st")}).exitCode, 0);
      fs::remove(Path("second.st"));
      EXPECT_EQ(Run({"template", "process", wave, Path("second.st")}).exitCode, 0);
      files[tag + ".wav"] = Content(wave);
      files[tag + ".st"] = Content(Path("second.st"));
    }
    return files;
  }
  /// The findings as "word tag", with "!" where repaired.
  [[nodiscard]] std::vector<std::string> Check(std::vector<std::string> options,
                                               int exitCode) const {
    options.insert(options.begin(), "check");
    std::vector<std::string> findings;
    const json result = RunJson(options, exitCode);
    for (const json& finding : result["findings"]) {
      findings.push_back(finding["problem"].get<std::string>() + " " +
                         finding["tag"].get<std::string>() +
                         (finding["repaired"].get<bool>() ? "!" : ""));
    }
    return findings;
  }
};

using Lines = std::vector<std::string>;

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
  EXPECT_THAT(run.err, HasSubstr("\"voxtrel check --repair\""));
}

TEST_F(MaintenanceCommands, TheAdviceAboutUnreadableTemplatesPutsThemRight) {
  PutThreeTags();
  const auto good = GetFiles();
  fs::remove(Template("200"));
  ASSERT_THAT(Run({"tags", "test"}).err, HasSubstr("run \"voxtrel check --repair\""));
  const auto repair = Run({"check", "--repair"});
  EXPECT_EQ(repair.exitCode, 0) << repair.err;
  EXPECT_TRUE(GetFiles() == good);
  const auto again = Run({"tags", "test"});
  EXPECT_EQ(again.exitCode, 0) << again.err;
  EXPECT_THAT(again.err, IsEmpty());
  EXPECT_EQ(std::ranges::count(again.out, '\n'), 3);
}

TEST_F(MaintenanceCommands, ReinitDoesNothingWhereTheVersionIsCurrent) {
  PutThreeTags();
  const auto before = GetFiles();
  EXPECT_EQ(RunJson({"reinit"}, 0), (json{{"ran", false}, {"tags", 3}}));
  EXPECT_TRUE(GetFiles() == before);
}

TEST_F(MaintenanceCommands, ReinitComputesEveryTemplateAfterAChangeOfTheVersion) {
  PutThreeTags();
  const auto expected = GetExpected();
  std::ofstream(Template("100"), std::ios::binary) << "old";
  fs::remove(Template("300"));
  PutVersion(u"2");
  EXPECT_EQ(RunJson({"reinit"}, 0), (json{{"ran", true}, {"tags", 3}}));
  EXPECT_TRUE(GetFiles() == expected);
  EXPECT_EQ(RunJson({"reinit"}, 0)["ran"], false) << "Once.";
}

TEST_F(MaintenanceCommands, AnyCommandThatOpensTheTagsDoesItFirst) {
  PutThreeTags();
  fs::remove(Template("200"));
  PutVersion(u"");
  EXPECT_EQ(Run({"tags", "list"}).exitCode, 0);
  EXPECT_TRUE(fs::exists(Template("200")));
}

TEST_F(MaintenanceCommands, ForceComputesThemWhateverTheVersionSays) {
  PutThreeTags();
  const auto expected = GetExpected();
  fs::remove(Template("200"));
  const auto run = Run({"reinit", "--force"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("computed anew"));
  EXPECT_TRUE(GetFiles() == expected);
  auto registry = Registry();
  EXPECT_EQ(support::BytesOf(registry, storage::kSetupKey, u"Version_Math").size(), 8U);
}

TEST_F(MaintenanceCommands, ForceIsDoneOnceWhereTheVersionHasChangedAsWell) {
  PutThreeTags();
  PutVersion(u"2");
  EXPECT_EQ(RunJson({"reinit", "--force"}, 0)["ran"], true);
  auto registry = Registry();
  EXPECT_EQ(support::BytesOf(registry, storage::kSetupKey, u"Version_Math").size(), 32U);
}

TEST_F(MaintenanceCommands, ReinitWithoutTagsSaysSo) {
  EXPECT_EQ(RunJson({"reinit", "--force"}, 0), (json{{"ran", false}, {"tags", 0}}));
  EXPECT_THAT(Run({"reinit"}).out, HasSubstr("no voice tags"));
}

TEST_F(MaintenanceCommands, ReinitWithoutAnyRecordingEndsWithItsMessage) {
  PutEntry("100", m_ann, u"Mobile");
  PutVersion(u"2");
  const auto run = Run({"reinit"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "Zedra Voxtrel: Error\n");
}

TEST_F(MaintenanceCommands, ATemplateThatCannotBeMadeEndsTheWaitAndIsTold) {
  PutThreeTags();
  fs::remove(Template("200"));
  fs::create_directory(Template("200"));  // A folder in its place.
  PutVersion(u"2");
  const auto run = Run({"reinit"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("ERROR in CreateFile"));
  EXPECT_THAT(run.err, HasSubstr("Bob Ray 5550001 H"));
  EXPECT_THAT(run.err, HasSubstr("voxtrel check"));
}

TEST_F(MaintenanceCommands, ReinitWithContactsAwayLeavesTheVersionAlone) {
  PutThreeTags();
  PutVersion(u"2");
  fs::remove(Path("all.vcf"));
  const auto run = Run({"reinit", "--force"});
  EXPECT_EQ(run.exitCode, 1);
  auto registry = Registry();
  EXPECT_EQ(support::BytesOf(registry, storage::kSetupKey, u"Version_Math"),
            support::Utf16Bytes(std::u16string(u"2") + u'\0'));
}

TEST_F(MaintenanceCommands, CheckFindsNothingInGoodTags) {
  EXPECT_EQ(Check({}, 0), Lines());
  PutThreeTags();
  EXPECT_EQ(Check({}, 0), Lines());
  EXPECT_THAT(Run({"check"}).out, HasSubstr("as they should be"));
}

TEST_F(MaintenanceCommands, CheckOfAStoreThatDoesNotExistMakesNone) {
  const auto run = support::RunProgram({VOXTREL_PROGRAM, "--root", Path("none"), "check"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_FALSE(fs::exists(Path("none")));
}

TEST_F(MaintenanceCommands, CheckTellsEachThingInPlainWordsAndChangesNothing) {
  PutThreeTags();
  fs::remove(Wave("100"));
  fs::resize_file(Template("200"), 20);
  PutEntry("300", m_bob, u"Radio2");
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard;
  fs::copy_file(fs::path(VOXTREL_SAMPLES_DIR) / "sophie_1.wav", Wave("900"));
  const auto before = GetFiles();
  EXPECT_EQ(Check({}, 1),
            (Lines{"no-recording 100", "contact-gone 200", "template-torn 200", "contact-gone 300",
                   "phone-type 300", "recording-without-tag 900"}));
  EXPECT_TRUE(GetFiles() == before);
  const auto run = Run({"check"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("100: there is no recording [no-recording]\n"));
  EXPECT_THAT(run.err, HasSubstr("6 things are not as they should be"));
}

TEST_F(MaintenanceCommands, RepairMakesMissingAndTornTemplatesAndNothingElse) {
  PutThreeTags();
  const auto good = GetFiles();
  fs::remove(Template("100"));
  fs::resize_file(Template("200"), 20);
  EXPECT_EQ(Check({"--repair"}, 0), (Lines{"no-template 100!", "template-torn 200!"}));
  EXPECT_TRUE(GetFiles() == good);
  fs::copy_file(fs::path(VOXTREL_SAMPLES_DIR) / "sophie_1.wav", Wave("900"));
  fs::remove(Template("100"));
  fs::remove(Wave("300"));
  EXPECT_EQ(Check({"--repair"}, 1),
            (Lines{"no-template 100!", "no-recording 300", "recording-without-tag 900"}));
  EXPECT_FALSE(fs::exists(Template("900")));
  EXPECT_TRUE(fs::exists(Template("300")));
}

TEST_F(MaintenanceCommands, ContactsThatAreAwayMakeNobodyGone) {
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  EXPECT_EQ(Check({}, 1), Lines());
  const auto run = Run({"check"});
  EXPECT_THAT(run.err, HasSubstr("contacts cannot be read"));
}

}  // namespace

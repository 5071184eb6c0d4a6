#include <filesystem>
#include <fstream>

#include "host/machine/system.h"
#include "storage/device_paths.h"
#include "tests/host/cli/maintenance_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kEvesCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:e\r\nN:Fox;Eve;;;\r\nTEL;TYPE=CELL:5559\r\nEND:VCARD\r\n";

using Lines = std::vector<std::string>;

class CheckCommand : public MaintenanceFixture {};

TEST_F(CheckCommand, FindsNothingInGoodTags) {
  EXPECT_EQ(Check({}, 0), Lines());
  PutThreeTags();
  EXPECT_EQ(Check({}, 0), Lines());
  EXPECT_THAT(Run({"check"}).out, HasSubstr("Nothing is wrong"));
}

TEST_F(CheckCommand, OfAStoreThatDoesNotExistMakesNone) {
  const auto run = support::RunProgram({VOXTREL_PROGRAM, "--root", Path("none"), "check"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "There are no voice tags in " + Path("none") + ".\n");
  EXPECT_FALSE(fs::exists(Path("none")));
}

TEST_F(CheckCommand, SaysEachThingInPlainWordsAndChangesNothing) {
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
  EXPECT_THAT(run.out,
              HasSubstr("100 (Ann Lee 5551234 M): there is no recording [no-recording]\n"));
  EXPECT_THAT(run.out, HasSubstr("\n200: the contact does not exist any more"));
  EXPECT_THAT(run.err, HasSubstr("there are 6 problems"));
}

TEST_F(CheckCommand, ReportsRecordingsThatAreEmptyOrSilentOrNone) {
  PutThreeTags();
  const std::string header = Content(Wave("100")).substr(0, 44);
  std::string empty = header;
  empty.replace(4, 4, std::string("\x2c\0\0\0", 4)).replace(40, 4, std::string(4, '\0'));
  std::ofstream(Wave("100"), std::ios::binary) << empty;
  const std::string spoken = Content(Wave("200"));
  std::ofstream(Wave("200"), std::ios::binary)
      << spoken.substr(0, 44) << std::string(spoken.size() - 44, '\0');
  std::ofstream(Wave("300"), std::ios::binary) << "";
  EXPECT_EQ(Check({}, 1), (Lines{"recording-empty 100", "recording-silent 200",
                                 "template-stale 200", "recording-unreadable 300"}));
}

TEST_F(CheckCommand, NamesTheFolderThatCannotBeRead) {
  fs::remove(Folder("Voxtrel_wav"));
  fs::create_directory_symlink("Voxtrel_wav", Folder("Voxtrel_wav"));  // Leads to itself.
  const auto run = Run({"check"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "not all files of the folder can be found: " +
                         support::Shown(Folder("Voxtrel_wav")) + " [folder-unreadable]\n");
  const nlohmann::json findings = RunJson({"check"}, 1)["findings"];
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0]["folder"], support::Shown(Folder("Voxtrel_wav")));
}

TEST_F(CheckCommand, RepairMakesMissingAndTornTemplatesAndNothingElse) {
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
            (Lines{"no-template 100!", "no-recording 300", "recording-without-tag 900!"}));
  EXPECT_FALSE(fs::exists(Template("900")));
  EXPECT_TRUE(fs::exists(Template("300")));
}

TEST_F(CheckCommand, RepairMovesWhatBelongsToNoTagToTheTrash) {
  PutThreeTags();
  fs::copy_file(fs::path(VOXTREL_SAMPLES_DIR) / "sophie_1.wav", Wave("900"));
  std::ofstream(Template("901")) << "t";
  std::ofstream(Folder("Voxtrel_wav") / ".voxtrel-trimmed-0123456789abcdef") << "half";
  const Lines found{"recording-without-tag 900", "template-without-tag 901",
                    "unfinished-file .voxtrel-trimmed-0123456789abcdef"};
  EXPECT_EQ(Check({}, 1), found);
  EXPECT_EQ(Check({"--repair"}, 0), (Lines{found[0] + "!", found[1] + "!", found[2] + "!"}));
  EXPECT_EQ(Check({}, 0), Lines{});
  const auto restored = Run({"tags", "restore", "--last"});
  EXPECT_EQ(restored.exitCode, 0) << restored.err;
  EXPECT_TRUE(fs::exists(Wave("900")) && fs::exists(Template("901")));
  EXPECT_EQ(Check({}, 1), found);
}

TEST_F(CheckCommand, RepairMovesATagWhoseContactHasGoneToTheTrash) {
  PutThreeTags();
  const auto before = GetFiles();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard;
  fs::remove(Template("200"));
  EXPECT_EQ(Check({"--repair"}, 0),
            (Lines{"contact-gone 200!", "no-template 200!", "contact-gone 300!"}));
  EXPECT_EQ(Check({}, 0), Lines{});
  for (const std::string tag : {"200", "300"}) {
    EXPECT_FALSE(HasEntry(tag) || fs::exists(Wave(tag)) || fs::exists(Template(tag))) << tag;
  }
  EXPECT_TRUE(HasEntry("100") && HasFiles("100"));
  const auto trash = nlohmann::json::parse(Run({"tags", "trash", "--json"}).out);
  ASSERT_EQ(trash.size(), 2U);
  EXPECT_EQ(trash[0]["by"], "clean-up");
  EXPECT_EQ(Run({"tags", "restore", "--last"}).exitCode, 0);
  EXPECT_EQ(Content(Wave("200")), before.at("200.wav"));
  const auto run = Run({"check", "--repair"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("300: the contact does not exist any more; the tag is in the "
                                 "trash now [contact-gone] repaired\n"));
}

TEST_F(CheckCommand, RepairLeavesATagWhoseContactHasGoneIfItsRecordingIsInUse) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard;
  const auto held = machine::MakeFiles(Path("root"))->Open(storage::WavePath(u"200"), {});
  EXPECT_EQ(Check({"--repair"}, 1),
            (Lines{"contact-gone 200", "recording-unreadable 200", "contact-gone 300!"}));
  EXPECT_TRUE(HasEntry("200") && HasFiles("200"));
  EXPECT_THAT(Run({"check", "--repair"}).out, HasSubstr("not repaired: the recording is in use"));
}

TEST_F(CheckCommand, RepairLeavesTagsAloneIfTheContactsCannotBeRead) {
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  EXPECT_EQ(Check({"--repair"}, 1), Lines{"contacts-away "});
  EXPECT_TRUE(HasEntry("200") && HasFiles("200"));
}

TEST_F(CheckCommand, RepairLeavesAFileThatIsInUse) {
  PutThreeTags();
  fs::copy_file(fs::path(VOXTREL_SAMPLES_DIR) / "sophie_1.wav", Wave("900"));
  const auto held = machine::MakeFiles(Path("root"))->Open(storage::WavePath(u"900"), {});
  EXPECT_EQ(Check({"--repair"}, 1), Lines{"recording-without-tag 900"});
  EXPECT_TRUE(fs::exists(Wave("900")));
}

TEST_F(CheckCommand, RepairMakesAFolderThatIsGoneWithItsTemplates) {
  PutThreeTags();
  const auto good = GetFiles();
  support::RemoveTree(Folder("Voxtrel_stor"));
  EXPECT_THAT(Run({"tags", "test"}).err, HasSubstr("run this command. It makes"));
  EXPECT_EQ(Check({}, 1), (Lines{"no-template 100", "no-template 200", "no-template 300"}));
  EXPECT_FALSE(fs::exists(Folder("Voxtrel_stor")));
  EXPECT_EQ(Check({"--repair"}, 0),
            (Lines{"no-template 100!", "no-template 200!", "no-template 300!"}));
  EXPECT_TRUE(GetFiles() == good);
  EXPECT_EQ(Run({"tags", "test"}).exitCode, 0);
}

TEST_F(CheckCommand, ARepairThatFailsGivesTheReason) {
  PutThreeTags();
  support::RemoveTree(Folder("Voxtrel_stor"));
  std::ofstream(Folder("Voxtrel_stor")) << "A file in its place.";
  const json result = RunJson({"check", "--repair"}, 1);
  ASSERT_EQ(result["findings"].size(), 3U);
  EXPECT_EQ(result["findings"][1]["repaired"], false);
  EXPECT_EQ(result["findings"][1]["reason"],
            "the folder Voxtrel_stor is missing and cannot be made");
  EXPECT_THAT(Run({"check", "--repair"}).out,
              HasSubstr("[no-template] not repaired: the folder Voxtrel_stor is missing and cannot "
                        "be made\n"));
  EXPECT_FALSE(RunJson({"check"}, 1)["findings"][1].contains("reason")) << "Nobody tried.";
}

TEST_F(CheckCommand, ContactsThatAreAwayMakeNobodyGoneAndAreReportedWithTheReason) {
  PutThreeTags();
  fs::remove(Path("all.vcf"));
  EXPECT_EQ(Check({}, 1), Lines{"contacts-away "});
  const json result = RunJson({"check"}, 1);
  EXPECT_THAT(result["findings"][0]["text"], HasSubstr("address book is missing"));
  const auto run = Run({"check"});
  EXPECT_THAT(run.out, HasSubstr("contacts cannot be read"));
  EXPECT_THAT(run.out, HasSubstr("address book is missing"));
  EXPECT_THAT(run.out, HasSubstr("[contacts-away]\n"));
  EXPECT_THAT(run.out, Not(HasSubstr("Nothing is wrong")));
}

TEST_F(CheckCommand, GivesTheListTextOfEachTagAsJson) {
  PutThreeTags();
  fs::remove(Template("200"));
  fs::copy_file(fs::path(VOXTREL_SAMPLES_DIR) / "sophie_1.wav", Wave("900"));
  const json result = RunJson({"check"}, 1);
  EXPECT_EQ(result["tags"], 3);
  ASSERT_EQ(result["findings"].size(), 2U);
  EXPECT_EQ(result["findings"][0]["listText"], "Bob Ray 5550001 H");
  EXPECT_EQ(result["findings"][1]["listText"], "") << "No tag.";
}

TEST_F(CheckCommand, LeavesTheSettingsAsTheyAre) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary | std::ios::app) << kEvesCard;
  std::ofstream(Path("other.vcf"), std::ios::binary) << kEvesCard;
  ASSERT_EQ(Run({"registry", "export", Path("before.reg")}).exitCode, 0);
  EXPECT_EQ(Check({}, 0), Lines());
  ASSERT_EQ(Run({"registry", "export", Path("new_card.reg")}).exitCode, 0);
  EXPECT_TRUE(Content(Path("new_card.reg")) == Content(Path("before.reg")));
  fs::copy_file(Path("all.vcf"), Path("copy.vcf"));
  for (const char* contacts : {"copy.vcf", "other.vcf"}) {
    static_cast<void>(Run({"--contacts", Path(contacts), "check"}));
    ASSERT_EQ(Run({"registry", "export", Path("after.reg")}).exitCode, 0);
    EXPECT_TRUE(Content(Path("after.reg")) == Content(Path("before.reg"))) << contacts;
  }
  ASSERT_EQ(Run({"reinit"}).exitCode, 0);
  ASSERT_EQ(Run({"registry", "export", Path("opened.reg")}).exitCode, 0);
  EXPECT_FALSE(Content(Path("opened.reg")) == Content(Path("before.reg")))
      << "Else the new card were none.";
}

TEST_F(CheckCommand, MakesNoFileInTheRoot) {
  PutThreeTags();
  const fs::path lock = fs::path(Path("root")) / ".ZedraD.lock";
  ASSERT_TRUE(fs::remove(lock));
  EXPECT_EQ(Check({}, 0), Lines());
  EXPECT_FALSE(fs::exists(lock));
  EXPECT_EQ(Check({"--repair"}, 0), Lines());
  EXPECT_TRUE(fs::exists(lock)) << "What may change tags keeps others away.";
}

TEST_F(CheckCommand, ReadsRecordingsThatOthersReadAndThatTakeNoWrites) {
  PutThreeTags();
  fs::permissions(Wave("100"), fs::perms::owner_read);
  const auto reader = machine::MakeFiles(Path("root"))
                          ->Open(storage::WavePath(u"200"),
                                 {platform::FileAccess::kRead, platform::FileShare::kRead, {}});
  ASSERT_TRUE(reader);
  EXPECT_EQ(Check({}, 0), Lines());
  fs::remove(Template("100"));
  EXPECT_EQ(Check({"--repair"}, 0), Lines{"no-template 100!"});
}

TEST_F(CheckCommand, LooksAtTagsThatAWindowHasInUseAndRepairsNone) {
  PutThreeTags();
  fs::remove(Template("100"));
  const auto threads = machine::MakeThreads(Path("root"));
  const auto page = threads->CreateNamedMutex(u"ZedraD");
  ASSERT_TRUE(page);
  EXPECT_EQ(Check({}, 1), Lines{"no-template 100"});
  const auto run = Run({"check", "--repair"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("in use by another Voxtrel"));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_FALSE(fs::exists(Template("100")));
}

TEST_F(CheckCommand, ARootThatIsNoFolderIsReported) {
  std::ofstream(Path("file")) << "x";
  for (const std::string& root : {Path("file"), Path("file/below/it")}) {
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"check"}, {"check", "--repair"}, {"tags", "list"}, {"connection", "show"}}) {
      std::vector<std::string> all{VOXTREL_PROGRAM, "--root", root};
      all.insert(all.end(), command.begin(), command.end());
      const auto run = support::RunProgram(all);
      EXPECT_EQ(run.exitCode, 1) << command.front();
      EXPECT_THAT(run.out, IsEmpty());
      EXPECT_THAT(run.err, HasSubstr(Path("file") + " is no folder"));
    }
  }
}

TEST_F(CheckCommand, SettingsThatCannotBeReadAreReportedWithTheReason) {
  PutThreeTags();
  const fs::path store = NameOfStore(Path("root"));
  fs::resize_file(store, 0);
  std::ofstream(store, std::ios::binary) << std::string(5000, 'x');
  EXPECT_EQ(Check({}, 1), Lines{"registry-unreadable "});
  EXPECT_THAT(Run({"check"}).out, HasSubstr("damaged"));
  EXPECT_EQ(fs::file_size(store), 5000U);
}

}  // namespace

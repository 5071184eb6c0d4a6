#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/host/cli/tags_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class TrashCommands : public TagsFixture {
 protected:
  [[nodiscard]] json Trash() const {
    const auto run = Run({"tags", "trash", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return json::parse(run.out, nullptr, false);
  }
  [[nodiscard]] std::vector<std::string> TrashedNames() const {
    std::vector<std::string> names;
    for (const json& tag : Trash()) {
      names.push_back(tag["name"]);
    }
    return names;
  }
  void Delete(const std::string& tag) const {
    ASSERT_EQ(Run({"--yes", "tags", "delete", tag}).exitCode, 0);
  }
  /// The registry's bytes of both values of a tag.
  [[nodiscard]] std::vector<std::vector<std::byte>> EntryOf(const std::string& tag) const {
    const auto store = Registry();
    platform::Registry& registry = *store;
    const std::u16string key = std::u16string(storage::kTagKey) + u"\\" + Wide(tag);
    return {support::BytesOf(registry, key, u"contact"),
            support::BytesOf(registry, key, u"phone type")};
  }
  [[nodiscard]] fs::path TrashFolder() const { return fs::path(Path("root")) / "Voxtrel Trash"; }
};

TEST_F(TrashCommands, AnEmptyTrashIsAnEmptyListAndMakesNoFolder) {
  EXPECT_EQ(Trash(), json::array());
  EXPECT_EQ(Run({"tags", "trash"}).out, "The trash is empty.\n");
  EXPECT_FALSE(fs::exists(TrashFolder()));
}

TEST_F(TrashCommands, AMistypedRootIsNotMade) {
  const auto run =
      support::RunProgram({VOXTREL_PROGRAM, "--root", Path("nowhere"), "tags", "trash"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_FALSE(fs::exists(Path("nowhere")));
}

TEST_F(TrashCommands, EachKindOfDeletionIsListedUnderItsName) {
  PutThreeTags();
  Delete("100");
  std::ofstream(Wave("of nobody")) << "x";
  ASSERT_EQ(Run({"--yes", "tags", "delete-all"}).exitCode, 0);
  const json trash = Trash();
  ASSERT_EQ(trash.size(), 4U);
  EXPECT_EQ(trash[0]["name"], "200");
  EXPECT_EQ(trash[0]["text"], "Bob Ray 5550001 H");
  EXPECT_EQ(trash[0]["by"], "delete-all");
  EXPECT_TRUE(std::regex_match(
      trash[0]["deleted"].get<std::string>(),
      std::regex("20[0-9][0-9]-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]Z")));
  EXPECT_EQ(trash[2]["name"], "of nobody");
  EXPECT_EQ(trash[2]["text"], "");
  EXPECT_EQ(trash[3]["by"], "delete");
  EXPECT_THAT(Run({"tags", "trash"}).out, HasSubstr("delete      Ann Lee 5551234 M\n"));
}

TEST_F(TrashCommands, ATagWhoseContactHasGoneIsCleanedUpIntoTheTrash) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard;
  const std::string wave = Content(Wave("200"));
  EXPECT_THAT(Trash(), IsEmpty());
  ASSERT_EQ(Run({"--yes", "tags", "delete", "100"}).exitCode, 0);
  EXPECT_THAT(TrashedNames(), UnorderedElementsAre("100", "200", "300"));
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard << kBobsCard;
  EXPECT_EQ(Run({"tags", "restore", "200"}).exitCode, 0);
  EXPECT_EQ(Content(Wave("200")), wave);
  EXPECT_THAT(GetNames(), ElementsAre("200"));
}

TEST_F(TrashCommands, ATagThatTheCleanUpTookIsDeleted) {
  PutThreeTags();
  std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard;
  const auto run = Run({"--yes", "tags", "delete", "200"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_FALSE(HasEntry("200"));
  EXPECT_THAT(TrashedNames(), UnorderedElementsAre("200", "300"));
  EXPECT_EQ(Run({"--yes", "tags", "delete", "200"}).exitCode, 1);
}

TEST_F(TrashCommands, ARestoredTagIsWhatItWasByteForByte) {
  PutThreeTags();
  const std::string wave = Content(Wave("200"));
  const std::string voiceTemplate = Content(Template("200"));
  const auto entry = EntryOf("200");
  Delete("200");
  EXPECT_FALSE(HasEntry("200") || HasFiles("200"));
  EXPECT_EQ(RunJson({"tags", "restore", "200"}, 0), (json{{"restored", {"200"}}}));
  EXPECT_EQ(Content(Wave("200")), wave);
  EXPECT_EQ(Content(Template("200")), voiceTemplate);
  EXPECT_EQ(EntryOf("200"), entry);
  EXPECT_THAT(Trash(), IsEmpty());
  EXPECT_EQ(Run({"check"}).exitCode, 0);
}

TEST_F(TrashCommands, TheLatestDeletionIsRestoredAsAWhole) {
  PutThreeTags();
  Delete("100");
  ASSERT_EQ(Run({"--yes", "tags", "delete-all"}).exitCode, 0);
  EXPECT_EQ(RunJson({"tags", "restore", "--last"}, 0), (json{{"restored", {"200", "300"}}}));
  EXPECT_THAT(TrashedNames(), ElementsAre("100"));
  EXPECT_EQ(RunJson({"tags", "restore", "--last"}, 0), (json{{"restored", {"100"}}}));
  const auto nothing = Run({"tags", "restore", "--last"});
  EXPECT_EQ(nothing.exitCode, 1);
  EXPECT_EQ(nothing.err, "voxtrel: the trash is empty\n");
}

TEST_F(TrashCommands, NothingIsRestoredOverATagThatIsThere) {
  PutThreeTags();
  Delete("200");
  PutTag("200", "sophie_1.wav", m_ann, u"Mobile");
  const std::string wave = Content(Wave("200"));
  const auto run = Run({"tags", "restore", "200"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "voxtrel: 200 was not restored: there is a tag or a file of that name\n");
  EXPECT_EQ(Content(Wave("200")), wave);
  EXPECT_THAT(TrashedNames(), ElementsAre("200"));
}

TEST_F(TrashCommands, WhatCanBeRestoredIsAndTheRestIsNamed) {
  PutThreeTags();
  Delete("200");
  Delete("300");
  EXPECT_EQ(RunJson({"tags", "restore", "300", "4711", "200"}, 1),
            (json{{"restored", {"300", "200"}}}));
  EXPECT_THAT(Run({"tags", "restore", "4711"}).err, HasSubstr("there is no tag 4711 in the trash"));
  EXPECT_EQ(Run({"tags", "restore"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "restore", "300", "--last"}).exitCode, 2);
}

TEST_F(TrashCommands, AnEmptiedTrashIsGoneForGood) {
  PutThreeTags();
  Delete("200");
  EXPECT_EQ(RunJson({"tags", "trash", "--empty"}, 0), (json{{"result", 0}}));
  EXPECT_THAT(Trash(), IsEmpty());
  EXPECT_TRUE(fs::is_empty(TrashFolder()));
  EXPECT_EQ(Run({"tags", "restore", "200"}).exitCode, 1);
}

TEST_F(TrashCommands, TheTrashBelongsToItsUserAlone) {
  PutThreeTags();
  Delete("200");
  EXPECT_EQ(fs::status(TrashFolder()).permissions(), fs::perms::owner_all);
  for (const fs::directory_entry& file : fs::directory_iterator(TrashFolder())) {
    EXPECT_EQ(file.status().permissions(), fs::perms::owner_read | fs::perms::owner_write);
  }
}

TEST_F(TrashCommands, ATrashThatCannotBeReadIsNoEmptyOne) {
  PutThreeTags();
  Delete("200");
  fs::remove_all(TrashFolder());
  fs::create_symlink(TrashFolder(), TrashFolder());
  for (const std::vector<std::string>& command : {std::vector<std::string>{"tags", "trash"},
                                                  {"tags", "restore", "200"},
                                                  {"tags", "trash", "--empty"}}) {
    const auto run = Run(command);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("trash"));
  }
}

TEST_F(TrashCommands, WhatIsTooOldIsEmptiedByCommandsThatNeedNoPageToo) {
  PutThreeTags();
  std::ofstream(Path("nothing.reg")) << "REGEDIT4\n";
  for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
           {"connection", "set", "port=COM7"}, {"registry", "import", Path("nothing.reg")}}) {
    Delete("100");
    const fs::path item = *fs::directory_iterator(TrashFolder());
    std::string tar = Content(item);
    const std::size_t at = tar.find("deleted ");
    ASSERT_NE(at, std::string::npos) << "The time of the deletion, in seconds.";
    std::ofstream(item, std::ios::binary) << tar.replace(at + 8, 4, "1000");
    EXPECT_EQ(Trash().size(), 1U);
    ASSERT_EQ(Run(command).exitCode, 0);
    EXPECT_THAT(Trash(), IsEmpty());
    PutTag("100", "anna_1.wav", m_ann, u"Mobile");
  }
}

}  // namespace

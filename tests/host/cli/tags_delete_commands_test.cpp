#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include "host/machine/system.h"
#include "storage/device_paths.h"
#include "tests/host/cli/tags_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kInUse = "Zedra Voxtrel: The tag is in use. Try to delete it later.\n";

class TagsDeleteCommands : public TagsFixture {
 protected:
  /// Has the recording open as the dialer has it while it is in use.
  [[nodiscard]] std::unique_ptr<platform::File> HoldWave(const std::string& tag) const {
    // As a companion reads it.
    auto opened = machine::MakeFiles(Path("root"))
                      ->Open(storage::WavePath(Wide(tag)),
                             {platform::FileAccess::kRead, platform::FileShare::kRead,
                              platform::FileCreation::kOpenExisting});
    EXPECT_TRUE(opened);
    return std::move(*opened);
  }
};

TEST_F(TagsDeleteCommands, DeleteRemovesTheTagAndNoOther) {
  PutThreeTags();
  EXPECT_EQ(RunJson({"--yes", "tags", "delete", "200"}, 0), (json{{"result", 0}}));
  EXPECT_FALSE(fs::exists(Wave("200")));
  EXPECT_FALSE(fs::exists(Template("200")));
  EXPECT_FALSE(HasEntry("200"));
  EXPECT_THAT(GetNames(), ElementsAre("100", "300"));
  EXPECT_TRUE(HasFiles("100"));
  EXPECT_TRUE(HasFiles("300"));
}

TEST_F(TagsDeleteCommands, DeletionIsRefusedIfNobodyCanBeAsked) {
  PutThreeTags();
  const auto one = Run({"tags", "delete", "200"});
  EXPECT_EQ(one.exitCode, 1);
  EXPECT_EQ(one.err,
            "Attention: The tag will be deleted! (there is no terminal to ask on; --yes agrees)\n"
            "voxtrel: the tag was not deleted\n");
  EXPECT_EQ(RunJson({"tags", "delete", "200"}, 1), (json{{"result", 1}}));
  const auto all = Run({"tags", "delete-all"});
  EXPECT_EQ(all.exitCode, 1);
  EXPECT_THAT(all.err, HasSubstr("Attention: All voice tags will be deleted! (there is no"));
  EXPECT_EQ(RunJson({"tags", "delete-all"}, 1), (json{{"result", 1}}));
  EXPECT_THAT(GetNames(), ElementsAre("100", "200", "300"));
  EXPECT_TRUE(HasFiles("200"));
}

TEST_F(TagsDeleteCommands, ATagThatTheDialerHasOpenStays) {
  PutThreeTags();
  const auto held = HoldWave("200");
  const auto run = Run({"--yes", "tags", "delete", "200"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, std::string(kInUse) + "voxtrel: the tag was not deleted\n");
  EXPECT_EQ(RunJson({"--yes", "tags", "delete", "200"}, 1), (json{{"result", 1}}));
  EXPECT_TRUE(HasEntry("200"));
  EXPECT_TRUE(HasFiles("200"));
  EXPECT_THAT(GetNames(), ElementsAre("100", "200", "300"));
}

TEST_F(TagsDeleteCommands, DeleteAllEmptiesListAndFolders) {
  PutThreeTags();
  std::ofstream(Wave("of nobody")) << "x";
  EXPECT_EQ(RunJson({"--yes", "tags", "delete-all"}, 0), (json{{"result", 0}}));
  EXPECT_THAT(support::NamesIn(Folder("Voxtrel_wav")), testing::IsEmpty());
  EXPECT_THAT(support::NamesIn(Folder("Voxtrel_stor")), testing::IsEmpty());
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_FALSE(support::KeyExists(registry, storage::kTagKey));
  EXPECT_THAT(GetNames(), testing::IsEmpty());
}

TEST_F(TagsDeleteCommands, DeleteAllWithoutTagsAsksNothing) {
  EXPECT_EQ(RunJson({"tags", "delete-all"}, 0), (json{{"result", 0}}));
}

TEST_F(TagsDeleteCommands, DeleteAllThatLeavesAFileSaysSo) {
  PutThreeTags();
  const auto held = HoldWave("200");
  const auto run = Run({"--yes", "tags", "delete-all"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, std::string(kInUse) + "voxtrel: some files of deleted tags are left\n");
  EXPECT_FALSE(fs::exists(Wave("100")));
  EXPECT_TRUE(fs::exists(Wave("200")));
  EXPECT_THAT(GetNames(), testing::IsEmpty());
}

}  // namespace

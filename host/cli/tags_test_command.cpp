#include "host/cli/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/cli/waiting.h"
#include "host/session/page_run.h"
#include "host/session/tag_reading.h"
#include "maintenance/maintenance_dialog.h"
#include "maintenance/test_dialog.h"
#include "resources/dialogs.h"

// The Test dialog on a terminal.
namespace cli {
namespace {

Json PairToJson(const maintenance::TestLine& line) {
  return {{"tag", text::ToUtf8(line.tagName)},
          {"neighbour", text::ToUtf8(line.neighbourName)},
          {"score", line.score},
          {"distance", line.distance},
          {"confusions", line.confusions}};
}

void PrintTest(Session& session, const std::vector<std::u16string>& items,
               const maintenance::TestDialog& dialog, std::int32_t beyond) {
  if (!session.GetOptions().json) {
    for (const std::u16string& item : items) {
      PrintLine(text::ToUtf8(item));
    }
    if (items.empty() && dialog.IsComplete()) {
      PrintLine("There is nothing to compare: that takes two voice tags.");
    }
    return;
  }
  Json lines = Json::array();
  for (const std::u16string& item : items) {
    lines.push_back(text::ToUtf8(item));
  }
  Json pairs = Json::array();
  for (const maintenance::TestLine& line : dialog.GetLines()) {
    pairs.push_back(PairToJson(line));
  }
  Json json{{"lines", lines}, {"pairs", pairs}};
  if (beyond > 0) {
    json["beyond"] = beyond;
  }
  session.SetJson(json);
}

/// The tags of the store as the Test dialog takes them from the page.
class ReadSession final : public maintenance::TagSession {
 public:
  ReadSession(const storage::TagTable& tags, const platform::Platform& platform)
      : m_tags(tags), m_mathematics(platform.files, platform.ui) {}

  [[nodiscard]] const storage::TagTable& GetTags() const override { return m_tags; }
  [[nodiscard]] voicemath::CVoiceMathematics& GetMathematics() override { return m_mathematics; }
  [[nodiscard]] platform::Event* GetWorkerEvent() override { return nullptr; }
  [[nodiscard]] platform::Thread* GetReinitWorker() override { return nullptr; }

 private:
  const storage::TagTable& m_tags;
  voicemath::CVoiceMathematics m_mathematics;
};

// The dialog of the window does the work, over a session that only reads, and a story takes the
// lines out of its list box. So the terminal shows what the window shows, line by line. The numbers
// of --json are the dialog's own.
void Test(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const auto tags = session::ReadTags(session);
  if (!tags) {
    session.Fail(tags.error());
    return;
  }
  const storage::TagTable table = tags::ToTable(*tags);
  const platform::Platform platform = session.GetPlatform();
  ReadSession read(table, platform);
  maintenance::TestDialog dialog(platform, session::LoadTexts(session));
  dialog.set_Pageone_point(&read);
  std::vector<std::u16string> items;
  session.GetUi().SetDialogStory(resources::kTestResultsDialog.id,
                                 [&items](headless::HeadlessDialog& window) {
                                   items = window.GetItems(resources::kTestListId);
                                 });
  // It opens only if the search takes more than a second.
  session.GetUi().SetDialogStory(resources::kComparisonDialog.id, WatchComparison);
  dialog.DoModal();
  PrintTest(session, items, dialog, std::max(table.tagCount - storage::kMaxTags, 0));
  if (table.tagCount > storage::kMaxTags) {
    session.Fail(fmt::format("only the first {} of {} voice tags were compared", storage::kMaxTags,
                             table.tagCount));
  }
  if (!dialog.IsComplete()) {
    session.Fail("not all tags were compared; `voxtrel check` says what is wrong with them");
  }
}

}  // namespace

void AddTagsTestCommand(CLI::App& group, Session& session) {
  group
      .add_subcommand("test",
                      "Compare every tag with every other. Each line has: how alike in percent, "
                      "for how many tags this one is the most alike, the tag, the tag most like it")
      ->callback([&session] { Test(session); });
}

}  // namespace cli

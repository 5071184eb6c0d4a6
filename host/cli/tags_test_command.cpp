#include "host/cli/tags_test_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "host/cli/output.h"
#include "host/cli/page_run.h"
#include "platform/text/utf.h"
#include "resources/dialogs.h"

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
  PrintJson(json);
}

void Test(Session& session) {
  RunPage(session, [&](PageRun& run) {
    std::vector<std::u16string> items;
    session.GetUi().SetDialogStory(resources::kTestResultsDialog.id,
                                   [&items](headless::HeadlessDialog& window) {
                                     items = window.GetItems(resources::kTestListId);
                                   });
    run.dialog.Press(resources::kTestButtonId);
    constexpr std::int32_t kMost = storage::TagTable::kCapacity;
    const std::int32_t tags = run.page.GetTags().tagCount;
    PrintTest(session, items, run.page.GetTestDialog(), std::max(tags - kMost, 0));
    if (tags > kMost) {
      session.Fail(fmt::format("only the first {} of {} voice tags were compared", kMost, tags));
    }
    if (!run.page.GetTestDialog().IsComplete()) {
      session.Fail("not all tags were compared; `voxtrel check` tells what is wrong with them");
    }
  });
}

}  // namespace

void AddTagsTestCommand(CLI::App& group, Session& session) {
  group
      .add_subcommand("test",
                      "Compare every tag with every other: likeness in percent, how many tags are "
                      "taken for it, the tag, the one it is most easily taken for")
      ->callback([&session] { Test(session); });
}

}  // namespace cli

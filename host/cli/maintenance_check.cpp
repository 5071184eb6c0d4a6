#include "host/cli/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "backends/text/host_path.h"
#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/cli/tag_output.h"
#include "host/session/quality_words.h"
#include "host/session/store_checking.h"

// Prints what the check of the store has found. Each line has a word in brackets, which scripts can
// rely on.
namespace cli {
namespace {

using session::CheckedFinding;
using session::CheckedStore;
using session::TagAdvice;

void PrintFindingsAsJson(Session& session, const CheckedStore& checkedStore) {
  Json list = Json::array();
  for (const CheckedFinding& checked : checkedStore.findings) {
    list.push_back({{"problem", ToWord(checked.finding.problem)},
                    {"tag", text::ToUtf8(checked.finding.tag)},
                    {"listText", checked.listText},
                    {"text", checked.description},
                    {"repaired", checked.isRepaired}});
    if (!checked.finding.folder.empty()) {
      list.back()["folder"] = session.ToHostPath(checked.finding.folder);
    }
    if (!checked.reason.empty()) {
      list.back()["reason"] = checked.reason;
    }
  }
  const auto judged = session::ToJudged(checkedStore.tags);
  Json advice = Json::array();
  for (const TagAdvice& each : checkedStore.advice) {
    const tags::ListedTag& tag = checkedStore.tags[each.tag];
    advice.push_back({{"tag", text::ToUtf8(tag.name)},
                      {"listText", text::ToUtf8(tag.text)},
                      {"quality", QualityToJson(each.quality, judged)},
                      {"text", each.sentences}});
  }
  session.SetJson({{"tags", checkedStore.tagCount}, {"findings", list}, {"advice", advice}});
}

void PrintAdvice(const CheckedStore& checkedStore) {
  for (const TagAdvice& each : checkedStore.advice) {
    const std::string name = text::ToUtf8(checkedStore.tags[each.tag].name);
    const std::string text = text::ToUtf8(checkedStore.tags[each.tag].text);
    for (const std::string& sentence : each.sentences) {
      PrintLine(fmt::format("Advice: {}{}: {}", name,
                            text == name ? "" : fmt::format(" ({})", text), sentence));
    }
  }
}

void PrintFindings(Session& session, const CheckedStore& checkedStore) {
  const auto& [tagCount, findings, tags, advice] = checkedStore;
  if (session.GetOptions().json) {
    PrintFindingsAsJson(session, checkedStore);
    return;
  }
  for (const CheckedFinding& checked : findings) {
    std::string tag = text::ToUtf8(checked.finding.tag);
    if (!checked.listText.empty()) {
      tag += " (" + checked.listText + ")";
    }
    PrintLine(fmt::format("{}{}{} [{}]{}{}{}", tag, tag.empty() ? "" : ": ", checked.description,
                          ToWord(checked.finding.problem), checked.isRepaired ? " repaired" : "",
                          checked.reason.empty() ? "" : " not repaired: ", checked.reason));
  }
  if (findings.empty()) {
    PrintLine(tagCount > 0 ? "Nothing is wrong with the voice tags."
                           : fmt::format("There are no voice tags in {}.",
                                         text::FromHostPath(session.GetRoot())));
  }
  PrintAdvice(checkedStore);
}

}  // namespace

void CheckTags(Session& session, bool isRepair) {
  const auto checked =
      session::CheckStore(session, isRepair ? session::Repairing::kYes : session::Repairing::kNo);
  if (!checked) {
    return;
  }
  PrintFindings(session, *checked);
  // What is left decides the exit code. Advice does not: a soft recording is no fault.
  const auto left = std::ranges::count(checked->findings, false, &CheckedFinding::isRepaired);
  if (left > 0) {
    session.Fail(
        fmt::format("there {}", left == 1 ? "is 1 problem" : fmt::format("are {} problems", left)));
  }
}

}  // namespace cli

#include "host/session/contact_listing.h"

#include <fmt/format.h>

#include <optional>

#include "backends/headless/headless_dialog.h"
#include "backends/text/say.h"
#include "framework/dialog.h"
#include "host/machine/system.h"
#include "resources/dialogs.h"
#include "tags/contact_picker.h"

// Contacts as the page lists them, and in words why there are none.
namespace session {
namespace {

using Problem = vcard::AddressBooks::Problem;

std::string ExplainStoreProblem(Session& session) {
  const std::optional<std::string> key = session.FindUnusableKey();
  const std::string problem = text::Say(resources::kSettingsNotUsed, {session.GetRegistryName()});
  return key ? problem + ": " + *key : problem;
}

}  // namespace

// The numbers come from the page's own boxes, in a window that nobody sees. So they are in the same
// order as on the page.
platform::Result<void, tags::ContactMessage> ListContacts(
    Session& session, const language::Texts& texts,
    const std::function<void(ListedContact contact)>& each) {
  platform::Ui& ui = session.GetPlatform().ui;
  const auto report = [&](const tags::ContactMessage& message) {
    ui.ShowMessage(tags::ToBox(message, texts));
  };
  framework::CDialog page(resources::kLearningDialog, ui);
  // The dialog is the page's, and the handler is an empty one: only the boxes are wanted.
  headless::HeadlessDialog boxes(resources::kLearningDialog, page, nullptr);
  tags::ContactPicker picker(session.GetContacts(), report);
  if (const auto loaded = picker.Load(boxes); !loaded) {
    report(loaded.error());
    return platform::Failure(loaded.error());
  }
  for (std::int32_t i = 0; i < picker.GetContacts().GetCount(); ++i) {
    const tags::ContactRecord& record = *picker.GetContacts().Find(i);
    picker.ListNumbers(boxes, i);
    each({i + 1, record.oid, record.name, boxes.GetItems(resources::kNumberComboId)});
  }
  return {};
}

std::vector<std::string> DescribeContactRemarks(Session& session) {
  std::vector<std::string> described;
  for (const vcard::Remark& remark : session.GetContacts().GetRemarks()) {
    // A file below the root is named by its device path, which no user can open.
    std::string text = remark.place.starts_with(u'\\') ? session.ToHostPath(remark.place)
                                                       : machine::ToHostText(remark.place);
    text += remark.line > 0 ? fmt::format(":{}: ", remark.line) : ": ";
    described.push_back(text + remark.text);
  }
  return described;
}

std::string ExplainContactsReason(Session& session) {
  const std::string& reason = session.GetContacts().GetReason();
  const std::string because = reason.empty() ? std::string() : " (" + reason + ")";
  const std::optional<Problem> problem = session.GetContacts().GetProblem();
  if (!problem) {
    return text::Say(resources::kContactsNotRead);
  }
  switch (*problem) {
    case Problem::kStore:
      return ExplainStoreProblem(session);
    case Problem::kNoServer:
      return text::Say(resources::kDesktopBooksSilent, {because});
    case Problem::kUnreadable:
      return text::Say(resources::kBookNotRead, {because});
    case Problem::kNothingChosen:
      return text::Say(resources::kNoContactsFound, {because, session.GetDefaultContacts()});
    case Problem::kTagsElsewhere:
      break;
  }
  return text::Say(resources::kTagsOfOtherContacts);
}

std::string ExplainContactsProblem(Session& session) {
  const auto advise = [&session](Matter matter) { return session.GetOutlet().Advise(matter); };
  std::string advice;
  const std::optional<Problem> problem = session.GetContacts().GetProblem();
  if (problem == Problem::kNoServer) {
    advice = advise(Matter::kNoDesktopBooks);
  } else if (problem == Problem::kUnreadable) {
    advice = advise(Matter::kUnreadableAddressBook);
  } else if (problem == Problem::kNothingChosen) {
    advice = advise(Matter::kNoContacts);
  }
  return ExplainContactsReason(session) + advice;
}

}  // namespace session

#include "host/session/page_run.h"

#include <algorithm>
#include <string>
#include <vector>

#include "backends/text/say.h"
#include "framework/dialog.h"
#include "host/session/contact_listing.h"
#include "host/session/tag_reading.h"
#include "platform/clock.h"
#include "platform/contacts_store.h"
#include "resources/dialogs.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"
#include "storage/device_paths.h"
#include "storage/tag_store.h"
#include "tags/contact_reading.h"

// The Learning page without a window. Whatever it allows, refuses or says is the same as in the
// sheet, since it is the same page.
namespace session {

using platform::ContactsError;
using platform::Result;

namespace {

/// The user's contacts for a page that can do without them: if they cannot be read the log-on
/// succeeds all the same. Then there are no contacts. Each look-up fails instead of reporting a
/// missing contact, so no tag counts as stale.
class ContactsIfReadable final : public platform::ContactsStore {
 public:
  ContactsIfReadable(platform::ContactsStore& contacts, platform::Clock& clock)
      : m_contacts(contacts), m_clock(clock) {}

  /// Returns whether the latest log-on read the contacts.
  [[nodiscard]] bool AreRead() const { return m_areRead; }

  // All of it happens at the log-on, so that each step may fail.
  [[nodiscard]] Result<void, ContactsError> Initialize() override { return {}; }
  [[nodiscard]] Result<void, ContactsError> Connect() override { return {}; }
  [[nodiscard]] Result<void, ContactsError> Logon() override;

  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::FoundContact GetItem(std::int32_t index) override;
  [[nodiscard]] platform::FoundContact GetItemFromOid(std::int32_t oid) override;
  void Logoff() override;

 private:
  platform::ContactsStore& m_contacts;
  platform::Clock& m_clock;
  bool m_areRead = false;
};

Result<void, ContactsError> ContactsIfReadable::Logon() {
  m_areRead = tags::OpenContacts(m_contacts, m_clock).has_value();
  return {};
}

std::int32_t ContactsIfReadable::GetCount() { return m_areRead ? m_contacts.GetCount() : 0; }

platform::FoundContact ContactsIfReadable::GetItem(std::int32_t index) {
  return m_areRead ? m_contacts.GetItem(index) : platform::Failure(ContactsError::kFailed);
}

platform::FoundContact ContactsIfReadable::GetItemFromOid(std::int32_t oid) {
  return m_areRead ? m_contacts.GetItemFromOid(oid) : platform::Failure(ContactsError::kFailed);
}

void ContactsIfReadable::Logoff() {
  m_areRead = false;
  m_contacts.Logoff();
}

/// The page takes a store that it cannot read for one without tags.
bool CanListTags(Session& session) {
  const auto names = ListTagNames(session);
  if (!names) {
    session.Fail(session.ExplainStore(names.error()));
  }
  return names.has_value();
}

/// Returns whether a box says that tags were deleted which the trash had no room for.
bool IsOfDestroyedTags(std::u16string_view text) {
  const std::u16string_view many = resources::Say(resources::kTagsDestroyed);
  // The other text begins with words and goes on with a number, so only what stands before it is
  // compared.
  return text == resources::Say(resources::kTagDestroyed) ||
         text.starts_with(many.substr(0, many.find(u'%')));
}

/// Counts the message boxes so far that reported a failure.
std::ptrdiff_t CountProblems(Session& session) {
  // A question is no failure, and a tag that went for good has gone, as was asked for.
  return std::ranges::count_if(
      session.GetUi().GetMessages(), [](const headless::ShownMessage& shown) {
        return !platform::Has(shown.box.style, platform::MessageStyle::kOkCancel) &&
               !IsOfDestroyedTags(shown.box.text);
      });
}

platform::Platform With(platform::ContactsStore& contacts, const platform::Platform& platform) {
  return {platform.files, platform.waveIn,   platform.clock, platform.threads, platform.process,
          platform.ui,    platform.registry, contacts,       platform.waveOut, platform.shell};
}

}  // namespace

language::Texts LoadTexts(Session& session) {
  return language::LoadTexts(session.GetFiles(), storage::kLanguageFile, session.GetClock());
}

bool ListsAllTags(Session& session, const PageRun& run) {
  const int lines = run.dialog.GetItemCount(resources::kTagListId);
  const auto list = storage::TagStore(session.GetFiles(), session.GetRegistry()).ListNames();
  // The page counts and lists in two passes, each of which ends at the first failure. It has a line
  // for a key that no path can name, too.
  return list && list->names.size() + list->passedOver == static_cast<std::size_t>(lines) &&
         run.page.GetTags().tagCount >= lines;
}

std::optional<int> FindLine(const PageRun& run, std::u16string_view tag) {
  for (int i = 0; i < run.dialog.GetItemCount(resources::kTagListId); ++i) {
    if (run.page.GetTagOfLine(i) == tag) {
      return i;
    }
  }
  return std::nullopt;
}

// It has worked if the list became shorter and nothing was left.
DeletePress PressDelete(Session& session, PageRun& run, int button) {
  const int before = run.dialog.GetItemCount(resources::kTagListId);
  const auto problems = CountProblems(session);
  run.dialog.Press(button);
  if (run.dialog.GetItemCount(resources::kTagListId) >= before) {
    return DeletePress::kNothing;
  }
  return CountProblems(session) == problems ? DeletePress::kDone : DeletePress::kRemains;
}

// The page runs as it does in the window, in a sheet that shows nothing. A story is what a user
// would do there: it gets the sheet when that is open, presses buttons, and returns, which closes
// the sheet. The page has no way to report that it could not read its tags, so the command looks
// before it opens one.
void RunPage(Session& session, Contacts contacts, const std::function<void(PageRun&)>& use,
             const std::function<void(const tags::Page_one&)>& useEnded) {
  if (!session.OpenForChanging() || !CanListTags(session)) {
    return;
  }
  const language::Texts texts = LoadTexts(session);
  const platform::Platform platform = session.GetPlatform();
  ContactsIfReadable optional(platform.contacts, platform.clock);
  const bool areOptional = contacts == Contacts::kOptional;
  tags::Page_one page(areOptional ? With(optional, platform) : platform, texts);
  framework::CPropertySheet sheet(texts(resources::kSheetCaption), session.GetUi());
  sheet.AddPage(page);
  const auto wasReinitialized = std::make_shared<bool>(false);
  session.GetUi().SetDialogStory(resources::kReinitDialog.id,
                                 [&session, wasReinitialized](headless::HeadlessDialog& window) {
                                   // The page posted its check of the version when it opened, so
                                   // this comes before the sheet's story.
                                   *wasReinitialized = true;
                                   const QuickScope quick(session.GetClock(), true);
                                   session.GetOutlet().WatchReinit(window);
                                 });
  session.GetUi().SetSheetStory([&](headless::HeadlessSheet& window) {
    // The page asked for the end of the process. In a window that would be the end; here the sheet
    // goes on, and nothing may be pressed on it any more.
    if (session.HasEnded()) {
      if (!page.IsOnlyInstance()) {
        session.Fail(text::Say(resources::kTagsHeld));
      } else if (*wasReinitialized && useEnded) {
        useEnded(page);
      }
      return;
    }
    // It ended with its message, which the session has shown. What helps is added to that.
    if (!page.IsSetUp()) {
      session.Fail(ExplainContactsProblem(session));
      return;
    }
    if (areOptional && !optional.AreRead()) {
      WarnOfContacts(session);
    }
    PageRun run{page, *window.ShowPage(0), *wasReinitialized};
    use(run);
  });
  sheet.DoModal();
}

}  // namespace session

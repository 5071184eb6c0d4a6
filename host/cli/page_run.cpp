#include "host/cli/page_run.h"

#include <memory>

#include "host/cli/contacts_commands.h"
#include "host/cli/reinit_screen.h"
#include "platform/framework/property_sheet.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "storage/device_paths.h"

namespace cli {

language::Texts LoadTexts(Session& session) {
  return language::LoadTexts(session.GetFiles(), storage::kLanguageFile, session.GetClock());
}

void RunPage(Session& session, const std::function<void(PageRun&)>& use,
             const std::function<void(const tags::Page_one&)>& useEnded) {
  if (!session.RequireRoot()) {
    return;
  }
  static_cast<void>(session.GetRegistry());  // Makes the root folder, below which all of it lies.
  const language::Texts texts = LoadTexts(session);
  tags::Page_one page(session.GetPlatform(), texts);
  framework::CPropertySheet sheet(texts(resources::kSheetCaption), session.GetUi());
  sheet.AddPage(page);
  const auto wasReinitialized = std::make_shared<bool>(false);
  session.GetUi().SetDialogStory(resources::kReinitDialog.id,
                                 [wasReinitialized](headless::HeadlessDialog& window) {
                                   *wasReinitialized = true;
                                   WatchReinit(window);
                                 });
  session.GetUi().SetSheetStory([&](headless::HeadlessSheet& window) {
    if (session.HasEnded()) {
      if (!page.IsOnlyInstance()) {
        session.Fail("the tags are in use by another Voxtrel; close it and try again");
      } else if (*wasReinitialized && useEnded) {
        useEnded(page);
      }
      return;
    }
    if (!page.IsSetUp()) {
      session.Fail(ExplainContactsProblem(session));
      return;
    }
    PageRun run{page, *window.ShowPage(0), *wasReinitialized};
    use(run);
  });
  sheet.DoModal();
}

}  // namespace cli

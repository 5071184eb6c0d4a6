#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/cli/session.h"
#include "language/texts.h"
#include "platform/headless/headless_dialog.h"
#include "tags/page_one.h"

namespace cli {

/// The Learning page as the command line uses it: the real page with the real store, contacts and
/// sound, without a window.
struct PageRun {
  tags::Page_one& page;
  headless::HeadlessDialog& dialog;
  bool wasReinitialized = false;  ///< Every template was computed anew when it opened.
};

/// Opens the page, hands it to `use`, and closes it. Where it does not open, as when a window has
/// it open already or the contacts cannot be read, that is told and `use` is not called: a page
/// that was not filled must not pass for one without tags. Where computing the templates anew ended
/// the page while it opened, `useEnded` gets it with the tags that it had read; a message has told
/// why it ended.
void RunPage(Session& session, const std::function<void(PageRun&)>& use,
             const std::function<void(const tags::Page_one&)>& useEnded = {});

/// What the applet speaks: the language file of the device, where there is one.
[[nodiscard]] language::Texts LoadTexts(Session& session);

}  // namespace cli

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "backends/headless/headless_dialog.h"
#include "host/session/session.h"
#include "language/texts.h"
#include "tags/page_one.h"

namespace session {

/// The Learning page as a session uses it: the real page with the real store, contacts and
/// sound, without a window.
struct PageRun {
  tags::Page_one& page;
  headless::HeadlessDialog& dialog;
  /// Whether the dialog that computes every template again has run by now.
  const bool& wasReinitialized;
};

/// Whether a task can do without the contacts. If so, the page opens without them, a warning says
/// so, and no tag counts as stale.
enum class Contacts : std::uint8_t { kNeeded, kOptional };

/// Opens the page, hands it to `use`, and closes it. If it does not open, because a window has it
/// open already or the tags cannot be read, that is reported and `use` is not called: a page that
/// was not filled must not look like one without tags. If the page ended while it opened, because
/// the templates were computed again, `useEnded` gets it with the tags that it had read. A message
/// has said why it ended.
void RunPage(Session& session, Contacts contacts, const std::function<void(PageRun&)>& use,
             const std::function<void(const tags::Page_one&)>& useEnded = {});

/// Returns whether the page lists every tag of the store. It ends its list at a tag that it cannot
/// deal with.
[[nodiscard]] bool ListsAllTags(Session& session, const PageRun& run);

/// Returns the line of a tag. Returns nothing if the page does not list it.
[[nodiscard]] std::optional<int> FindLine(const PageRun& run, std::u16string_view tag);

/// What became of a press of a button that deletes.
enum class DeletePress : std::uint8_t {
  kDone,
  kNothing,  ///< Nothing was deleted.
  kRemains,  ///< Tags were deleted, and some of their files are left.
};

/// Presses the button. A message says what failed.
[[nodiscard]] DeletePress PressDelete(Session& session, PageRun& run, int button);

/// Returns the texts of the applet: those of the language file of the device if there is one,
/// otherwise the English ones.
[[nodiscard]] language::Texts LoadTexts(Session& session);

}  // namespace session

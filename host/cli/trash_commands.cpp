#include "host/cli/commands.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/session/explanations.h"
#include "host/session/held_tags.h"
#include "storage/tag_trash.h"
#include "tags/page_one.h"

// Commands on the trash. Only those that change it hold the tags. A list may be read next to an
// open window.
namespace cli {
namespace {

using session::HeldTags;
using session::OpenTrash;
using storage::TrashedTag;

/// Returns what is in the trash, the latest deletion first. The error is a sentence with the
/// folder that cannot be read.
platform::Result<std::vector<TrashedTag>, std::string> ListTrash(const Session& session,
                                                                 const storage::TagTrash& trash) {
  auto tags = trash.List();
  if (!tags) {
    return platform::Failure("the trash cannot be read: " +
                             session.ToHostPath(storage::kTrashFolder));
  }
  return std::move(*tags);
}

std::string TimeText(const char* format, std::int64_t unixTime) {
  return fmt::format(fmt::runtime(format), fmt::gmtime(static_cast<std::time_t>(unixTime)));
}

void PrintTrash(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const storage::TagTrash trash = OpenTrash(session);
  const auto tags = ListTrash(session, trash);
  if (!tags) {
    session.Fail(tags.error());
    return;
  }
  Json list = Json::array();
  for (const TrashedTag& tag : *tags) {
    const std::string name = text::ToUtf8(tag.item.parts.name);
    const std::string text = text::ToUtf8(tag.item.text);
    const std::string_view by = storage::ToWord(tag.item.by);
    if (session.GetOptions().json) {
      list.push_back({{"name", name},
                      {"text", text},
                      {"deleted", TimeText("{:%Y-%m-%dT%H:%M:%SZ}", tag.item.deletedAt)},
                      {"by", by}});
    } else {
      PrintLine(fmt::format("{:>11}  {}  {:<10}  {}", name,
                            TimeText("{:%Y-%m-%d %H:%M} UTC", tag.item.deletedAt), by, text));
    }
  }
  if (session.GetOptions().json) {
    session.SetJson(list);
  } else if (tags->empty()) {
    PrintLine("The trash is empty.");
  }
}

void EmptyTrash(Session& session) {
  if (!session.OpenForChanging()) {
    return;
  }
  const HeldTags held(session);
  if (!held.IsHeld()) {
    return;
  }
  const storage::TagTrash trash = OpenTrash(session);
  if (!trash.Empty()) {
    session.Fail("not all of the trash could be deleted: " +
                 session.ToHostPath(storage::kTrashFolder));
    return;
  }
  if (session.GetOptions().json) {
    session.SetJson({{"result", 0}});
  } else {
    PrintLine("The trash is empty.");
  }
}

/// Returns the latest deletion of each name. Reports a name that is not in the trash.
std::vector<TrashedTag> Choose(Session& session, const std::vector<TrashedTag>& tags,
                               const std::vector<std::string>& names) {
  std::vector<TrashedTag> chosen;
  for (const std::string& name : names) {
    const auto tag = std::ranges::find_if(tags, [&name](const TrashedTag& each) {
      return text::ToUtf8(each.item.parts.name) == name;
    });
    if (tag == tags.end()) {
      session.Fail(
          fmt::format("there is no tag {} in the trash; `voxtrel tags trash` lists them", name));
    } else {
      chosen.push_back(*tag);
    }
  }
  return chosen;
}

// Each name is restored by itself. If one fails, its reason is reported, and the next ones still
// come back: a user who lost five tags wants the four that can be had.
void Restore(Session& session, const std::vector<std::string>& names, bool isLast) {
  if (!session.OpenForChanging()) {
    return;
  }
  const HeldTags held(session);
  if (!held.IsHeld()) {
    return;
  }
  const storage::TagTrash trash = OpenTrash(session);
  const auto tags = ListTrash(session, trash);
  if (!tags) {
    session.Fail(tags.error());
    return;
  }
  std::vector<TrashedTag> chosen;
  if (isLast) {
    std::ranges::copy_if(*tags, std::back_inserter(chosen), [&tags](const TrashedTag& tag) {
      return tag.deletion == tags->front().deletion;
    });
    if (chosen.empty()) {
      session.Fail("the trash is empty");
    }
  } else {
    chosen = Choose(session, *tags, names);
  }
  Json restored = Json::array();
  for (const TrashedTag& tag : chosen) {
    const std::string name = text::ToUtf8(tag.item.parts.name);
    if (const auto done = trash.Restore(tag); !done) {
      session.Fail(
          text::Say(resources::kNotRestored, {name, session::ExplainRestoreError(done.error())}));
      continue;
    }
    restored.push_back(name);
    if (!session.GetOptions().json) {
      PrintLine(fmt::format("Restored: {} {}", name, text::ToUtf8(tag.item.text)));
    }
  }
  if (session.GetOptions().json) {
    session.SetJson({{"restored", restored}});
  }
}

struct RestoreArguments {
  std::vector<std::string> names;
  bool isLast = false;
};

}  // namespace

void TidyTrash(Session& session) {
  // If a window has the tags, it has tidied up when it opened.
  const auto hold = session.GetPlatform().threads.CreateNamedMutex(tags::kInstanceMutex);
  if (hold != platform::Failure(platform::ThreadError::kHeld)) {
    OpenTrash(session).Recover();
  }
}

void AddTrashCommands(CLI::App& tags, Session& session) {
  const auto isEmptied = std::make_shared<bool>(false);
  CLI::App* trash = tags.add_subcommand(
      "trash", "List what was deleted, the latest first. It is kept for 30 days");
  trash->add_flag("--empty", *isEmptied, "Destroy all of it, without asking");
  trash->callback([&session, isEmptied] {
    if (*isEmptied) {
      EmptyTrash(session);
    } else {
      PrintTrash(session);
    }
  });

  const auto arguments = std::make_shared<RestoreArguments>();
  CLI::App* restore = tags.add_subcommand("restore", "Put deleted tags back as they were");
  auto* names = restore->add_option("name", arguments->names, "Names, as in `tags trash`");
  auto* last = restore->add_flag("--last", arguments->isLast, "All that the latest deletion took")
                   ->excludes(names);
  restore->callback([&session, arguments, last] {
    // The library can forbid both together, and cannot ask for one of them.
    if (arguments->names.empty() && last->count() == 0) {
      throw CLI::RequiredError("name or --last");
    }
    Restore(session, arguments->names, arguments->isLast);
  });
}

}  // namespace cli

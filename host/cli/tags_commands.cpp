#include "host/cli/tags_commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>
#include <string>
#include <vector>

#include "host/cli/output.h"
#include "host/cli/page_run.h"
#include "host/cli/tags_test_command.h"
#include "platform/text/names.h"
#include "platform/text/utf.h"
#include "resources/dialogs.h"
#include "storage/device_paths.h"
#include "storage/tag_store.h"
#include "tags/phone_kind.h"

namespace cli {
namespace {

using resources::kContactComboId;
using resources::kNumberComboId;
using resources::kRecordButtonId;
using resources::kTagListId;

Json TagToJson(Session& session, const PageRun& run, std::int32_t index) {
  const storage::TagRecord* record = run.page.GetTags().GetRecord(index);
  const std::u16string_view name = record == nullptr ? std::u16string_view() : record->GetTagName();
  storage::TagEntry entry;
  const storage::TagStore store(session.GetFiles(), session.GetRegistry());
  const bool isRead = store.ReadEntry(name, entry) == platform::RegistryError::kNone;
  return {{"name", text::ToUtf8(name)},
          {"contact", isRead && entry.oid ? Json(*entry.oid) : Json()},
          {"phoneType", text::ToUtf8(entry.phoneType)},
          {"text", text::ToUtf8(run.dialog.GetItemText(kTagListId, index))},
          {"wave", session.ToHostPath(storage::WavePath(name))},
          {"template", session.ToHostPath(storage::TemplatePath(name))}};
}

void List(Session& session) {
  RunPage(session, [&](PageRun& run) {
    const std::int32_t count = run.dialog.GetItemCount(kTagListId);
    Json tags = Json::array();
    for (std::int32_t i = 0; i < count; ++i) {
      if (session.GetOptions().json) {
        tags.push_back(TagToJson(session, run, i));
      } else {
        const storage::TagRecord* record = run.page.GetTags().GetRecord(i);
        PrintLine(fmt::format("{:>11}  {}",
                              record == nullptr ? "" : text::ToUtf8(record->GetTagName()),
                              text::ToUtf8(run.dialog.GetItemText(kTagListId, i))));
      }
    }
    if (session.GetOptions().json) {
      PrintJson(tags);
    } else {
      PrintLine(text::ToUtf8(run.dialog.GetText(resources::kCountLabelId)));
    }
  });
}

/// Items of the contact combo box that `wanted` means: the one with that identifier, else those of
/// that name, else those whose name holds it.
std::vector<int> FindContacts(const PageRun& run, const std::string& wanted) {
  std::int32_t oid = 0;
  const char* end = wanted.data() + wanted.size();
  const auto parsed = std::from_chars(wanted.data(), end, oid);
  const bool isOid = parsed.ec == std::errc() && parsed.ptr == end;
  const std::u16string name = text::FromUtf8(wanted);
  std::vector<int> byOid;
  std::vector<int> byName;
  std::vector<int> byPart;
  for (int i = 0; i < run.dialog.GetItemCount(kContactComboId); ++i) {
    const tags::ContactRecord* record = run.page.GetPicker().GetContacts().Find(i);
    const std::u16string item = run.dialog.GetItemText(kContactComboId, i);
    if (isOid && record != nullptr && record->oid == oid) {
      byOid.push_back(i);
    }
    if (text::SameName(item, name)) {
      byName.push_back(i);
    }
    if (text::FoldName(item).find(text::FoldName(name)) != std::u16string::npos) {
      byPart.push_back(i);
    }
  }
  return !byOid.empty() ? byOid : !byName.empty() ? byName : byPart;
}

/// Chooses the contact; tells the candidates where that is not clear.
bool ChooseContact(Session& session, PageRun& run, const std::string& wanted) {
  const std::vector<int> found = FindContacts(run, wanted);
  if (found.size() == 1) {
    run.dialog.Choose(kContactComboId, found.front());
    return true;
  }
  session.Fail(found.empty() ? fmt::format("no contact with a number is called \"{}\"", wanted)
                             : fmt::format("\"{}\" can mean each of these; give the number in "
                                           "front as --contact",
                                           wanted));
  for (const int item : found) {
    const tags::ContactRecord* record = run.page.GetPicker().GetContacts().Find(item);
    PrintErrorLine(fmt::format("{:>11}  {}", record->oid,
                               text::ToUtf8(run.dialog.GetItemText(kContactComboId, item))));
  }
  return false;
}

bool ChooseNumber(Session& session, PageRun& run, const std::string& kind) {
  std::string offered;
  for (int i = 0; i < run.dialog.GetItemCount(kNumberComboId); ++i) {
    const std::u16string item = run.dialog.GetItemText(kNumberComboId, i);
    if (text::SameName(tags::PhoneTypeWord(item), text::FromUtf8(kind))) {
      run.dialog.Choose(kNumberComboId, i);
      return true;
    }
    offered += (offered.empty() ? "" : ", ") + text::ToUtf8(tags::PhoneTypeWord(item));
  }
  session.Fail(
      fmt::format("the contact has no number of the kind \"{}\"; it has: {}", kind, offered));
  return false;
}

void Learn(Session& session, const std::string& contact, const std::string& kind) {
  RunPage(session, [&](PageRun& run) {
    if (!ChooseContact(session, run, contact) ||
        (!kind.empty() && !ChooseNumber(session, run, kind))) {
      return;
    }
    if (!session.GetOptions().json) {
      PrintErrorLine("Say the name now: three seconds are recorded, then you hear it.");
    }
    const int before = run.dialog.GetItemCount(kTagListId);
    run.dialog.Press(kRecordButtonId);
    if (run.dialog.GetItemCount(kTagListId) == before) {
      session.Fail("no tag was learned");
      return;
    }
    if (session.GetOptions().json) {
      PrintJson(TagToJson(session, run, before));
    } else {
      PrintLine(
          fmt::format("Learned: {}", text::ToUtf8(run.dialog.GetItemText(kTagListId, before))));
    }
  });
}

/// Selects the tag of that name; tells where there is none.
bool SelectTag(Session& session, PageRun& run, const std::string& name) {
  for (int i = 0; i < run.dialog.GetItemCount(kTagListId); ++i) {
    const storage::TagRecord* record = run.page.GetTags().GetRecord(i);
    if (record != nullptr && record->GetTagName() == text::FromUtf8(name)) {
      run.dialog.Choose(kTagListId, i);
      return true;
    }
  }
  session.Fail(fmt::format("there is no tag {}; `voxtrel tags list` shows them", name));
  return false;
}

void PrintResult(Session& session, int result) {
  if (session.GetOptions().json) {
    PrintJson({{"result", result}});
  }
}

void Play(Session& session, const std::string& name) {
  RunPage(session, [&](PageRun& run) {
    if (!SelectTag(session, run, name)) {
      return;
    }
    run.dialog.Press(resources::kPlayButtonId);
    const int code = run.page.GetPlayCode();
    PrintResult(session, code);
    if (code != audio::kPlayed) {
      session.Fail(fmt::format("tag {} was not played (code {})", name, code));
    }
  });
}

/// Presses a button that deletes, and tells whether the list became shorter.
void PressDelete(Session& session, PageRun& run, int button, const char* failure) {
  const int before = run.dialog.GetItemCount(kTagListId);
  run.dialog.Press(button);
  const bool isDone = run.dialog.GetItemCount(kTagListId) < before;
  PrintResult(session, isDone ? 0 : 1);
  if (!isDone) {
    session.Fail(failure);
  }
}

void Delete(Session& session, const std::string& name) {
  RunPage(session, [&](PageRun& run) {
    if (SelectTag(session, run, name)) {
      PressDelete(session, run, resources::kDeleteButtonId, "the tag was not deleted");
    }
  });
}

void DeleteAll(Session& session) {
  RunPage(session, [&](PageRun& run) {
    if (run.dialog.GetItemCount(kTagListId) == 0) {
      PrintResult(session, 0);
      return;
    }
    PressDelete(session, run, resources::kDeleteAllButtonId, "the tags were not deleted");
  });
}

struct Arguments {
  std::string contact;
  std::string kind;
  std::string name;
};

void AddName(CLI::App& command, Arguments& arguments) {
  command.add_option("name", arguments.name, "The tag's name, as in the list")->required();
}

}  // namespace

void AddTagsCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("tags", "Learn, list, test, play and delete voice tags");
  group->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();

  CLI::App* learn = group->add_subcommand("learn", "Record a name for a contact's number");
  learn->add_option("--contact", arguments->contact, "Name or identifier, as in contacts list")
      ->required();
  learn->add_option("--number", arguments->kind,
                    "Kind of the number, as Mobile or Home (default: the first in the list)");
  learn->callback([&session, arguments] { Learn(session, arguments->contact, arguments->kind); });

  AddTagsTestCommand(*group, session);
  group->add_subcommand("list", "List the learned tags")->callback([&session] { List(session); });

  CLI::App* play = group->add_subcommand("play", "Play a tag's recording");
  AddName(*play, *arguments);
  play->callback([&session, arguments] { Play(session, arguments->name); });

  CLI::App* remove = group->add_subcommand("delete", "Delete a tag, after asking");
  AddName(*remove, *arguments);
  remove->callback([&session, arguments] { Delete(session, arguments->name); });

  group->add_subcommand("delete-all", "Delete all tags, after asking")->callback([&session] {
    DeleteAll(session);
  });
}

}  // namespace cli

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

#include "backends/text/utf.h"
#include "host/cli/commands.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "host/session/backups.h"
#include "storage/tag_record.h"

// Backups on a terminal. host/session/ does the work, and this asks and prints.
namespace cli {
namespace {

using storage::RestoreFate;

void Backup(Session& session, const std::string& name) {
  RefuseStandardOutput(session, name, {"backup", "a backup", "to write to"});
  const auto target = FileArgument::ForWriting(name);
  if (!target) {
    session.Fail(target.error());
    return;
  }
  const auto made = session::MakeBackup(session, {target->GetHostPath(), target->GetName()});
  if (!made) {
    return;
  }
  target->Send(session);
  if (session.GetOptions().json) {
    Json result{{"result", 0}, {"tags", made->tagCount}};
    for (const std::u16string& tag : made->leftOut) {
      result["leftOut"].push_back(text::ToUtf8(tag));
    }
    session.SetJson(result);
  } else if (!target->IsStream()) {
    PrintLine(fmt::format("Backed up {} tag{}: {}", made->tagCount, made->tagCount == 1 ? "" : "s",
                          target->GetName()));
  }
}

/// The word of scripts.
const char* WordOf(RestoreFate fate) {
  switch (fate) {
    case RestoreFate::kSame:
      return "same";
    case RestoreFate::kRestored:
      return "restored";
    case RestoreFate::kReplaced:
      return "replaced";
    case RestoreFate::kKept:
      return "kept";
    case RestoreFate::kContactElsewhere:
      return "no-contact";
    case RestoreFate::kTooMany:
      return "too-many";
    case RestoreFate::kInUse:
      return "in-use";
    case RestoreFate::kFull:
      return "full";
    case RestoreFate::kFailed:
      break;
  }
  return "failed";
}

/// Returns why a part was not restored.
std::string Explain(RestoreFate fate) {
  switch (fate) {
    case RestoreFate::kKept:
      return "something else is here in its place, and stays";
    case RestoreFate::kContactElsewhere:
      return "its contact is not among the contacts that are used here";
    case RestoreFate::kTooMany:
      return fmt::format("there are {} tags already, which is the most there can be",
                         storage::kMaxTags);
    case RestoreFate::kInUse:
      return "what is here is in use by another program";
    case RestoreFate::kFull:
      return "the disk is full";
    default:
      return "it cannot be written";
  }
}

bool AgreesToReplace(Session& session, const session::Differences& differences) {
  // One question for all of it, since a script answers with --yes and a user reads one line.
  std::u16string all;
  const auto add = [&all](std::u16string_view what) {
    all.append(all.empty() ? u"" : u"; ").append(what);
  };
  for (const std::u16string& tag : differences.tags) {
    add(u"the tag " + tag);
  }
  if (differences.connection) {
    add(u"the connection settings");
  }
  if (differences.languageFile) {
    add(u"the language file");
  }
  return session.GetUi().ShowMessage({u"This is here in another form: " + all +
                                          u". Replace it? What is here goes to the trash.",
                                      platform::MessageCaption::kText, u"Restore",
                                      platform::MessageStyle::kOkCancel}) ==
         platform::MessageAnswer::kOk;
}

/// Prints what became of one part of the backup, or reports why it is not here.
void ReportFate(Session& session, const std::string& what, RestoreFate fate) {
  const bool isQuiet = session.GetOptions().json;
  if (fate == RestoreFate::kRestored || fate == RestoreFate::kReplaced) {
    if (!isQuiet) {
      PrintLine((fate == RestoreFate::kRestored ? "Restored: " : "Replaced: ") + what);
    }
  } else if (fate != RestoreFate::kSame) {
    session.Fail(fmt::format("{}: not restored, since {}", what, Explain(fate)));
  }
}

Json ToJson(const Session& session, const session::RestoredBackup& restored) {
  Json json{{"restored", Json::array()},
            {"replaced", Json::array()},
            {"same", Json::array()},
            {"left", Json::array()}};
  for (std::size_t i = 0; i < restored.tags.size(); ++i) {
    const std::string name = text::ToUtf8(restored.tags[i]);
    const std::string word = WordOf(restored.outcome.tags[i]);
    // The fates that have a list of their own are those of parts that are here now. All others
    // share one, with the reason.
    if (json.contains(word)) {
      json[word].push_back(name);
    } else {
      json["left"].push_back({{"name", name}, {"reason", word}});
    }
  }
  if (restored.outcome.connection) {
    json["connection"] = WordOf(*restored.outcome.connection);
  }
  if (restored.outcome.languageFile) {
    json["language"] = WordOf(*restored.outcome.languageFile);
  }
  if (!restored.outcome.saved.empty()) {
    json["saved"] = session.ToHostPath(restored.outcome.saved);
  }
  return json;
}

void Restore(Session& session, const std::string& name) {
  const auto source = FileArgument::ForReading(name);
  if (!source) {
    session.Fail(source.error());
    return;
  }
  const auto restored = session::RestoreBackup(session, {source->GetHostPath(), source->GetName()},
                                               [&session](const session::Differences& differences) {
                                                 return AgreesToReplace(session, differences);
                                               });
  if (!restored) {
    return;
  }
  const storage::RestoreOutcome& outcome = restored->outcome;
  std::size_t sameCount = 0;
  for (std::size_t i = 0; i < restored->tags.size(); ++i) {
    ReportFate(session, "tag " + text::ToUtf8(restored->tags[i]), outcome.tags[i]);
    sameCount += outcome.tags[i] == RestoreFate::kSame ? 1U : 0U;
  }
  if (outcome.connection) {
    ReportFate(session, "the connection settings", *outcome.connection);
  }
  if (outcome.languageFile) {
    ReportFate(session, "the language file", *outcome.languageFile);
  }
  if (session.GetOptions().json) {
    session.SetJson(ToJson(session, *restored));
    return;
  }
  if (sameCount > 0) {
    PrintLine(fmt::format("Here already: {} tag{}", sameCount, sameCount == 1 ? "" : "s"));
  }
  if (!outcome.saved.empty()) {
    PrintLine("The settings that were replaced: " + session.ToHostPath(outcome.saved));
  }
}

}  // namespace

void AddBackupCommands(CLI::App& app, Session& session) {
  const auto file = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      "backup", "Write all voice tags and settings into one file, a tar archive");
  command->add_option("file", *file, "The file to write, or - for standard output")->required();
  command->callback([&session, file] { Backup(session, *file); });

  command = app.add_subcommand("restore",
                               "Put back what a backup holds. Asks before it replaces anything");
  command->add_option("file", *file, "The backup to read, or - for standard input")->required();
  command->callback([&session, file] { Restore(session, *file); });
}

}  // namespace cli

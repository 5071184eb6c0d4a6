#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

#include "backends/text/host_path.h"
#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/machine/places.h"
#include "host/machine/system.h"
#include "language/language_choice.h"
#include "storage/device_paths.h"
#include "storage/folders.h"

// The choice of the sheet's language on the command line, as Set-up offers it in the window.
namespace cli {
namespace {

using language::LanguageError;
using language::OwnFile;

/// The built-in one, which has no file.
constexpr const char* kEnglish = "en";

language::LanguageChoice MakeChoice(Session& session) {
  const auto data = machine::Places(machine::FindOwnFile()).GetDataFolder();
  return {session.GetFiles(), Session::ToSystemPath(text::FromHostPath(data / "languages")),
          std::u16string(storage::kLanguageFile)};
}

void ListLanguages(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const language::LanguageChoice choice = MakeChoice(session);
  const std::optional<std::string> current = choice.GetCurrent();
  std::vector<std::string> languages = choice.List();
  languages.insert(languages.begin(), kEnglish);
  const auto isUsed = [&current](const std::string& language) {
    // No file in place is English, and so is the template for translators.
    return current && *current == (language == kEnglish ? "" : language);
  };
  if (session.GetOptions().json) {
    Json used;
    if (current) {
      used = current->empty() ? kEnglish : *current;
    }
    session.SetJson({{"languages", languages}, {"used", used}});
    return;
  }
  for (const std::string& language : languages) {
    PrintLine(fmt::format("{} {}", isUsed(language) ? "*" : " ", language));
  }
  if (!current) {
    PrintLine("* a language file of your own");
  }
}

const char* Explain(LanguageError error) {
  switch (error) {
    case LanguageError::kOwnFile:
      return "the language file in use is your own, and stays";
    case LanguageError::kUnreadable:
      return "there is no such language, or the language file cannot be read";
    case LanguageError::kInUse:
      return "another program is reading the language file; try again";
    default:
      return "the language file cannot be written";
  }
}

void UseLanguage(Session& session, const std::string& name) {
  if (!session.OpenForChanging()) {
    return;
  }
  // If one is missing all the same, the file cannot be written.
  static_cast<void>(storage::CreateStoreFolders(session.GetFiles()));
  const language::LanguageChoice choice = MakeChoice(session);
  const std::string language = name == kEnglish ? std::string() : name;
  // First without leave. Only if a file of the user's own is in the way, the user is asked.
  auto chosen = choice.Choose(language, OwnFile::kStays);
  if (chosen == platform::Failure(LanguageError::kOwnFile) &&
      session.GetOutlet().AgreesTo(
          {u"The language file in use is your own. Replace it, and keep it next to its place?",
           platform::MessageCaption::kText, u"Language", platform::MessageStyle::kOkCancel})) {
    chosen = choice.Choose(language, OwnFile::kMayGo);
  }
  if (!chosen) {
    session.Fail(fmt::format("{}: {}", name, Explain(chosen.error())));
    return;
  }
  const std::string kept = chosen->empty() ? std::string() : session.ToHostPath(*chosen);
  if (session.GetOptions().json) {
    session.SetJson({{"used", name}});
    if (!kept.empty()) {
      session.SetJson({{"used", name}, {"kept", kept}});
    }
  } else if (!kept.empty()) {
    PrintLine("Your own language file is now " + kept);
  }
}

}  // namespace

void AddLanguageChoice(CLI::App& group, Session& session) {
  group.add_subcommand("list", "List the languages; a star marks the one that is used")
      ->callback([&session] { ListLanguages(session); });
  CLI::App* use = group.add_subcommand("use", "Choose the language of the settings sheet");
  const auto name = std::make_shared<std::string>();
  use->add_option("language", *name, "Its name in the list, such as de")->required();
  use->callback([&session, name] { UseLanguage(session, *name); });
}

}  // namespace cli

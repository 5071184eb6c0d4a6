#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "language/language_table.h"
#include "language/translation.h"

// For translators: a check, a look, and a template to begin with. None of them needs the root
// folder.
namespace cli {
namespace {

using language::LanguageTable;
using Bytes = FileArgument::Bytes;
using platform::Failure;
using platform::FileError;
using platform::Result;

/// A language file that was given by name, with its bytes.
struct ReadFile {
  std::string name;
  Bytes bytes;
};

/// Returns the whole file. The error is a sentence.
Result<ReadFile, std::string> ReadLanguageFile(Session& session, const std::string& name) {
  const auto file = FileArgument::ForReading(name);
  if (!file) {
    return Failure(file.error());
  }
  auto bytes = file->Read(session, LanguageTable::kMaxFileLength, "a language file");
  if (!bytes) {
    return Failure(bytes.error());
  }
  return ReadFile{file->GetName(), std::move(*bytes)};
}

/// A file of that name is left alone, since somebody may have translated it. A new one is there
/// when it is whole. The error is a sentence.
Result<void, std::string> WriteLanguageFile(Session& session, const std::string& name,
                                            const Bytes& bytes) {
  platform::FileSystem& files = session.GetFiles();
  const std::u16string path = Session::ToSystemPath(name);
  auto earlier = files.Open(path, {});
  // An empty file is what a shell leaves after "> FILE", and holds nobody's work.
  if (earlier && (*earlier)->GetLength() != 0) {
    return Failure(fmt::format("{}: there is such a file already; it was left as it is", name));
  }
  const bool mayWrite = earlier || earlier.error() == FileError::kNotFound;
  // Closed before it is replaced: it would be in use by this very program.
  if (earlier) {
    earlier->reset();
  }
  const auto made = mayWrite ? files.OpenReplacement(path) : Failure(earlier.error());
  if (!made || !(*made)->GetFile().Write(bytes) || !(*made)->Publish(platform::Durability::kNow)) {
    return Failure(fmt::format("{}: it cannot be written", name));
  }
  return {};
}

/// Returns the text for a terminal, which must not take a part of it for a command. The places of
/// control characters stay visible, since a translator has to find them.
std::string Printable(std::u16string text) {
  for (char16_t& character : text) {
    const bool isControl = character < u' ' || (character >= u'\u007F' && character < u'\u00A0');
    if (isControl) {
      character = u'\uFFFD';
    }
  }
  return text::ToUtf8(text);
}

void PrintFinding(const std::string& file, const language::Finding& finding) {
  const std::string line = finding.line == 0 ? std::string() : fmt::format(":{}", finding.line);
  const std::string key = finding.key.empty() ? std::string() : Printable(finding.key) + ": ";
  PrintLine(fmt::format("{}{}: {}{} [{}]", file, line, key, finding.message, ToWord(finding.kind)));
}

Json ToJson(const language::Finding& finding) {
  return {{"kind", ToWord(finding.kind)},
          {"line", finding.line == 0 ? Json() : Json(finding.line)},
          {"key", text::ToUtf8(finding.key)},
          {"message", finding.message}};
}

void CheckLanguage(Session& session, const std::string& name) {
  const auto file = ReadLanguageFile(session, name);
  if (!file) {
    session.Fail(file.error());
    return;
  }
  const std::vector<language::Finding> findings = language::CheckLanguageFile(file->bytes);
  if (session.GetOptions().json) {
    Json list = Json::array();
    for (const language::Finding& finding : findings) {
      list.push_back(ToJson(finding));
    }
    session.SetJson({{"findings", std::move(list)}});
  } else {
    for (const language::Finding& finding : findings) {
      PrintFinding(file->name, finding);
    }
  }
  if (!findings.empty()) {
    session.Fail(fmt::format("{}: {} to mend", file->name, findings.size()));
  } else if (!session.GetOptions().json) {
    PrintLine(fmt::format("{}: every key has its text", file->name));
  }
}

void PrintEntries(Session& session, const Bytes& bytes) {
  LanguageTable table;
  table.LoadFrom(bytes);
  if (!session.GetOptions().json) {
    for (const LanguageTable::Entry& entry : table.GetEntries()) {
      PrintLine(fmt::format("{:<22}{}", Printable(entry.key), Printable(entry.text)));
    }
    return;
  }
  Json list = Json::array();
  for (const LanguageTable::Entry& entry : table.GetEntries()) {
    list.push_back(Json::array({text::ToUtf8(entry.key), text::ToUtf8(entry.text)}));
  }
  session.SetJson({{"entries", std::move(list)}});
}

void ShowLanguage(Session& session, const std::string& name) {
  if (const auto file = ReadLanguageFile(session, name)) {
    PrintEntries(session, file->bytes);
  } else {
    session.Fail(file.error());
  }
}

// On a terminal or in a pipe the bytes are those of the file, in UTF-16 with its mark: so
// `language template > FILE` makes the same file as `language template FILE`.
void WriteTemplate(Session& session, const std::string& name) {
  const Bytes bytes = language::ToLanguageFile(language::LanguageTemplate());
  const bool isStream = name.empty() || name == "-";
  if (!isStream) {
    if (const auto written = WriteLanguageFile(session, name, bytes); !written) {
      session.Fail(written.error());
      return;
    }
  }
  if (session.GetOptions().json) {
    PrintEntries(session, bytes);
  } else if (isStream) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
      session.Fail("standard output cannot be written");
    }
  }
}

}  // namespace

void AddLanguageCommands(CLI::App& app, Session& session) {
  CLI::App* group =
      app.add_subcommand("language", "Choose a language; check, look at and begin language files");
  group->require_subcommand(1);
  AddLanguageChoice(*group, session);
  const auto file = std::make_shared<std::string>();

  CLI::App* check = group->add_subcommand("check", "Say what a translator should mend");
  check->add_option("file", *file, "The language file; - for standard input")->required();
  check->callback([&session, file] { CheckLanguage(session, *file); });

  CLI::App* show = group->add_subcommand("show", "Print the texts that a language file gives");
  show->add_option("file", *file, "The language file; - for standard input")->required();
  show->callback([&session, file] { ShowLanguage(session, *file); });

  CLI::App* start = group->add_subcommand(
      "template", "Write a complete English language file for translators to begin with");
  start->add_option("file", *file, "Where to write it (default, or -: standard output)");
  start->callback([&session, file] { WriteTemplate(session, *file); });
}

}  // namespace cli

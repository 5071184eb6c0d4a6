#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "language/language_check.h"
#include "language/language_table.h"
#include "language/language_template.h"

namespace cli {
namespace {

using language::LanguageTable;
using Bytes = std::vector<std::byte>;

/// The whole file; tells what is wrong where it cannot be read.
std::optional<Bytes> ReadLanguageFile(Session& session, const std::string& name) {
  const platform::Platform platform = session.GetPlatform();
  const auto file = platform.files.Open(Session::ToSystemPath(name), {});
  const auto length = file ? (*file)->GetLength() : platform::Failure(file.error());
  if (!length) {
    session.Fail(fmt::format("{}: it cannot be opened", name));
    return std::nullopt;
  }
  if (*length > LanguageTable::kMaxFileLength) {
    session.Fail(fmt::format("{}: it is too long for a language file", name));
    return std::nullopt;
  }
  Bytes bytes(static_cast<std::size_t>(*length));
  const auto read = (*file)->Read(bytes);
  if (!read) {
    session.Fail(fmt::format("{}: it cannot be read", name));
    return std::nullopt;
  }
  bytes.resize(*read);
  return bytes;
}

/// A file of that name is left alone, since somebody may have translated it. A new one is there
/// when it is whole.
bool WriteLanguageFile(Session& session, const std::string& name, const Bytes& bytes) {
  using platform::FileError;
  platform::FileSystem& files = session.GetFiles();
  const std::u16string path = Session::ToSystemPath(name);
  auto earlier = files.Open(path, {});
  if (earlier && (*earlier)->GetLength() != 0) {
    session.Fail(fmt::format("{}: there is such a file already; it was left as it is", name));
    return false;
  }
  const bool mayWrite = earlier || earlier.error() == FileError::kNotFound;
  if (earlier) {
    earlier->reset();
  }
  const auto made = mayWrite ? files.OpenReplacement(path) : platform::Failure(earlier.error());
  const bool isWritten =
      made && (*made)->GetFile().Write(bytes) && (*made)->Publish(platform::Durability::kNow);
  if (!isWritten) {
    session.Fail(fmt::format("{}: it cannot be written", name));
  }
  return isWritten;
}

/// For a terminal, which must not take a text of the file for a command.
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

void CheckLanguage(Session& session, const std::string& file) {
  const std::optional<Bytes> bytes = ReadLanguageFile(session, file);
  if (!bytes) {
    return;
  }
  const std::vector<language::Finding> findings = language::CheckLanguageFile(*bytes);
  if (session.GetOptions().json) {
    Json list = Json::array();
    for (const language::Finding& finding : findings) {
      list.push_back(ToJson(finding));
    }
    PrintJson({{"findings", std::move(list)}});
  } else {
    for (const language::Finding& finding : findings) {
      PrintFinding(file, finding);
    }
  }
  if (!findings.empty()) {
    session.Fail(fmt::format("{}: {} to mend", file, findings.size()));
  } else if (!session.GetOptions().json) {
    PrintLine(fmt::format("{}: every key has its text", file));
  }
}

void PrintEntries(const Session& session, const Bytes& bytes) {
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
  PrintJson({{"entries", std::move(list)}});
}

void ShowLanguage(Session& session, const std::string& file) {
  const std::optional<Bytes> bytes = ReadLanguageFile(session, file);
  if (bytes) {
    PrintEntries(session, *bytes);
  }
}

void WriteTemplate(Session& session, const std::string& file) {
  const Bytes bytes = language::ToLanguageFile(language::LanguageTemplate());
  if (!file.empty() && !WriteLanguageFile(session, file, bytes)) {
    return;
  }
  if (session.GetOptions().json) {
    PrintEntries(session, bytes);
  } else if (file.empty()) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
      session.Fail("standard output cannot be written");
    }
  }
}

}  // namespace

void AddLanguageCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("language", "Check, look at and begin language files");
  group->require_subcommand(1);
  const auto file = std::make_shared<std::string>();

  CLI::App* check = group->add_subcommand("check", "Say what a translator should mend");
  check->add_option("file", *file, "The language file")->required();
  check->callback([&session, file] { CheckLanguage(session, *file); });

  CLI::App* show = group->add_subcommand("show", "Print the texts that a language file gives");
  show->add_option("file", *file, "The language file")->required();
  show->callback([&session, file] { ShowLanguage(session, *file); });

  CLI::App* start = group->add_subcommand(
      "template", "Write a complete English language file for translators to begin with");
  start->add_option("file", *file, "Where to write it (default: standard output)");
  start->callback([&session, file] { WriteTemplate(session, *file); });
}

}  // namespace cli

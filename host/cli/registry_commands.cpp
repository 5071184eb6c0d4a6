#include "host/cli/commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/cli/output.h"
#include "storage/registry_file.h"

namespace cli {
namespace {

using Bytes = std::vector<std::byte>;

/// The whole file; tells what is wrong where it cannot be read.
std::optional<Bytes> ReadRegistryFile(Session& session, const std::string& name) {
  platform::FileSystem& files = session.GetFiles();
  const auto file = files.Open(Session::ToSystemPath(name), {});
  const auto length = file ? (*file)->GetLength() : platform::Failure(file.error());
  if (!length) {
    session.Fail(fmt::format("{}: it cannot be opened", name));
    return std::nullopt;
  }
  if (*length > storage::kMaxRegistryFileLength) {
    session.Fail(fmt::format("{}: it is too long for a registry file", name));
    return std::nullopt;
  }
  Bytes bytes(static_cast<std::size_t>(*length));
  const auto read = (*file)->Read(bytes);
  if (!read || *read != bytes.size()) {
    session.Fail(fmt::format("{}: it cannot be read", name));
    return std::nullopt;
  }
  return bytes;
}

/// The earlier export stays until the new one is whole.
bool WriteRegistryFile(Session& session, const std::string& name, const Bytes& bytes) {
  const auto made = session.GetFiles().OpenReplacement(Session::ToSystemPath(name));
  return made && (*made)->GetFile().Write(bytes) && (*made)->Publish(platform::Durability::kNow);
}

bool WriteStandardOutput(const Bytes& bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
         std::fflush(stdout) == 0;
}

/// `passedOver` counts keys of a file that was imported.
void PrintDone(Session& session, std::size_t passedOver) {
  Json result{{"result", 0}};
  if (passedOver > 0) {
    result["passedOver"] = passedOver;
  }
  if (session.GetOptions().json) {
    PrintJson(result);
  } else if (passedOver > 0) {
    PrintLine(fmt::format("Passed over {} that {} not below HKEY_LOCAL_MACHINE",
                          passedOver == 1 ? "a key" : fmt::format("{} keys", passedOver),
                          passedOver == 1 ? "is" : "are"));
  }
}

void Export(Session& session, const std::string& name) {
  if (name.empty() && ::isatty(STDOUT_FILENO) == 1) {
    throw CLI::ValidationError(
        "export", "a terminal cannot show a registry file; name a file, or send it to a program");
  }
  if (name.empty() && session.GetOptions().json) {
    throw CLI::ValidationError(
        "export", "--json needs a file to export to, since both would go to standard output");
  }
  if (!session.OpenForReading()) {
    return;
  }
  const auto file = storage::WriteRegistryFile(session.GetRegistry());
  if (!file) {
    session.Fail(session.ExplainStore(file.error()));
  } else if (!(name.empty() ? WriteStandardOutput(*file)
                            : WriteRegistryFile(session, name, *file))) {
    const std::string link = Session::ExplainLink(name);
    session.Fail(!link.empty() ? link
                               : fmt::format("{}: it cannot be written",
                                             name.empty() ? "standard output" : name));
  } else {
    PrintDone(session, 0);
  }
}

void Import(Session& session, const std::string& name) {
  if (!session.OpenForChanging()) {
    return;
  }
  const std::optional<Bytes> file = ReadRegistryFile(session, name);
  if (!file) {
    return;
  }
  const auto content = storage::ParseRegistryFile(*file);
  if (!content) {
    const storage::RegistryFileError& error = content.error();
    session.Fail(error.line == 0 ? fmt::format("{}: {}", name, error.message)
                                 : fmt::format("{}:{}: {}", name, error.line, error.message));
    return;
  }
  TidyTrash(session);
  const auto applied = storage::ApplyRegistryChanges(session.GetRegistry(), content->changes);
  if (!applied) {
    // A file that was read to its end is right; what hinders its changes is the store.
    session.Fail(
        fmt::format("{}: {}", session.GetRegistryPath().native(), applied.error().message));
  } else {
    PrintDone(session, content->passedOver);
  }
}

}  // namespace

void AddRegistryCommands(CLI::App& app, Session& session) {
  CLI::App* group =
      app.add_subcommand("registry", "Move the settings to and from a Windows machine");
  group->require_subcommand(1);
  const auto file = std::make_shared<std::string>();

  CLI::App* command = group->add_subcommand(
      "export", "Write all settings as a registry file of Windows, version 5.00");
  command->add_option("file", *file, "The file to write (default, or -: standard output)");
  command->callback([&session, file] { Export(session, *file == "-" ? "" : *file); });

  command =
      group->add_subcommand("import", "Make all changes that a registry file asks for, or none");
  command->add_option("file", *file, "The file to read: version 5.00, or 4 (REGEDIT4)")->required();
  command->callback([&session, file] { Import(session, *file); });
}

}  // namespace cli

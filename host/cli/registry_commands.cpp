#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstddef>
#include <memory>
#include <string>

#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "storage/registry_file.h"

// The settings as registry files of Windows. An import is made whole or not at all.
namespace cli {
namespace {

using FileResult = platform::Result<void, platform::FileError>;

/// Writes the export. The earlier one stays until the new one is whole.
FileResult Replace(Session& session, const FileArgument& file, const FileArgument::Bytes& bytes) {
  const auto made = session.GetFiles().OpenReplacement(file.GetPath());
  if (!made) {
    return platform::Failure(made.error());
  }
  const auto written = (*made)->GetFile().Write(bytes);
  return written ? (*made)->Publish(platform::Durability::kNow) : written;
}

/// `passedOver` counts keys of a file that was imported.
void PrintDone(Session& session, std::size_t passedOver) {
  Json result{{"result", 0}};
  if (passedOver > 0) {
    result["passedOver"] = passedOver;
  }
  if (session.GetOptions().json) {
    session.SetJson(result);
  } else if (passedOver > 0) {
    PrintLine(fmt::format("Passed over {} that {} not below HKEY_LOCAL_MACHINE",
                          passedOver == 1 ? "a key" : fmt::format("{} keys", passedOver),
                          passedOver == 1 ? "is" : "are"));
  }
}

void Export(Session& session, const std::string& name) {
  RefuseStandardOutput(session, name, {"export", "a registry file", "to export to"});
  if (!session.OpenForReading()) {
    return;
  }
  const auto target = FileArgument::ForWriting(name);
  if (!target) {
    session.Fail(target.error());
    return;
  }
  // The whole file is made in memory first, so a store that cannot be read leaves no half export.
  const auto file = storage::WriteRegistryFile(session.GetRegistry());
  if (!file) {
    session.Fail(session.ExplainStore(file.error()));
  } else if (!Replace(session, *target, *file)) {
    const std::string link = Session::ExplainLink(target->GetHostPath());
    session.Fail(!link.empty() ? link : fmt::format("{}: it cannot be written", target->GetName()));
  } else {
    target->Send(session);
    PrintDone(session, 0);
  }
}

// The file is read and understood as a whole before the settings are opened: a file with one wrong
// line changes nothing, and a root folder with a mistyped name is not made for a file that is not
// there.
void Import(Session& session, const std::string& name) {
  const auto source = FileArgument::ForReading(name);
  const auto file = source
                        ? source->Read(session, storage::kMaxRegistryFileLength, "a registry file")
                        : platform::Failure(source.error());
  if (!file) {
    session.Fail(file.error());
    return;
  }
  const auto content = storage::ParseRegistryFile(*file);
  if (!content) {
    const storage::RegistryFileError& error = content.error();
    const std::string& shown = source->GetName();
    session.Fail(error.line == 0 ? fmt::format("{}: {}", shown, error.message)
                                 : fmt::format("{}:{}: {}", shown, error.line, error.message));
    return;
  }
  if (!session.OpenForChanging()) {
    return;
  }
  TidyTrash(session);
  const auto applied = storage::ApplyRegistryChanges(session.GetRegistry(), content->changes);
  if (!applied) {
    // A file that was read to its end is right; what hinders its changes is the store.
    session.Fail(fmt::format("{}: {}", session.GetRegistryName(), applied.error().message));
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
  command->callback([&session, file] { Export(session, file->empty() ? "-" : *file); });

  command =
      group->add_subcommand("import", "Make all changes that a registry file asks for, or none");
  command
      ->add_option("file", *file,
                   "The file to read: version 5.00, or 4 (REGEDIT4); - for standard input")
      ->required();
  command->callback([&session, file] { Import(session, *file); });
}

}  // namespace cli

#include "host/cli/registry_commands.h"

#include <fmt/format.h>

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

using platform::FileError;
using storage::RegistryFileError;
using Bytes = std::vector<std::byte>;

/// The whole file; tells what is wrong where it cannot be read.
std::optional<Bytes> ReadRegistryFile(Session& session, const std::string& name) {
  platform::FileSystem& files = session.GetFiles();
  const platform::OpenedFile opened = files.Open(Session::ToSystemPath(name), {});
  const std::optional<std::uint64_t> length =
      opened.file ? opened.file->GetLength() : std::optional<std::uint64_t>();
  if (!length) {
    session.Fail(fmt::format("{}: it cannot be opened", name));
    return std::nullopt;
  }
  if (*length > storage::kMaxRegistryFileLength) {
    session.Fail(fmt::format("{}: it is too long for a registry file", name));
    return std::nullopt;
  }
  Bytes bytes(static_cast<std::size_t>(*length));
  const std::optional<std::size_t> read = opened.file->Read(bytes);
  if (!read || *read != bytes.size()) {
    session.Fail(fmt::format("{}: it cannot be read", name));
    return std::nullopt;
  }
  return bytes;
}

struct NewFile {
  std::u16string path;
  std::unique_ptr<platform::File> file;  ///< Null where none could be made.
};

/// Makes an empty file beside `path`. Its name is this program's own and does not grow with the
/// user's, which may be as long as names can be. What an export that was killed left under it goes;
/// a name that another export holds is passed over.
NewFile MakeFileBeside(platform::FileSystem& files, const std::u16string& path) {
  constexpr char16_t kFirst = u'1';
  constexpr char16_t kLast = u'9';
  const platform::OpenMode mode{platform::FileAccess::kWrite, platform::FileShare::kNone,
                                platform::FileCreation::kOpenAlways};
  for (char16_t number = kFirst; number <= kLast; ++number) {
    std::u16string newPath = path.substr(0, path.rfind(u'/') + 1) + u".voxtrel-export-" + number;
    static_cast<void>(files.Delete(newPath));
    platform::OpenedFile opened = files.Open(newPath, mode);
    if (opened.file && opened.file->GetLength() == 0) {
      return {std::move(newPath), std::move(opened.file)};
    }
  }
  return {};
}

/// Writes a new file first, so that a disk that fills up costs no earlier export.
bool WriteRegistryFile(Session& session, const std::string& name, const Bytes& bytes) {
  platform::FileSystem& files = session.GetFiles();
  const std::u16string path = Session::ToSystemPath(name);
  const NewFile made = MakeFileBeside(files, path);
  if (!made.file) {
    return false;
  }
  const bool isWritten =
      made.file->Write(bytes) == FileError::kNone && made.file->Flush() == FileError::kNone;
  const bool isClosed = made.file->Close() == FileError::kNone;
  if (isWritten && isClosed && files.Replace(made.path, path) == FileError::kNone) {
    return true;
  }
  [[maybe_unused]] const FileError left = files.Delete(made.path);
  return false;
}

bool WriteStandardOutput(const Bytes& bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
         std::fflush(stdout) == 0;
}

void PrintDone(Session& session) {
  if (session.GetOptions().json) {
    PrintJson({{"result", 0}});
  }
}

void Export(Session& session, const std::string& name) {
  if (name.empty() && session.GetOptions().json) {
    throw CLI::ValidationError(
        "export", "--json needs a file to export to, since both would go to standard output");
  }
  if (!session.OpenForReading()) {
    return;
  }
  Bytes file;
  const platform::RegistryError error = storage::WriteRegistryFile(session.GetRegistry(), file);
  if (error != platform::RegistryError::kNone) {
    session.Fail(session.ExplainStore(error));
  } else if (!(name.empty() ? WriteStandardOutput(file) : WriteRegistryFile(session, name, file))) {
    session.Fail(fmt::format("{}: it cannot be written", name.empty() ? "standard output" : name));
  } else {
    PrintDone(session);
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
  const auto parsed = storage::ParseRegistryFile(*file);
  if (const auto* const error = std::get_if<RegistryFileError>(&parsed)) {
    session.Fail(error->line == 0 ? fmt::format("{}: {}", name, error->message)
                                  : fmt::format("{}:{}: {}", name, error->line, error->message));
    return;
  }
  const auto& changes = std::get<std::vector<storage::RegistryChange>>(parsed);
  if (const auto error = storage::ApplyRegistryChanges(session.GetRegistry(), changes)) {
    // A file that was read to its end is right; what hinders its changes is the store.
    session.Fail(fmt::format("{}: {}", session.GetRegistryPath().native(), error->message));
  } else {
    PrintDone(session);
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
  command->add_option("file", *file, "The file to write (default: standard output)");
  command->callback([&session, file] { Export(session, *file); });

  command =
      group->add_subcommand("import", "Make all changes that a registry file asks for, or none");
  command->add_option("file", *file, "The file to read: version 5.00, UTF-16LE")->required();
  command->callback([&session, file] { Import(session, *file); });
}

}  // namespace cli

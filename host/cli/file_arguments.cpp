#include "host/cli/file_arguments.h"

#include <fmt/format.h>

#include <CLI/Error.hpp>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <system_error>

#include "backends/text/host_path.h"
#include "host/cli/system.h"
#include "host/session/explanations.h"
#include "platform/file_system.h"

// Files by name, and "-" for a standard stream. A stream is copied into a file of a temporary
// folder, because the readers need a length and any place of a file. The folder is readable by this
// user only and goes with the command.
namespace cli {
namespace {

namespace fs = std::filesystem;
using platform::Failure;
using platform::Result;

constexpr const char* kStandardInput = "standard input";
constexpr const char* kStandardOutput = "standard output";
constexpr std::size_t kPieceBytes = std::size_t{64} * 1024;

/// Gives each piece of `from` to `take`, until the end or until `take` returns false. Returns
/// whether all of it was read and taken.
template <typename Take>
bool EachPiece(std::FILE* from, Take take) {
  std::array<char, kPieceBytes> piece{};
  for (;;) {
    const std::size_t count = std::fread(piece.data(), 1, piece.size(), from);
    if (!take(std::span(piece).first(count))) {
      return false;
    }
    // The end of the stream, or an error. Only the stream knows which.
    if (count < piece.size()) {
      return std::ferror(from) == 0;
    }
  }
}

}  // namespace

std::unique_ptr<const TemporaryFolder> TemporaryFolder::Make() {
  const auto path = MakeTemporaryFolder();
  return path ? std::make_unique<const TemporaryFolder>(*path) : nullptr;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

FileArgument::FileArgument(std::unique_ptr<const TemporaryFolder> folder, const char* name)
    : m_folder(std::move(folder)),
      m_path(text::FromHostPath(m_folder->GetPath() / "stream")),
      m_name(name) {}

Result<FileArgument, std::string> FileArgument::MakeStream(const char* name) {
  auto folder = TemporaryFolder::Make();
  if (!folder) {
    return Failure(
        fmt::format("{}: there is no room for its bytes: no folder can be made for "
                    "temporary files",
                    name));
  }
  return FileArgument(std::move(folder), name);
}

// The stream is read before the command begins its work. So a pipe that breaks is reported as what
// it is, and no command sees half a file.
Result<FileArgument, std::string> FileArgument::ForReading(const std::string& name) {
  if (name != kStream) {
    return FileArgument(name);
  }
  auto made = MakeStream(kStandardInput);
  if (!made) {
    return made;
  }
  std::ofstream copy(text::ToHostPath(made->m_path), std::ios::binary);
  const bool isRead = EachPiece(stdin, [&copy](std::span<const char> piece) {
    return copy.write(piece.data(), static_cast<std::streamsize>(piece.size())).good();
  });
  copy.close();
  if (!isRead || copy.fail()) {
    return Failure(fmt::format("{}: it cannot be read to its end", kStandardInput));
  }
  return made;
}

Result<FileArgument, std::string> FileArgument::ForWriting(const std::string& name) {
  return name == kStream ? MakeStream(kStandardOutput) : FileArgument(name);
}

Result<FileArgument::Bytes, std::string> FileArgument::Read(Session& session,
                                                            std::uint64_t maxLength,
                                                            const char* kind) const {
  const auto file = session.GetFiles().Open(GetPath(), {});
  const auto length = file ? (*file)->GetLength() : Failure(file.error());
  if (!length) {
    return Failure(
        fmt::format("{}: {}", m_name, session::ExplainUnread(session.GetFiles(), GetPath())));
  }
  if (*length > maxLength) {
    return Failure(fmt::format("{}: it is too long for {}", m_name, kind));
  }
  Bytes bytes(static_cast<std::size_t>(*length));
  const auto read = (*file)->Read(bytes);
  if (!read || *read != bytes.size()) {
    return Failure(fmt::format("{}: it cannot be read", m_name));
  }
  return bytes;
}

void FileArgument::Send(Session& session) const {
  if (!IsStream()) {
    return;
  }
  std::ifstream file(text::ToHostPath(m_path), std::ios::binary);
  // A reader that goes away ends this process. The file has no name any more by then, so no
  // recording of a voice stays on the disk.
  std::error_code ignored;
  fs::remove(text::ToHostPath(m_path), ignored);
  bool isSent = file.is_open();
  for (std::array<char, kPieceBytes> piece{}; isSent && !file.eof();) {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    const auto count = static_cast<std::size_t>(file.gcount());
    isSent = !file.bad() && std::fwrite(piece.data(), 1, count, stdout) == count;
  }
  // Flushed here, where a failure can still be reported with the file's name.
  if (!isSent || std::fflush(stdout) != 0) {
    session.Fail(fmt::format("{}: it cannot be written", m_name));
  }
}

void RefuseStandardOutput(const Session& session, const std::string& name, const OutputKind& kind) {
  if (name != kStream) {
    return;
  }
  if (IsTerminal(Stream::kOutput)) {
    throw CLI::ValidationError(
        kind.command,
        fmt::format("a terminal cannot show {}; name a file, or send it to a program", kind.noun));
  }
  if (session.GetOptions().json) {
    throw CLI::ValidationError(
        kind.command,
        fmt::format("--json needs a file {}, since both would go to standard output", kind.verb));
  }
}

}  // namespace cli

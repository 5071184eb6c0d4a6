#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/session.h"
#include "platform/result.h"

namespace cli {

/// The name of a standard stream.
inline constexpr const char* kStream = "-";

/// A folder for temporary files that only this user may enter. It goes with the object.
class TemporaryFolder {
 public:
  /// Returns null if the folder cannot be made.
  [[nodiscard]] static std::unique_ptr<const TemporaryFolder> Make();

  explicit TemporaryFolder(std::filesystem::path path) : m_path(std::move(path)) {}
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& GetPath() const { return m_path; }

 private:
  const std::filesystem::path m_path;
};

/// A file that a command was given by its name. The name "-" means standard input for a file that
/// is read, and standard output for one that is written.
///
/// The readers and writers of files need more than a stream can do: they ask for the length, they
/// read from any place, they cut a recording, and they replace a file in one step. So the bytes of
/// a stream stand in a file of a temporary folder, which goes with the object.
class FileArgument {
 public:
  using Bytes = std::vector<std::byte>;

  /// Returns the file to read. Reads standard input to its end if `name` is "-". The error is a
  /// sentence.
  [[nodiscard]] static platform::Result<FileArgument, std::string> ForReading(
      const std::string& name);

  /// Returns the file to write. If `name` is "-", the command calls Send after it has written the
  /// file. The error is a sentence.
  [[nodiscard]] static platform::Result<FileArgument, std::string> ForWriting(
      const std::string& name);

  /// Returns what messages call the file.
  [[nodiscard]] const std::string& GetName() const { return m_name; }
  /// Returns its path on this machine.
  [[nodiscard]] const std::string& GetHostPath() const { return m_path; }
  /// Returns its path as the system's files know it.
  [[nodiscard]] std::u16string GetPath() const { return Session::ToSystemPath(m_path); }
  [[nodiscard]] bool IsStream() const { return m_folder != nullptr; }

  /// Returns the whole file. The error is a sentence with the file's name. It calls the file `kind`
  /// ("a language file") if that is longer than `maxLength` bytes.
  [[nodiscard]] platform::Result<Bytes, std::string> Read(Session& session, std::uint64_t maxLength,
                                                          const char* kind) const;

  /// Writes the file to standard output if it stands for that. Does nothing otherwise. Reports a
  /// failure.
  void Send(Session& session) const;

 private:
  explicit FileArgument(const std::string& name) : m_path(name), m_name(name) {}
  FileArgument(std::unique_ptr<const TemporaryFolder> folder, const char* name);

  [[nodiscard]] static platform::Result<FileArgument, std::string> MakeStream(const char* name);

  std::unique_ptr<const TemporaryFolder> m_folder;  ///< Of a stream; else null.
  std::string m_path;
  std::string m_name;
};

/// What a command writes: for its messages.
struct OutputKind {
  const char* command;  ///< "export"
  const char* noun;     ///< "a registry file"
  const char* verb;     ///< "to export to"
};

/// Throws a wrong usage if `name` is "-" and standard output must not get the file: a terminal
/// cannot show it, and with --json two things would go to one stream.
void RefuseStandardOutput(const Session& session, const std::string& name, const OutputKind& kind);

}  // namespace cli

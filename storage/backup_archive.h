#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/result.h"
#include "storage/registry_file.h"
#include "storage/tar.h"

namespace storage {

// A backup is a tar archive, which any tool unpacks. Its members, in this order:
//
//   about.txt                  "Voxtrel backup 1", and when it was made
//   settings/NAME.reg          settings, as registry files: connection, mathematics, contacts
//   language.lng               the language file
//   tags/TAG/entry.reg         for each tag its entry, as a registry file,
//   tags/TAG/recording.wav     its recording,
//   tags/TAG/template.st       and its template
//   checksums.sfv              the CRC-32 of each member before it, in hexadecimal digits
//
// All but the first and the last may be missing. The last one says that the archive is whole.

/// Settings that a backup holds: each is a key with all that is below it.
enum class BackupSettings : std::uint8_t { kConnection, kMathematics, kContacts };

/// Returns the key that holds these settings.
[[nodiscard]] std::u16string_view KeyOf(BackupSettings settings);

/// Writes a backup into a file, member by member. Used by one thread.
class BackupWriter {
 public:
  using Written = platform::Result<void, platform::FileError>;

  /// `file` is open for writing, is empty, and outlives this.
  explicit BackupWriter(platform::File& file) : m_tar(file) {}

  /// The first call. `unixTime` is in seconds, UTC.
  [[nodiscard]] Written Begin(std::int64_t unixTime);

  [[nodiscard]] Written AddSettings(BackupSettings settings, std::span<const std::byte> file);
  [[nodiscard]] Written AddLanguageFile(platform::File& source);

  /// Returns whether an archive has room for the name of this tag. Those of the applet all fit.
  [[nodiscard]] static bool Fits(std::u16string_view tagName);
  /// Begins a tag, whose name fits. Its files follow.
  [[nodiscard]] Written AddEntry(std::u16string_view tagName, std::span<const std::byte> file);
  [[nodiscard]] Written AddRecording(std::u16string_view tagName, platform::File& source);
  [[nodiscard]] Written AddTemplate(std::u16string_view tagName, platform::File& source);

  /// Ends the archive. This is the last call.
  [[nodiscard]] Written End();

 private:
  [[nodiscard]] Written Add(const std::string& member, std::span<const std::byte> bytes);
  [[nodiscard]] Written AddFile(const std::string& member, platform::File& source);

  TarWriter m_tar;
  std::string m_checksums;
};

/// The place of a member's bytes in the archive.
struct BackupMember {
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
};

struct BackupTag {
  std::u16string name;
  std::vector<RegistryChange> entry;  ///< Makes the tag's key and what is in it, and nothing else.
  std::optional<BackupMember> recording;
  std::optional<BackupMember> voiceTemplate;
};

/// What a backup holds. The archive stays open for the members.
struct BackupContents {
  std::map<BackupSettings, std::vector<RegistryChange>> settings;
  std::optional<BackupMember> languageFile;
  std::vector<BackupTag> tags;
};

/// Why a file is not taken as a backup.
enum class BackupFault : std::uint8_t {
  kUnread,   ///< It cannot be read now.
  kForeign,  ///< It is something else.
  kNewer,    ///< A later version of the program made it.
  kDamaged,  ///< It is torn or changed, or holds what no backup does.
};

/// Reads a backup to its end. Refuses it as a whole if anything in it is not as BackupWriter writes
/// it: so no path leads out of its folder, no change out of its key, and no name occurs twice.
[[nodiscard]] platform::Result<BackupContents, BackupFault> ReadBackup(platform::File& archive);

/// Returns whether a file begins as a backup does.
[[nodiscard]] platform::Result<bool, platform::FileError> LooksLikeBackup(platform::File& file);

/// Appends the member's bytes to `to`. Fails with kOther if they cannot be read.
[[nodiscard]] platform::Result<void, platform::FileError> CopyMember(platform::File& archive,
                                                                     const BackupMember& member,
                                                                     platform::File& to);

/// Returns whether `file` holds just the member's bytes.
[[nodiscard]] platform::Result<bool, platform::FileError> IsSameAsMember(platform::File& archive,
                                                                         const BackupMember& member,
                                                                         platform::File& file);

}  // namespace storage

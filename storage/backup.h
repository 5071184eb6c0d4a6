#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/result.h"

namespace storage {

/// What of the store goes into a backup.
enum class BackupScope : std::uint8_t {
  kAll,
  kSettings,  ///< No tags.
};

struct BackupMade {
  std::size_t tagCount = 0;
  /// Tags of another program, whose names or entries no backup can hold.
  std::vector<std::u16string> leftOut;
};

/// Why no backup was made.
struct BackupFailure {
  enum class Kind : std::uint8_t {
    kTag,       ///< A file of `tag` cannot be read, or is in use.
    kLanguage,  ///< The same for the language file.
    kSettings,  ///< `store` is what the registry answered.
    kTarget,    ///< `file` is why the backup cannot be written.
  };

  Kind kind = Kind::kTarget;
  std::u16string tag;
  platform::RegistryError store = platform::RegistryError::kOther;
  platform::FileError file = platform::FileError::kOther;
};

/// Writes everything that was taught into one file at `path`, which replaces what is there in one
/// step: recordings, templates, entries, the language file, the settings of the connection, the
/// version of the mathematics, and the numbers of contacts. A caller holds the mutex of the
/// Learning page, so that no tag changes meanwhile. If it fails, whatever was at `path` is still
/// there.
[[nodiscard]] platform::Result<BackupMade, BackupFailure> WriteBackup(platform::FileSystem& files,
                                                                      platform::Registry& registry,
                                                                      platform::Clock& clock,
                                                                      std::u16string_view path,
                                                                      BackupScope scope);

/// What is at the path that a backup is to be written to.
enum class BackupTarget : std::uint8_t { kNothing, kBackup, kOther };

/// A file that cannot be read counts as kOther.
[[nodiscard]] BackupTarget LookAtBackupTarget(platform::FileSystem& files,
                                              std::u16string_view path);

}  // namespace storage

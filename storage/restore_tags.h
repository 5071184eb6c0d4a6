#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "storage/restore.h"

namespace storage {

// The tags of a restoration, and what they share with its other parts.

struct RestoreParts {
  platform::FileSystem& files;
  platform::Registry& registry;
  platform::File& archive;
  const BackupContents& backup;
  const RestorePlan& plan;
  const TagTrash trash;
};

/// Done, or why not.
using Put = platform::Result<void, RestoreFate>;

[[nodiscard]] RestoreFate FateOf(platform::FileError error);

/// Makes all changes or none.
[[nodiscard]] Put PutSettings(platform::Registry& registry,
                              std::span<const RegistryChange> changes);

/// Makes or replaces a file in one step. Does nothing if the backup has no such member.
[[nodiscard]] Put PutFile(const RestoreParts& parts, std::u16string_view path,
                          const std::optional<BackupMember>& member);

/// Returns what became of each tag of the plan. `getText` is that of Restore.
[[nodiscard]] std::vector<RestoreFate> RestoreTags(
    const RestoreParts& parts, Replacing replacing,
    const std::function<std::u16string(std::u16string_view)>& getText);

}  // namespace storage

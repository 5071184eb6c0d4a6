#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/result.h"

namespace storage {

/// What a tag consists of in the store. A file that belongs to no tag has no entry.
struct TagParts {
  std::u16string name;          ///< Of the tag, or of the files less their extension.
  std::u16string waveFile;      ///< Name in the wave folder as it is spelled there. Empty for none.
  std::u16string templateFile;  ///< The same in the template folder.
  bool hasEntry = false;
};

/// Which part of the store could not be read.
enum class Unread : std::uint8_t { kFolder, kRegistry };

/// Returns what the store holds under the name of a tag.
[[nodiscard]] platform::Result<TagParts, Unread> FindParts(platform::FileSystem& files,
                                                           platform::Registry& registry,
                                                           std::u16string_view name);

/// How much of some parts the store holds.
enum class PartsState : std::uint8_t { kWhole, kPartly, kGone };

[[nodiscard]] platform::Result<PartsState, Unread> GetState(platform::FileSystem& files,
                                                            platform::Registry& registry,
                                                            const TagParts& parts);

/// Everything that the store holds, one element for each name.
struct StoreContents {
  std::vector<TagParts> tags;      ///< In the order of the registry.
  std::vector<TagParts> orphans;   ///< Files of no tag, with what a killed process left.
  std::size_t unusableKeys = 0;    ///< Keys among the tags that no path can name.
  std::size_t failedSearches = 0;  ///< Searches that did not come to their end, of four.
};

/// Returns what the store holds. A folder that cannot be read to its end is counted, and the rest
/// is listed. That is not the same as an empty folder. Fails if the registry cannot be read to its
/// end, since nobody knows then which files belong to a tag.
[[nodiscard]] platform::Result<StoreContents, platform::RegistryError> ListStore(
    platform::FileSystem& files, platform::Registry& registry);

}  // namespace storage

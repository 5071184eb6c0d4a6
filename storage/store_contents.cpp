#include "storage/store_contents.h"

#include <map>
#include <utility>

#include "backends/text/names.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"

// What there is in the store, whoever made it: entries, recordings, templates, and which of them
// belong together. Nothing here judges or repairs. The trash, the backups and the check of the
// store all begin with this list.
namespace storage {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

namespace {

/// Returns the name by which the file at `path` is spelled. Returns an empty one if it is missing
/// or a folder.
Result<std::u16string, Unread> FindSpelledName(platform::FileSystem& files,
                                               const std::u16string& path) {
  const auto search = files.Find(path);
  if (!search) {
    return search.error() == FileError::kNotFound
               ? Result<std::u16string, Unread>()
               : Result<std::u16string, Unread>(Failure(Unread::kFolder));
  }
  auto found = (*search)->Next();
  if (!found) {
    return Failure(Unread::kFolder);
  }
  return *found && !(*found)->isFolder ? std::move((*found)->name) : std::u16string();
}

/// Gathers the parts of each name from the registry and from the folders. The name of an entry and
/// the name of a file may be spelled differently and still mean one tag, since letter case counts
/// for nothing on the device. So parts are found by their folded name, and keep the place in which
/// their first part came.
class Gathering {
 public:
  explicit Gathering(platform::FileSystem& files) : m_files(files) {}

  void AddTags(const std::vector<std::u16string>& names) {
    for (const std::u16string& name : names) {
      Get(name).hasEntry = true;
    }
  }

  /// Returns false if the folder could not be read to its end.
  [[nodiscard]] bool AddFiles(std::u16string_view folder, std::u16string_view pattern,
                              std::u16string TagParts::*part, std::size_t extension) {
    const auto search = m_files.Find(PathIn(folder, pattern));
    if (!search) {
      return search.error() == FileError::kNotFound;
    }
    bool isWhole = true;
    // A step that fails is noted, and the search goes on: what else there is shall be known.
    for (auto found = (*search)->Next(); !found || *found; found = (*search)->Next()) {
      if (!found) {
        isWhole = false;
      } else if (!(*found)->isFolder) {
        const std::u16string& file = (*found)->name;
        Get(file.substr(0, file.size() - extension)).*part = file;
      }
    }
    return isWhole;
  }

  void MoveTo(StoreContents& contents) {
    for (TagParts& parts : m_parts) {
      (parts.hasEntry ? contents.tags : contents.orphans).push_back(std::move(parts));
    }
  }

 private:
  TagParts& Get(const std::u16string& name) {
    const auto [place, isNew] = m_places.try_emplace(text::FoldName(name), m_parts.size());
    if (isNew) {
      m_parts.push_back({.name = name, .waveFile = {}, .templateFile = {}});
    }
    return m_parts[place->second];
  }

  platform::FileSystem& m_files;
  std::vector<TagParts> m_parts;
  std::map<std::u16string, std::size_t> m_places;
};

}  // namespace

Result<TagParts, Unread> FindParts(platform::FileSystem& files, platform::Registry& registry,
                                   std::u16string_view name) {
  auto waveFile = FindSpelledName(files, WavePath(name));
  if (!waveFile) {
    return Failure(waveFile.error());
  }
  auto templateFile = FindSpelledName(files, TemplatePath(name));
  if (!templateFile) {
    return Failure(templateFile.error());
  }
  const platform::OpenedKey entry = registry.OpenKey(EntryPath(name));
  // A name that no key can have has no entry.
  if (!entry && entry.error() != RegistryError::kNotFound &&
      entry.error() != RegistryError::kInvalid) {
    return Failure(Unread::kRegistry);
  }
  return TagParts{std::u16string(name), std::move(*waveFile), std::move(*templateFile),
                  entry.has_value()};
}

Result<PartsState, Unread> GetState(platform::FileSystem& files, platform::Registry& registry,
                                    const TagParts& parts) {
  std::size_t wanted = 0;
  std::size_t there = 0;
  // Counts the parts that there should be and those that are there. Returns false if the folder
  // does not say.
  const auto look = [&](std::u16string_view folder, const std::u16string& file) {
    if (file.empty()) {
      return true;
    }
    const auto search = files.Find(PathIn(folder, file));
    ++wanted;
    there += search ? 1U : 0U;
    return search || search.error() == FileError::kNotFound;
  };
  if (!look(kWaveFolder, parts.waveFile) || !look(kTemplateFolder, parts.templateFile)) {
    return Failure(Unread::kFolder);
  }
  if (parts.hasEntry) {
    const platform::OpenedKey entry = registry.OpenKey(EntryPath(parts.name));
    if (!entry && entry.error() != RegistryError::kNotFound) {
      return Failure(Unread::kRegistry);
    }
    ++wanted;
    there += entry ? 1U : 0U;
  }
  if (there == 0) {
    return PartsState::kGone;
  }
  return there == wanted ? PartsState::kWhole : PartsState::kPartly;
}

Result<StoreContents, RegistryError> ListStore(platform::FileSystem& files,
                                               platform::Registry& registry) {
  const auto list = TagStore(files, registry).ListNames();
  if (!list) {
    return Failure(list.error());
  }
  // The files that a killed process left half-written belong to no tag. They have no extension.
  const std::u16string unfinished = std::u16string(platform::kUnfinishedPrefix) + u"*";
  const struct {
    std::u16string_view folder;
    std::u16string pattern;
    std::u16string TagParts::*part;
    std::size_t extension;
  } searches[] = {
      {kWaveFolder, u"*" + std::u16string(kWaveExtension), &TagParts::waveFile,
       kWaveExtension.size()},
      {kTemplateFolder, u"*" + std::u16string(kTemplateExtension), &TagParts::templateFile,
       kTemplateExtension.size()},
      {kWaveFolder, unfinished, &TagParts::waveFile, 0},
      {kTemplateFolder, unfinished, &TagParts::templateFile, 0},
  };
  StoreContents contents;
  contents.unusableKeys = list->passedOver;
  Gathering gathering(files);
  gathering.AddTags(list->names);
  for (const auto& search : searches) {
    const bool isWhole =
        gathering.AddFiles(search.folder, search.pattern, search.part, search.extension);
    contents.failedSearches += isWhole ? 0U : 1U;
  }
  gathering.MoveTo(contents);
  return contents;
}

}  // namespace storage

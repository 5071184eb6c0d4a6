#include "storage/store_contents.h"

#include <algorithm>
#include <map>
#include <utility>

#include "backends/text/names.h"
#include "storage/device_paths.h"
#include "storage/tag_store.h"

namespace storage {

using platform::FileError;

namespace {

/// Gathers the parts of each name. Letter case counts for nothing, as on the device.
class Gathering {
 public:
  explicit Gathering(platform::FileSystem& files) : m_files(files) {}

  void AddTags(const std::vector<std::u16string>& names) {
    for (const std::u16string& name : names) {
      Get(name).hasEntry = true;
    }
  }

  /// Returns false if the folder could not be read to its end.
  bool AddFiles(std::u16string_view folder, std::u16string_view pattern,
                std::u16string TagParts::*part, std::size_t extension) {
    const std::u16string path = std::u16string(folder).append(u"\\").append(pattern);
    const auto search = m_files.Find(path);
    if (!search) {
      return search.error() == FileError::kNotFound;
    }
    bool isWhole = true;
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

/// Copies everything into the trash. Returns false if that failed; the store is untouched.
bool KeepAll(Deletion& deletion, const std::vector<TagParts>& all,
             const std::function<std::u16string(std::u16string_view)>& getText,
             const std::function<void(DeletionProblem)>& report, int& destroyedCount) {
  for (const TagParts& parts : all) {
    switch (deletion.Keep(parts, parts.hasEntry ? getText(parts.name) : std::u16string())) {
      case ItemResult::kDone:
        break;
      case ItemResult::kFull:
        ++destroyedCount;
        break;
      case ItemResult::kRecordingInUse:
      case ItemResult::kTemplateInUse:
      case ItemResult::kEntryUnread:
        report(DeletionProblem::kFileInUse);
        return false;
      case ItemResult::kFailed:
        report(DeletionProblem::kNotKept);
        return false;
    }
  }
  if (!deletion.Seal()) {
    report(DeletionProblem::kNotKept);
    return false;
  }
  return true;
}

/// Deletes the entries, and the tag key unless it holds what no copy could be made of.
bool DeleteEntries(const TagStore& store, const StoreContents& contents) {
  if (contents.unusableKeys == 0) {
    return store.DeleteAllEntries().has_value();
  }
  return std::ranges::all_of(contents.tags, [&store](const TagParts& parts) {
    return store.DeleteEntry(parts.name).has_value();
  });
}

}  // namespace

ListResult ListStore(platform::FileSystem& files, platform::Registry& registry,
                     StoreContents& contents, const std::function<void()>& searchFailed) {
  const auto list = TagStore(files, registry).ListNames();
  if (!list) {
    return ListResult::kNoEntries;
  }
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
  Gathering gathering(files);
  gathering.AddTags(list->names);
  contents.unusableKeys = list->passedOver;
  ListResult result = ListResult::kDone;
  for (const auto& search : searches) {
    if (!gathering.AddFiles(search.folder, search.pattern, search.part, search.extension)) {
      searchFailed();
      result = ListResult::kSearchFailed;
    }
  }
  gathering.MoveTo(contents);
  return result;
}

DeletedAll DeleteAllTags(platform::FileSystem& files, platform::Registry& registry,
                         const TagTrash& trash,
                         const std::function<std::u16string(std::u16string_view)>& getText,
                         const std::function<void(DeletionProblem)>& report) {
  StoreContents contents;
  const ListResult listed =
      ListStore(files, registry, contents, [&report] { report(DeletionProblem::kSearchFailed); });
  if (listed != ListResult::kDone) {
    if (listed == ListResult::kNoEntries) {
      report(DeletionProblem::kFileInUse);
    }
    return {};
  }
  std::vector<TagParts> all = contents.tags;
  all.insert(all.end(), contents.orphans.begin(), contents.orphans.end());
  Deletion deletion(trash, DeletionReason::kDeleteAll);
  DeletedAll outcome;
  if (!KeepAll(deletion, all, getText, report, outcome.destroyedCount)) {
    return {};
  }
  // All recordings, then all templates, then the entries: a companion sees no entry go before both
  // its files.
  const auto deleteFiles = [&](std::u16string_view folder, std::u16string TagParts::*part) {
    for (const TagParts& parts : all) {
      if ((parts.*part).empty()) {
        continue;
      }
      const auto deleted = files.Delete(std::u16string(folder).append(u"\\").append(parts.*part));
      if (!deleted && deleted.error() != FileError::kNotFound) {
        report(DeletionProblem::kFileInUse);
      }
    }
  };
  deleteFiles(kWaveFolder, &TagParts::waveFile);
  deleteFiles(kTemplateFolder, &TagParts::templateFile);
  outcome.isDone = DeleteEntries(TagStore(files, registry), contents);
  if (!outcome.isDone) {
    report(DeletionProblem::kFileInUse);
  }
  return outcome;
}

StaleDeletion DeleteStaleTag(platform::FileSystem& files, platform::Registry& registry,
                             Deletion& deletion, std::u16string_view tagName) {
  TagParts parts;
  const bool isFound = FindParts(files, registry, tagName, parts);
  switch (isFound ? deletion.Keep(parts, tagName) : ItemResult::kFailed) {
    case ItemResult::kDone:
      break;
    case ItemResult::kRecordingInUse:
      return StaleDeletion::kRecordingInUse;
    case ItemResult::kTemplateInUse:
      return StaleDeletion::kTemplateInUse;
    case ItemResult::kEntryUnread:
    case ItemResult::kFull:
    case ItemResult::kFailed:
      return StaleDeletion::kNotKept;
  }
  if (!deletion.Seal()) {
    return StaleDeletion::kNotKept;
  }
  switch (TagStore(files, registry).Delete(tagName)) {
    case TagDeletion::kDone:
      return StaleDeletion::kDone;
    case TagDeletion::kWaveFailed:
      return StaleDeletion::kRecordingInUse;
    case TagDeletion::kTemplateFailed:
      return StaleDeletion::kTemplateInUse;
    case TagDeletion::kEntryFailed:
      break;
  }
  return StaleDeletion::kEntryFailed;
}

std::vector<std::u16string> DeleteOrphans(platform::FileSystem& files, platform::Registry& registry,
                                          const TagTrash& trash) {
  StoreContents contents;
  // Without all entries nobody knows which files have none; a folder that cannot be read hides
  // orphans alone.
  if (ListStore(files, registry, contents, [] {}) == ListResult::kNoEntries) {
    return {};
  }
  Deletion deletion(trash, DeletionReason::kRepair);
  std::erase_if(contents.orphans, [&deletion](const TagParts& parts) {
    return deletion.Keep(parts, {}) != ItemResult::kDone;
  });
  if (!deletion.Seal()) {
    return {};
  }
  std::vector<std::u16string> names;
  for (const TagParts& parts : contents.orphans) {
    if (trash.DeleteParts(parts)) {
      names.push_back(parts.name);
    }
  }
  return names;
}

}  // namespace storage

#include <algorithm>
#include <utility>

#include "backends/text/names.h"
#include "language/texts.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/restore.h"
#include "storage/tag_record.h"

// Compares a backup with what is here, and changes nothing. Each tag is new, the same, different,
// or of a contact that nobody here knows. The user is asked once, about all that differs. The
// restoration then does what the plan says and compares nothing again.
namespace storage {

using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

/// Of a registry, or of a file that cannot be read now.
using IsSame = Result<bool, platform::RegistryError>;

/// Returns whether the registry holds each key and value that the changes make.
IsSame HoldsAll(platform::Registry& registry, std::span<const RegistryChange> changes) {
  for (const RegistryChange& change : changes) {
    const platform::OpenedKey key = registry.OpenKey(change.key);
    if (!key && key.error() == platform::RegistryError::kNotFound) {
      return false;
    }
    if (!key) {
      return Failure(key.error());
    }
    if (change.kind != RegistryChange::Kind::kSetValue) {
      continue;
    }
    const auto value = (*key)->Query(change.valueName);
    if (!value && value.error() != platform::RegistryError::kNotFound) {
      return Failure(value.error());
    }
    if (!value || value->type != change.value.type || value->bytes != change.value.bytes) {
      return false;
    }
  }
  return true;
}

/// Gives the entry the number that its contact has here. Returns false if it has none. An entry
/// that names no contact stays as it is.
bool Translate(std::vector<RegistryChange>& entry, const ContactHere& contactHere) {
  for (RegistryChange& change : entry) {
    // Contacts have other numbers in each address book, so a backup has the number that was used
    // on its machine. The caller knows who it was.
    const bool isContact = change.kind == RegistryChange::Kind::kSetValue &&
                           text::SameName(change.valueName, kContactValue);
    const auto oid = isContact ? ParseOid(TextOfValue(change.value)) : std::nullopt;
    if (!oid) {
      continue;
    }
    const auto here = contactHere(*oid);
    if (!here) {
      return false;
    }
    // An entry that needs no change keeps its bytes, and so compares as the same.
    if (*here != *oid) {
      change.value = {platform::RegistryType::kString, ToTagValue(language::Decimal(*here))};
    }
  }
  return true;
}

class Comparison {
 public:
  Comparison(platform::FileSystem& files, platform::Registry& registry, platform::File& archive)
      : m_files(files), m_registry(registry), m_archive(archive) {}

  Result<RestoreState, FileError> CompareFile(const std::u16string& path,
                                              const BackupMember& member) {
    const auto file = m_files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                          platform::FileCreation::kOpenExisting});
    if (!file && file.error() == FileError::kNotFound) {
      return RestoreState::kNew;
    }
    if (!file) {
      return Failure(file.error());
    }
    return IsSameAsMember(m_archive, member, **file).map([](bool isSame) {
      return isSame ? RestoreState::kSame : RestoreState::kDifferent;
    });
  }

  /// Compares a tag whose entry has the contact's number of this store.
  Result<RestoreState, FileError> CompareTag(const BackupTag& tag, const PlannedTag& planned) {
    const auto recording = ComparePart(planned.here.waveFile, WavePath(tag.name), tag.recording);
    const auto voice =
        ComparePart(planned.here.templateFile, TemplatePath(tag.name), tag.voiceTemplate);
    if (!recording || !voice) {
      return Failure(!recording ? recording.error() : voice.error());
    }
    if (*recording == RestoreState::kDifferent || *voice == RestoreState::kDifferent) {
      return RestoreState::kDifferent;
    }
    // What lies here without an entry and is the same is no other tag.
    if (!planned.here.hasEntry) {
      return RestoreState::kNew;
    }
    const IsSame entry = HoldsAll(m_registry, planned.entry);
    if (!entry) {
      return Failure(FileError::kOther);
    }
    // A whole tag is the same only if each of its three parts is there and the same.
    const bool isSame =
        *entry && *recording == RestoreState::kSame && *voice == RestoreState::kSame;
    return isSame ? RestoreState::kSame : RestoreState::kDifferent;
  }

 private:
  /// A part that neither side has is the same.
  Result<RestoreState, FileError> ComparePart(const std::u16string& here,
                                              const std::u16string& path,
                                              const std::optional<BackupMember>& member) {
    if (!member) {
      return here.empty() ? RestoreState::kSame : RestoreState::kDifferent;
    }
    return CompareFile(path, *member);
  }

  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  platform::File& m_archive;
};

}  // namespace

Result<RestorePlan, std::u16string> PlanRestore(platform::FileSystem& files,
                                                platform::Registry& registry,
                                                platform::File& archive,
                                                const BackupContents& backup,
                                                const ContactHere& contactHere) {
  Comparison comparison(files, registry, archive);
  RestorePlan plan;
  for (std::size_t i = 0; i < backup.tags.size(); ++i) {
    const BackupTag& tag = backup.tags[i];
    PlannedTag planned{.index = i, .entry = tag.entry, .here = {}};
    auto here = FindParts(files, registry, tag.name);
    if (!here) {
      return Failure(tag.name);
    }
    planned.here = std::move(*here);
    if (Translate(planned.entry, contactHere)) {
      const auto state = comparison.CompareTag(tag, planned);
      if (!state) {
        return Failure(tag.name);
      }
      planned.state = *state;
    } else {
      planned.state = RestoreState::kContactElsewhere;
    }
    plan.tags.push_back(std::move(planned));
  }
  const auto connection = backup.settings.find(BackupSettings::kConnection);
  if (connection != backup.settings.end()) {
    const platform::OpenedKey here = registry.OpenKey(kDialerKey);
    const IsSame isSame = HoldsAll(registry, connection->second);
    if (!isSame || (!here && here.error() != platform::RegistryError::kNotFound)) {
      return Failure(std::u16string());
    }
    plan.connection = *isSame ? RestoreState::kSame
                      : here  ? RestoreState::kDifferent
                              : RestoreState::kNew;
  }
  if (backup.languageFile) {
    const auto state = comparison.CompareFile(std::u16string(kLanguageFile), *backup.languageFile);
    if (!state) {
      return Failure(std::u16string());
    }
    plan.languageFile = *state;
  }
  return plan;
}

}  // namespace storage

#include "maintenance/store_check.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <optional>
#include <span>

#include "backends/text/names.h"
#include "maintenance/math_version.h"
#include "storage/device_paths.h"
#include "storage/phone_types.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "voicemath/recording_review.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

// The check of the store reads everything and believes nothing: each template is computed again
// from its recording. So a template of another recording is found too, and the check takes as long
// as computing all of them.
namespace maintenance {
namespace {

using platform::FileError;
using platform::RegistryError;

// Slots of the mathematics.
constexpr std::int32_t kComputedSlot = 0;
constexpr std::int32_t kStoredSlot = 1;

/// Returns whether this is a decimal number, with a sign only if it is negative, and short enough
/// for the applet to keep.
bool IsTagName(std::u16string_view name) {
  constexpr std::size_t kMostUnits = std::tuple_size_v<decltype(storage::TagRecord::tagName)> - 1;
  const std::u16string_view digits = name.substr(name.starts_with(u'-') ? 1 : 0);
  return !digits.empty() && name.size() <= kMostUnits &&
         std::ranges::all_of(digits, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

/// Compares bits and not numbers. So a NaN equals itself, and 0 differs from -0.
bool AreSameBits(std::span<const float> a, std::span<const float> b) {
  return std::ranges::equal(
      a, b, {}, [](float value) { return std::bit_cast<std::uint32_t>(value); },
      [](float value) { return std::bit_cast<std::uint32_t>(value); });
}

/// One run of the check. The order of its steps is the order of the findings.
///
/// A template is checked by computing it again from the recording and comparing the bits. So a
/// template of another recording, or of another version of the mathematics, is found too.
class Checker {
 public:
  Checker(const platform::Platform& platform, ContactsState contacts)
      : m_platform(platform),
        m_contacts(contacts),
        m_store(platform.files, platform.registry),
        m_mathematics(platform.files, platform.ui) {}

  std::vector<StoreFinding> Run() {
    ReadTags();
    if (!m_tags.empty()) {
      CheckVersion();
    }
    // Each tag is finished before the next one, so all that concerns one tag stands together.
    for (const std::u16string& tag : m_tags) {
      CheckEntry(tag);
      CheckFiles(tag);
    }
    // What belongs to no tag comes last.
    CheckFolder(storage::kWavePattern, storage::kWaveExtension, StoreProblem::kRecordingWithoutTag);
    CheckFolder(storage::kTemplatePattern, storage::kTemplateExtension,
                StoreProblem::kTemplateWithoutTag);
    for (const std::u16string_view folder : {storage::kWaveFolder, storage::kTemplateFolder}) {
      CheckFolder(
          std::u16string(folder) + u"\\" + std::u16string(platform::kUnfinishedPrefix) + u"*", {},
          StoreProblem::kUnfinishedFile);
    }
    return std::move(m_findings);
  }

 private:
  void Report(StoreProblem problem, std::u16string_view tag = {}) {
    m_findings.push_back({problem, std::u16string(tag), {}});
  }

  void ReadTags() {
    const platform::OpenedKey tags = m_platform.registry.OpenKey(storage::kTagKey);
    // Not TagStore::ListNames, which is content with the names that paths can have: here each key
    // counts, odd ones too.
    auto name = tags ? (*tags)->EnumerateSubkey(0) : platform::Failure(tags.error());
    for (std::uint32_t i = 1; name && *name; name = (*tags)->EnumerateSubkey(i++)) {
      m_tags.push_back(std::move(**name));
    }
    // A store without the key is new, and no tag is missing in it.
    if (!name && name.error() != RegistryError::kNotFound) {
      Report(StoreProblem::kRegistryUnreadable);
      m_hasAllTags = false;
    }
    if (m_tags.size() > static_cast<std::size_t>(storage::kMaxTags)) {
      Report(StoreProblem::kTooManyTags);
    }
  }

  void CheckVersion() {
    const RecordedVersion version = ReadVersion(m_platform.registry);
    if (version == RecordedVersion::kMissing || version == RecordedVersion::kOther) {
      Report(StoreProblem::kOtherVersion);
    }
  }

  void CheckEntry(const std::u16string& tag) {
    if (!IsTagName(tag)) {
      Report(StoreProblem::kTagName, tag);
    }
    const auto entry = m_store.ReadEntry(tag);
    if (!entry) {
      Report(StoreProblem::kRegistryUnreadable, tag);
      return;
    }
    if (!entry->oid) {
      Report(StoreProblem::kContact, tag);
      // Contacts that are away know nobody, and that is no fault of the tag.
    } else if (m_contacts == ContactsState::kOpen) {
      const auto contact = m_platform.contacts.GetItemFromOid(*entry->oid);
      if (!contact && contact.error() == platform::ContactsError::kAbsent) {
        Report(StoreProblem::kContactGone, tag);
      }
    }
    if (!storage::FindPhoneType(entry->phoneType)) {
      Report(StoreProblem::kPhoneType, tag);
    }
  }

  /// Compares the stored template with the one that the recording gives. If there is no recording
  /// to compare with, the template is only read.
  void CheckFiles(const std::u16string& tag) {
    // The template of the recording is in kComputedSlot now, and the stored one goes next to it.
    const bool hasRecording = CheckRecording(tag);
    m_mathematics.m_loadSlot = kStoredSlot;
    const std::u16string path = storage::TemplatePath(tag);
    const auto read = voicemath::ReadTemplateFile(m_platform.files, path, m_mathematics);
    if (read) {
      if (hasRecording && !AreSameBits(m_mathematics.GetTemplate(kComputedSlot),
                                       m_mathematics.GetTemplate(kStoredSlot))) {
        // A loss of power can leave a file of zeros, which holds no frames and is nobody's.
        Report(m_mathematics.GetTemplate(kStoredSlot).empty() ? StoreProblem::kTemplateTorn
                                                              : StoreProblem::kTemplateStale,
               tag);
      }
      return;
    }
    using enum voicemath::TemplateFileError;
    switch (read.error()) {
      case kTorn:
        Report(StoreProblem::kTemplateTorn, tag);
        break;
      case kBadFormat:
        Report(StoreProblem::kTemplateContradicting, tag);
        break;
      // The reader says only that the file was not opened. Whether it is missing or forbidden, the
      // folder knows.
      default:
        Report(Exists(path) ? StoreProblem::kTemplateUnreadable : StoreProblem::kNoTemplate, tag);
        break;
    }
  }

  /// Computes the template of the recording. Returns false if the recording gives none.
  [[nodiscard]] bool CheckRecording(const std::u16string& tag) {
    m_mathematics.m_wavePath = storage::WavePath(tag);
    if (!Exists(m_mathematics.m_wavePath)) {
      Report(StoreProblem::kNoRecording, tag);
      return false;
    }
    // What the review finds odd about a good recording, such as its loudness, is no fault of the
    // store and is not asked for here.
    const auto review = voicemath::ReviewRecording(m_mathematics, false);
    if (review && (review->isEmpty || review->hasNoFrame)) {
      Report(StoreProblem::kRecordingEmpty, tag);
      return false;
    }
    if (review && review->isConstant) {
      Report(StoreProblem::kRecordingSilent, tag);
    }
    // ReadFile and not LearnFile, which would trim the recording: a check changes nothing.
    if (m_mathematics.ReadFile(kComputedSlot) != voicemath::kLearned) {
      Report(StoreProblem::kRecordingUnreadable, tag);
      return false;
    }
    return true;
  }

  [[nodiscard]] bool Exists(std::u16string_view path) {
    // If the search fails in another way, opening the file will show what is wrong.
    const auto search = m_platform.files.Find(path);
    return search || search.error() != FileError::kNotFound;
  }

  /// Reports each file of the pattern that belongs to no tag. It belongs to the tag that has its
  /// name without the extension, in upper or lower case.
  void CheckFolder(std::u16string_view pattern, std::u16string_view extension,
                   StoreProblem problem) {
    if (!m_hasAllTags) {
      return;  // Without all tags nobody knows which files have none.
    }
    const std::u16string_view folder = pattern.substr(0, pattern.rfind(u'\\'));
    const auto search = m_platform.files.Find(pattern);
    if (!search) {
      if (search.error() != FileError::kNotFound) {
        ReportFolder(folder);
      }
      return;
    }
    auto found = (*search)->Next();
    for (; found && *found; found = (*search)->Next()) {
      const std::u16string_view file = (*found)->name;
      // The pattern ends with the extension, so each file that it found is at least as long.
      const std::u16string_view name = file.substr(0, file.size() - extension.size());
      const bool isOfTag = std::ranges::any_of(
          m_tags, [&](const std::u16string& tag) { return text::SameName(tag, name); });
      if (!isOfTag && !(*found)->isFolder) {
        Report(problem, name);
      }
    }
    if (!found) {
      ReportFolder(folder);
    }
  }

  /// Each folder is searched twice and reported once.
  void ReportFolder(std::u16string_view folder) {
    if (std::ranges::find(m_findings, folder, &StoreFinding::folder) == m_findings.end()) {
      m_findings.push_back({StoreProblem::kFolderUnreadable, {}, std::u16string(folder)});
    }
  }

  platform::Platform m_platform;
  ContactsState m_contacts;
  storage::TagStore m_store;
  voicemath::CVoiceMathematics m_mathematics;
  std::vector<std::u16string> m_tags;
  bool m_hasAllTags = true;
  std::vector<StoreFinding> m_findings;
};

}  // namespace

std::vector<StoreFinding> CheckStore(const platform::Platform& platform, ContactsState contacts) {
  return Checker(platform, contacts).Run();
}

}  // namespace maintenance

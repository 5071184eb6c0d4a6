// What the check of the store says about each kind of problem, and what it can put right.

#include <string>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "maintenance/store_check.h"
#include "resources/report_strings.h"
#include "storage/device_paths.h"
#include "storage/tag_record.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {
namespace {

struct Wording {
  std::string_view word;
  std::u16string_view sentence;
};

/// The words are for scripts and never change. The sentences are for people and are translated.
Wording WordingOf(StoreProblem problem) {
  using enum StoreProblem;
  switch (problem) {
    case kRegistryUnreadable:
      return {"registry-unreadable", resources::kSettingsUnreadable};
    case kFolderUnreadable:
      return {"folder-unreadable", resources::kFolderNotListed};
    case kContactsAway:
      return {"contacts-away", resources::kNothingSaidOfContacts};
    case kOtherVersion:
      return {"other-version", resources::kTemplatesOfOtherVersion};
    case kTooManyTags:
      static_assert(storage::kMaxTags == 100, "The sentence names it.");
      return {"too-many-tags", resources::kMoreThan100Tags};
    case kTagName:
      return {"tag-name", resources::kTagNameIsNoNumber};
    case kContact:
      return {"contact", resources::kEntryWithoutContact};
    case kPhoneType:
      return {"phone-type", resources::kEntryWithoutKind};
    case kContactGone:
      return {"contact-gone", resources::kContactOfTagGone};
    case kNoRecording:
      return {"no-recording", resources::kRecordingMissing};
    case kRecordingUnreadable:
      return {"recording-unreadable", resources::kRecordingNotProcessed};
    case kRecordingEmpty:
      return {"recording-empty", resources::kRecordingTooShort};
    case kRecordingSilent:
      return {"recording-silent", resources::kRecordingIsSilent};
    case kNoTemplate:
      return {"no-template", resources::kTemplateMissing};
    case kTemplateTorn:
      return {"template-torn", resources::kTemplateEndsEarly};
    case kTemplateContradicting:
      return {"template-contradicting", resources::kTemplateDisagrees};
    case kTemplateUnreadable:
      return {"template-unreadable", resources::kTemplateNotRead};
    case kTemplateStale:
      return {"template-stale", resources::kTemplateOutdated};
    case kRecordingWithoutTag:
      return {"recording-without-tag", resources::kRecordingOfNoTag};
    case kTemplateWithoutTag:
      return {"template-without-tag", resources::kTemplateOfNoTag};
    case kUnfinishedFile:
      return {"unfinished-file", resources::kFileLeftUnfinished};
  }
  return {};
}

bool HasTemplateFolder(platform::FileSystem& files) {
  const auto search = files.Find(storage::kTemplateFolder);
  const auto found = search ? (*search)->Next() : platform::Failure(search.error());
  return found && *found && (*found)->isFolder;
}

}  // namespace

std::string_view ToWord(StoreProblem problem) { return WordingOf(problem).word; }

std::string Describe(StoreProblem problem) { return text::Say(WordingOf(problem).sentence); }

// A stale template is left: nobody knows whether it or the recording is the wrong one.
bool IsRepairable(StoreProblem problem) {
  return problem == StoreProblem::kNoTemplate || problem == StoreProblem::kTemplateTorn ||
         problem == StoreProblem::kTemplateContradicting;
}

bool IsOrphan(StoreProblem problem) {
  return problem == StoreProblem::kRecordingWithoutTag ||
         problem == StoreProblem::kTemplateWithoutTag || problem == StoreProblem::kUnfinishedFile;
}

std::string Describe(RepairError error) {
  switch (error) {
    case RepairError::kNoRecording:
      return text::Say(resources::kNothingToRepairFrom);
    case RepairError::kNoFolder:
      return text::Say(resources::kTemplateFolderMissing);
    case RepairError::kNotWritten:
      return text::Say(resources::kTemplateNotWritten);
  }
  return {};
}

platform::Result<void, RepairError> RepairTemplate(const platform::Platform& platform,
                                                   std::u16string_view tagName) {
  voicemath::CVoiceMathematics mathematics(platform.files, platform.ui);
  mathematics.m_wavePath = storage::WavePath(tagName);
  // Not LearnFile, which would trim the recording.
  if (mathematics.ReadFile(0) != voicemath::kLearned) {
    return platform::Failure(RepairError::kNoRecording);
  }
  const std::u16string path = storage::TemplatePath(tagName);
  // A template is written over an earlier file, which keeps its end if it is longer. So that goes
  // first.
  static_cast<void>(platform.files.Delete(path));
  if (!voicemath::WriteTemplateFile(platform.files, path, mathematics)) {
    static_cast<void>(platform.files.Delete(path));
    return platform::Failure(HasTemplateFolder(platform.files) ? RepairError::kNotWritten
                                                               : RepairError::kNoFolder);
  }
  return {};
}

}  // namespace maintenance

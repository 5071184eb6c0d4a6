// What the check of the store says about each kind of problem, and what it can put right.

#include <string>

#include "maintenance/store_check.h"
#include "storage/device_paths.h"
#include "storage/tag_record.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {
namespace {

struct Wording {
  std::string_view word;
  std::string_view sentence;
};

Wording WordingOf(StoreProblem problem) {
  using enum StoreProblem;
  switch (problem) {
    case kRegistryUnreadable:
      return {"registry-unreadable", "the settings cannot be read"};
    case kFolderUnreadable:
      return {"folder-unreadable", "not all files of the folder can be found"};
    case kContactsAway:
      return {"contacts-away", "the contacts cannot be read, so nothing is said about them"};
    case kOtherVersion:
      return {"other-version",
              "the templates were made by another version; they are computed again when the tags "
              "are opened next"};
    case kTooManyTags:
      static_assert(storage::kMaxTags == 100, "The sentence names it.");
      return {"too-many-tags", "there are more than 100 tags; only the first 100 are compared"};
    case kTagName:
      return {"tag-name", "the name is not a number, as the names of recorded tags are"};
    case kContact:
      return {"contact", "the entry names no contact"};
    case kPhoneType:
      return {"phone-type", "the entry names no kind of telephone number"};
    case kContactGone:
      return {"contact-gone", "the contact does not exist any more"};
    case kNoRecording:
      return {"no-recording", "there is no recording"};
    case kRecordingUnreadable:
      return {"recording-unreadable", "the recording cannot be processed"};
    case kRecordingEmpty:
      return {"recording-empty", "the recording is too short to hold a spoken name"};
    case kRecordingSilent:
      return {"recording-silent", "the recording is silent"};
    case kNoTemplate:
      return {"no-template", "there is no template"};
    case kTemplateTorn:
      return {"template-torn", "the template file ends too early"};
    case kTemplateContradicting:
      return {"template-contradicting", "the counts in the template do not agree"};
    case kTemplateUnreadable:
      return {"template-unreadable", "the template cannot be read"};
    case kTemplateStale:
      return {"template-stale",
              "the template is not what the recording gives; `voxtrel reinit --force` computes all "
              "of them again"};
    case kRecordingWithoutTag:
      return {"recording-without-tag", "there is a recording and no tag"};
    case kTemplateWithoutTag:
      return {"template-without-tag", "there is a template and no tag"};
    case kUnfinishedFile:
      return {"unfinished-file", "a program that was ended early left this file"};
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

std::string_view Describe(StoreProblem problem) { return WordingOf(problem).sentence; }

bool IsRepairable(StoreProblem problem) {
  return problem == StoreProblem::kNoTemplate || problem == StoreProblem::kTemplateTorn ||
         problem == StoreProblem::kTemplateContradicting;
}

bool IsOrphan(StoreProblem problem) {
  return problem == StoreProblem::kRecordingWithoutTag ||
         problem == StoreProblem::kTemplateWithoutTag || problem == StoreProblem::kUnfinishedFile;
}

std::string_view Describe(RepairError error) {
  switch (error) {
    case RepairError::kNoRecording:
      return "the recording is missing or cannot be processed";
    case RepairError::kNoFolder:
      return "the folder Voxtrel_stor is missing and cannot be made";
    case RepairError::kNotWritten:
      return "the template cannot be written; there is no room on the device, another program has "
             "the file open, or it may not be written";
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
  static_cast<void>(platform.files.Delete(path));
  if (!voicemath::WriteTemplateFile(platform.files, path, mathematics)) {
    static_cast<void>(platform.files.Delete(path));
    return platform::Failure(HasTemplateFolder(platform.files) ? RepairError::kNotWritten
                                                               : RepairError::kNoFolder);
  }
  return {};
}

}  // namespace maintenance
